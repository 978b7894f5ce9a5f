// The main window with its logic over the demonstration controllers: the
// start, the first read, the timers, and the service panel's switch.
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

TEST_F(MainScreenTest, StartWithADeviceShowsWhatItHolds) {
    startWindow();
    EXPECT_EQ(connections, 1);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("ValeurNumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("Version"), QStringLiteral("(12) 2.70"));
    EXPECT_EQ(text("ValeurManualAction"), QStringLiteral("120"));
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("3"));
    EXPECT_EQ(text("ctn_text_4"), QStringLiteral("2"));
    EXPECT_NE(text("Batterie"), QStringLiteral("--"));
    EXPECT_TRUE(window->view().isVisible(QStringLiteral("Batterie")));
    EXPECT_TRUE(window->view().isChecked(QStringLiteral("EnableDaylightSaving")));
    EXPECT_NE(text("DateProgrammation"), QStringLiteral("--"));
    for (const char* c : {"Lire", "Ecrire", "SetTime", "mnuPLC", "nmuBootLoad"})
        EXPECT_TRUE(window->view().isEnabled(QString::fromLatin1(c))) << c;
    // The programme stored in the controller is now the working programme.
    Conditions stored;
    LitConditions(*config, stored);
    EXPECT_EQ(stored.Count(), 2);
    EXPECT_TRUE(rig->dialogs.boxes().empty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "every hourglass was taken back";
}

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

TEST_F(MainScreenTest, TheMaintenanceKeyShowsTheServicePanel) {
    for (const bool maintenance : {false, true}) {
        make(maintenance);
        connectRow = -1;
        startWindow();
        EXPECT_EQ(window->view().isVisible(QStringLiteral("FrameMaintenance")), maintenance);
    }
}

TEST_F(MainScreenTest, TheOperatorsButtonsReachTheirHandlers) {
    startWindow();
    bus->modify(quorvelId(), [](SimDevice& d) { d.setEeprom(40, 9); });
    QTest::mouseClick(window->findChild<QAbstractButton*>(QStringLiteral("Lire")), Qt::LeftButton);
    ASSERT_TRUE(settle(*window));
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("9"));

    auto* delay = window->findChild<QLineEdit*>(QStringLiteral("ValeurManualAction"));
    delay->selectAll();
    QTest::keyClicks(delay, QStringLiteral("1"));
    ASSERT_TRUE(settle(*window));
    EXPECT_EQ(delay->text(), QStringLiteral("2")) << "clamped at the key stroke";

    QTest::mouseClick(window->findChild<QAbstractButton*>(QStringLiteral("RazCtn")),
                      Qt::LeftButton);
    ASSERT_TRUE(settle(*window));
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("0"));
    EXPECT_EQ(bus->device(quorvelId())->eeprom(40), 0);
}

TEST_F(MainScreenTest, TheContinuousReadRunsOnItsTimerAndStopsWithTheBox) {
    startWindow();
    window->timerEntree().setInterval(20);
    window->findChild<QCheckBox*>(QStringLiteral("Continu"))->click();
    ASSERT_TRUE(settle(*window));
    EXPECT_TRUE(window->timerEntree().isActive());
    bus->clearTrace();
    QTest::qWait(200);
    EXPECT_GT(bus->traceLines().size(), 4) << "the cycle reads once a tick";

    bus->unplug(quorvelId());
    for (int i = 0; i < 200 && window->timerEntree().isActive(); ++i)
        QTest::qWait(10);
    EXPECT_FALSE(window->timerEntree().isActive());
    EXPECT_FALSE(window->view().isChecked(QStringLiteral("Continu")));
    EXPECT_FALSE(rig->dialogs.boxes().empty());
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
