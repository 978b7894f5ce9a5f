#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

using ConsoleMaintenance = ConsoleFixture;

TEST_F(ConsoleMaintenance, ProgrammerWritesTheSerialAndRestartsInEveryCase) {
    struct Case {
        const char* entry;
        const char* box; // nullptr: none
        std::uint32_t stored;
    };
    startWithDevice(5);
    int restarts = 0;
    for (const Case& c :
         {Case{"2147483647", nullptr, 2147483647u}, Case{"90601000", nullptr, 90601000u},
          Case{"2147483648", "Le n° de série est trop grand (> 32 bits)", 90601000u},
          Case{"abc", "Le n° de série n'est pas valide", 90601000u},
          Case{"", "Le n° de série n'est pas valide", 90601000u},
          Case{"-1", nullptr, 0xFFFFFFFFu}}) {
        SCOPED_TRACE(c.entry);
        dialogs.clear();
        bus.clearTrace();
        view.setText(QStringLiteral("ValeurNumeroSerie"), QString::fromUtf8(c.entry));
        logic->Programmer_Click();
        EXPECT_EQ(boxTexts(), c.box ? QStringList{QString::fromUtf8(c.box)} : QStringList{});
        EXPECT_EQ(sim().serialNumber(), c.stored);
        // Four bytes when valid, then the restart goes unanswered: three tries.
        QStringList expected = QStringList{"00", "00", "00"};
        if (!c.box)
            expected = QStringList{"W16", "W17", "W18", "W19"} + expected;
        QStringList sent = requests();
        for (QString& frame : sent)
            frame = frame.section(QLatin1Char('='), 0, 0);
        EXPECT_EQ(sent, expected);
        EXPECT_EQ(sim().restartCount(), ++restarts);
        busMs += 5000; // the device is back before the next try
    }
}

TEST_F(ConsoleMaintenance, TheBatteryThresholdIsCheckedThenWrittenInSteps) {
    startWithDevice();
    for (const auto& [entry, stored] :
         {std::pair{"7,2", 761}, {"0", 0}, {"9,7", 1026}, {"7.2", -1}, {"x", -1}, {"", -1}}) {
        SCOPED_TRACE(entry);
        setEeprom(45, 0x11);
        setEeprom(46, 0x22);
        dialogs.clear();
        view.focus.clear();
        view.selected.clear();
        view.setText(QStringLiteral("MinBat"), QString::fromUtf8(entry));
        logic->Seuilbatterie_Click();
        EXPECT_EQ(sim().eeprom(45) + 256 * sim().eeprom(46), stored < 0 ? 0x2211 : stored);
        EXPECT_EQ(boxTexts(),
                  stored < 0 ? QStringList{"Invalid entry: please type a number"} : QStringList{});
        EXPECT_EQ(view.focus, stored < 0 ? QStringLiteral("MinBat") : QString());
        EXPECT_EQ(view.selected, stored < 0 ? QStringLiteral("MinBat") : QString());
        EXPECT_TRUE(stored >= 0 || dialogs.boxes()[0].style == MsgBox::Exclamation);
    }
}

TEST_F(ConsoleMaintenance, ClearedCountersShowZeroAndReadBackAsZeroEvenFromADeadDevice) {
    startWithDevice();
    for (int i = 0; i < 5; ++i)
        setEeprom(40 + i, 9);
    bus.modify(id, [](SimDevice& d) { d.reloadCounters(); });
    logic->Lire_Click();
    ASSERT_EQ(text("ctn_text_3"), QStringLiteral("9"));

    bus.clearTrace();
    logic->RazCtn_Click();
    EXPECT_EQ(requests(), (QStringList{"W40=0", "W41=0", "W42=0", "W43=0", "W44=0", "FB"}));
    logic->Lire_Click();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(view.text(QStringLiteral("ctn_text_%1").arg(i)), QStringLiteral("0"));
        EXPECT_EQ(sim().counter(i), 0);
    }

    view.setText(QStringLiteral("ctn_text_0"), QStringLiteral("4"));
    bus.unplug(id);
    dialogs.clear();
    logic->RazCtn_Click();
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("0"));
    EXPECT_EQ(dialogs.boxes().size(), 6u);
}

TEST_F(ConsoleMaintenance, ForceBootSendsTheRequestWhateverTheAnswer) {
    for (int answer : {MsgBox::AnswerYes, MsgBox::AnswerNo}) {
        SCOPED_TRACE(answer);
        restart();
        bus.clearTrace();
        startWithDevice();
        dialogs.answerNext(answer);
        logic->ForceBoot_Click();
        ASSERT_EQ(dialogs.boxes().size(), 1u);
        EXPECT_EQ(dialogs.boxes()[0].text,
                  QStringLiteral("Restart the device in its bootloader. Are you sure?"));
        EXPECT_EQ(dialogs.boxes()[0].style, 36);
        EXPECT_EQ(dialogs.boxes()[0].title, QString());
        EXPECT_EQ(requests(), QStringList{QStringLiteral("W255=255")});
        EXPECT_TRUE(sim().inBootloader());
    }
}

TEST_F(ConsoleMaintenance, TheLogDumpIsSixteenLinesOfHexOrNothingFromADeadDevice) {
    startWithDevice();
    const auto log = SimDevice::logBytes(id);
    const QStringList lines = logic->DumpEEPROM();
    ASSERT_EQ(lines.size(), 16);
    for (int row = 0; row < 16; ++row) {
        QString expected;
        for (int i = 0; i < 16; ++i)
            expected += QStringLiteral("%1 ").arg(log[row * 16 + i], 2, 16, QLatin1Char('0'));
        EXPECT_EQ(lines[row], expected.toUpper()) << row;
    }
    const QStringList frames = requests();
    EXPECT_EQ(frames.size(), 256);
    EXPECT_EQ(frames.value(0), QStringLiteral("R256"));
    EXPECT_EQ(frames.value(255), QStringLiteral("R511"));

    bus.unplug(id);
    EXPECT_TRUE(logic->DumpEEPROM().isEmpty());
    EXPECT_EQ(dialogs.boxes().size(), 1u);
}

TEST_F(ConsoleMaintenance, ClockSpeedAndCalibrationReachTheDevice) {
    startWithDevice();
    for (bool fast : {true, false}) {
        view.setChecked(QStringLiteral("CheckClockSpeed"), fast);
        logic->CheckClockSpeed_Click();
        EXPECT_EQ(sim().fastClock(), fast);
    }
    view.setText(QStringLiteral("ValeurHorloge_2"), QStringLiteral("31,9"));
    logic->CommandCalibrationCLK_Click();
    const int n =
        sim().eeprom(33) | sim().eeprom(34) << 8 | sim().eeprom(35) << 16 | sim().eeprom(36) << 24;
    EXPECT_EQ(n, 319);
}

} // namespace
} // namespace qv::test
