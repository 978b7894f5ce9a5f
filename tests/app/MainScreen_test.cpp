// The main window over the demonstration controllers: a start without a
// controller, a control config.xml does not know yet, the manual delay's
// box, and the continuous read: how a round is judged, and its ticks waiting
// for a long sequence.
#include "AppTestSupport.h"
#include "TestFiles.h"
#include "programme/ProgrammeStore.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
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

TEST_F(MainScreenTest, AControlUnknownToTheConfigurationIsStoredWithItsCaption) {
    auto* label = new QLabel(QStringLiteral("Nouveau libellé"), window.get());
    label->setObjectName(QStringLiteral("LabelNouveau"));
    connectRow = -1;
    startWindow();
    // The start walks twice: the first stores the key, the second finds it.
    EXPECT_EQ(label->text(), QStringLiteral("Nouveau libellé"));
    EXPECT_TRUE(readFile(dir.filePath(QStringLiteral("config.xml"))).contains("LabelNouveau"));
}

TEST_F(MainScreenTest, TheManualDelayBoxHoldsItsLimits) {
    startWindow();
    auto* box = window->findChild<QLineEdit*>(QStringLiteral("ValeurManualAction"));
    for (const auto& [typed, kept] : {std::pair{"1", "2"},
                                      {"a", "2"},
                                      {"", "2"},
                                      {"-5", "2"},
                                      {"65536", "65535"},
                                      {"65535", "65535"},
                                      {"2", "2"},
                                      {"2.5", "2.5"}}) {
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClicks(box, QString::fromUtf8(typed));
        ASSERT_TRUE(settle(*window));
        EXPECT_EQ(box->text(), QString::fromUtf8(kept)) << typed;
    }
}

// A round of the continuous read is four exchanges of up to three tries
// each. It is judged by the flags of its last exchange, so a bad clock reply
// alone goes by, and twelve stop the reading.
TEST_F(MainScreenTest, TheContinuousReadJudgesARoundByItsLastExchange) {
    for (const auto& [corrupted, keepsRunning, boxes] :
         {std::tuple{3, true, 1}, std::tuple{12, false, 4}}) {
        SCOPED_TRACE(corrupted);
        make(true, nullptr, true);
        startWindow();
        window->timerEntree().setInterval(10);
        auto* continu = window->findChild<QCheckBox*>(QStringLiteral("Continu"));
        continu->click();
        ASSERT_TRUE(settle(*window));
        rig->dialogs.clear();
        bus->corruptReplies(quorvelId(), corrupted);
        bus->clearTrace();
        // Until the boxes came, and a dozen exchanges more where it goes on.
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return rig->dialogs.boxes().size() == static_cast<size_t>(boxes) &&
                   (!keepsRunning || bus->traceLines().size() > 3 * corrupted + 24);
        }));
        ASSERT_TRUE(settle(*window));
        EXPECT_EQ(window->timerEntree().isActive(), keepsRunning);
        EXPECT_EQ(continu->isChecked(), keepsRunning);
        std::vector<QString> texts;
        for (const auto& box : rig->dialogs.boxes())
            texts.push_back(box.text);
        EXPECT_EQ(texts,
                  std::vector<QString>(static_cast<size_t>(boxes),
                                       QStringLiteral("Quorvel not responding (CRC error)")));
        // Unticking stops without reading.
        if (keepsRunning) {
            continu->click();
            ASSERT_TRUE(settle(*window));
        }
        bus->clearTrace();
        QTest::qWait(50);
        EXPECT_FALSE(window->timerEntree().isActive());
        EXPECT_TRUE(bus->traceLines().isEmpty());
    }
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
