// The main window over the demonstration controllers: a start without a
// controller, and the continuous read's ticks waiting for a long sequence.
#include "AppTestSupport.h"
#include "programme/ProgrammeStore.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>

namespace qv::test {
namespace {

class MainScreenTest : public WindowFixture {};

TEST_F(MainScreenTest, StartWithoutADeviceLeavesTheDashesAndTheEditor) {
    connectRow = -1;
    startWindow();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("--"));
    for (const char* c : {"Lire", "Ecrire", "SetTime"})
        EXPECT_FALSE(window->view().isEnabled(QString::fromLatin1(c))) << c;
    EXPECT_TRUE(window->view().isEnabled(QStringLiteral("mnuPLC")));
    EXPECT_TRUE(bus->traceLines().size() < 40) << "only the connection list spoke to devices";
}

TEST_F(MainScreenTest, TicksDuringASequenceWaitForIt) {
    startWindow();
    // The log dump does not stop the continuous read; its 256 reads must
    // still go out one after the other, and the ticks that fell meanwhile
    // come after it.
    window->timerEntree().setInterval(1);
    window->timerEntree().start();
    bus->clearTrace();
    window->showDumpEEPROM();
    auto* journal = window->findChild<QPlainTextEdit*>(QStringLiteral("JournalEEPROM"));
    for (int i = 0; i < 1000 && journal->toPlainText().isEmpty(); ++i)
        QTest::qWait(10);
    QTest::qWait(50);
    window->timerEntree().stop();
    ASSERT_TRUE(settle(*window));

    static const QRegularExpression read(QStringLiteral("> FE ([0-9A-F]{2}) ([0-9A-F]{2})"));
    QStringList frames;
    for (const QString& line : bus->traceLines())
        if (line.contains(QLatin1String(" > ")))
            frames << line;
    // Ticks that came before the dump was asked for may run first.
    const auto first = std::find_if(frames.begin(), frames.end(), [](const QString& f) {
        return f.contains(QLatin1String("> FE 00 01"));
    });
    ASSERT_NE(first, frames.end());
    const auto at = static_cast<int>(first - frames.begin());
    ASSERT_GE(frames.size(), at + 256);
    for (int i = 0; i < 256; ++i) {
        const auto m = read.match(frames[at + i]);
        ASSERT_TRUE(m.hasMatch()) << frames[at + i].toStdString();
        EXPECT_EQ(m.captured(1).toInt(nullptr, 16) + 256 * m.captured(2).toInt(nullptr, 16),
                  256 + i);
    }
    const auto rounds =
        std::count_if(frames.begin() + at + 256, frames.end(),
                      [](const QString& f) { return f.contains(QLatin1String("> F1")); });
    EXPECT_GE(rounds, 1) << "the continuous read went on after the dump";
    const QString shown = journal->toPlainText();
    EXPECT_EQ(shown.split(QLatin1Char('\n')).size(), 16);
    EXPECT_TRUE(shown.startsWith(QStringLiteral("256  "))) << shown.left(60).toStdString();
}

} // namespace
} // namespace qv::test
