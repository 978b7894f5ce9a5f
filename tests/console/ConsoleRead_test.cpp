#include "ConsoleTestSupport.h"

#include "config/DateHelpers.h"
#include "programme/ProgrammeStore.h"

namespace qv::test {
namespace {

using ConsoleRead = ConsoleFixture;

QStringList range(const char* prefix, int from, int to) {
    QStringList names;
    for (int a = from; a <= to; ++a)
        names << QString::fromLatin1(prefix) + QString::number(a);
    return names;
}

TEST_F(ConsoleRead, AFullReadAsksInItsOrderAndShowsEverything) {
    startWithDevice(90601234);
    for (int i = 0; i < 5; ++i)
        setEeprom(40 + i, 11 * (i + 1));
    setEeprom(9, 0x2C); // 300 s
    setEeprom(10, 0x01);
    setEeprom(39, 1);
    // The threshold word 740 is what a new device holds: 6.997 V.
    const std::int32_t programmed =
        DateEnSecondes(oleDateFromDateTime(QDateTime(QDate(2025, 6, 1), QTime(8, 0, 0))), -1.0);
    for (int i = 0; i < 4; ++i)
        setEeprom(20 + i, (programmed >> (8 * i)) & 0xFF);
    bus.modify(id, [](SimDevice& d) {
        d.setOutputState(1);
        d.setIlsInput(5);
    });

    logic->Lire_Click();

    QStringList expected;
    expected << range("R", 16, 19) << QStringLiteral("R39") << QStringLiteral("F0")
             << range("R", 33, 36) << QStringLiteral("F3 0 0") << range("R", 40, 44)
             << QStringLiteral("R26") << QStringLiteral("R28") << QStringLiteral("R31")
             << QStringLiteral("R29") << QStringLiteral("R32") << QStringLiteral("R27")
             << QStringLiteral("R30") << QStringLiteral("R9") << QStringLiteral("R10")
             << QStringLiteral("R45") << QStringLiteral("R46") << QStringLiteral("V0")
             << QStringLiteral("V2") << QStringLiteral("R48") << range("R", 20, 23)
             << QStringLiteral("F0") << range("R", 20, 23) << QStringLiteral("F1");
    EXPECT_EQ(requests(), expected);
    EXPECT_TRUE(dialogs.boxes().empty()) << boxTexts().join('|').toStdString();

    EXPECT_EQ(text("ValeurNumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("Version"), QStringLiteral("(12) 2.70"));
    EXPECT_EQ(text("FrameMaintenance"), QStringLiteral("Maintenance (Bootloader V103)"));
    EXPECT_EQ(text("Batterie"), QStringLiteral("9,0")); // 950 / 105.76
    EXPECT_EQ(view[QStringLiteral("ProgressBar3")].value, 950);
    EXPECT_EQ(view[QStringLiteral("ProgressBar3")].maximum, 1023);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(view.text(QStringLiteral("ctn_text_%1").arg(i)), QString::number(11 * (i + 1)));
    EXPECT_EQ(text("ValeurManualAction"), QStringLiteral("300"));
    EXPECT_EQ(text("MinBat"), QStringLiteral("7,")); // 6.997 through "##.##"
    EXPECT_EQ(text("Ils"), QStringLiteral("5"));     // the live value overwrites 39
    EXPECT_EQ(view.currentRow(QStringLiteral("ValeurSortieLogique")), 1);
    EXPECT_EQ(text("ValeurSortieLogique"), QStringLiteral("Open"));
    EXPECT_EQ(text("NomSortie"), QStringLiteral("Bistable valve 1"));
    EXPECT_EQ(text("DateProgrammation"), SecondesEnDate(programmed, QLocale(QLocale::French)));
    EXPECT_EQ(logic->dateProgrammationCourante(), programmed);
    EXPECT_EQ(text("txtCurrentTime"), QStringLiteral("10/03/26 - 14:30:00"));
    EXPECT_EQ(text("ValeurHorloge_0"), QStringLiteral("0"));
    EXPECT_EQ(text("ValeurHorloge_2"), QStringLiteral("32,0000"));
    // The device's rule is off: 255 at 27.
    EXPECT_FALSE(view.isChecked(QStringLiteral("EnableDaylightSaving")));
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Lire")));
    EXPECT_FALSE(view.busy);
    EXPECT_FALSE(logic->busy());
}

TEST_F(ConsoleRead, LireStopsTheContinuousCycleFirst) {
    startWithDevice();
    view.setChecked(QStringLiteral("Continu"), true);
    logic->Continu_Click();
    ASSERT_TRUE(host.timerEntree);
    host.calls.clear();
    logic->Lire_Click();
    EXPECT_FALSE(view.isChecked(QStringLiteral("Continu")));
    EXPECT_FALSE(host.timerEntree);
    EXPECT_EQ(host.calls.first(), QStringLiteral("stopTimerEntree"));
    EXPECT_EQ(view.focus, QStringLiteral("Lire"));
}

TEST_F(ConsoleRead, AFastClockReadIsSentBackLikeAClick) {
    startWithDevice();
    bus.modify(id, [](SimDevice& d) { d.setFastClock(true); });
    logic->Lire_Click();
    EXPECT_TRUE(view.isChecked(QStringLiteral("CheckClockSpeed")));
    const QStringList frames = requests();
    const auto read = frames.indexOf(QStringLiteral("F3 0 0"));
    ASSERT_GE(read, 0);
    EXPECT_EQ(frames.value(read + 1), QStringLiteral("F3 1 1"));

    // Already shown: nothing goes back.
    bus.clearTrace();
    logic->Lire_Click();
    EXPECT_EQ(requests().count(QStringLiteral("F3 1 1")), 0);
}

TEST_F(ConsoleRead, ADeadDeviceWalksToTheThresholdAndKeepsWhatItCannotRead) {
    startWithDevice(90601234);
    Conditions stored;
    Condition line;
    line.sortie = 3;
    line.Jour = 8;
    stored.Add(line);
    SauveConditions(*config, stored);
    const QString before = configText();
    view.setText(QStringLiteral("ValeurManualAction"), QStringLiteral("300"));
    const QString date = text("DateProgrammation");
    const QString clock = text("txtCurrentTime");

    bus.unplug(id);
    logic->Lire_Click();

    // Serial (stops at its first byte), identity, calibration number (4),
    // clock speed, five counters, the rule (7), the delay (2), the
    // threshold (2): one box each, and nothing of the programme.
    EXPECT_EQ(dialogs.boxes().size(), 1u + 1 + 4 + 1 + 5 + 7 + 2 + 2);
    for (const auto& box : dialogs.boxes())
        EXPECT_EQ(box.text, QStringLiteral("Quorvel not responding (Time Out)"));
    EXPECT_EQ(configText(), before);

    // What could not be read keeps the old text; what was read shows zeros.
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("Version"), QStringLiteral("(0) 0.00"));
    EXPECT_EQ(text("Batterie"), QStringLiteral("0,0"));
    EXPECT_EQ(view[QStringLiteral("ProgressBar3")].value, 0);
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("0"));
    EXPECT_EQ(text("ValeurManualAction"), QStringLiteral("2")); // 0 refills to 2
    EXPECT_EQ(text("MinBat"), QStringLiteral(","));
    EXPECT_EQ(text("DateProgrammation"), date);
    EXPECT_EQ(text("txtCurrentTime"), clock);
    EXPECT_EQ(text("NomSortie"), QStringLiteral("Bistable valve 1"));
    EXPECT_TRUE(state.TimeOut);
    EXPECT_FALSE(logic->busy());
}

TEST_F(ConsoleRead, BatteryControlsFollowTheSerialNumber) {
    struct Case {
        std::uint32_t serial;
        bool shown;
    };
    const QStringList controls = {QStringLiteral("LabelBatterie"), QStringLiteral("Batterie"),
                                  QStringLiteral("ProgressBar3"), QStringLiteral("VMIN"),
                                  QStringLiteral("VMAX")};
    for (const Case& c :
         {Case{90600999, false}, Case{90601000, true}, Case{1, false}, Case{90600999, false}}) {
        SCOPED_TRACE(c.serial);
        if (id == 0)
            startWithDevice(c.serial);
        bus.modify(id, [&](SimDevice& d) { d.setSerialNumber(c.serial); });
        EXPECT_TRUE(logic->AfficheNumeroSerie());
        for (const QString& control : controls)
            EXPECT_EQ(view.isVisible(control), c.shown) << control.toStdString();
        EXPECT_EQ(text("NumeroSerie"), QString::number(c.serial));
    }
    bus.modify(id, [](SimDevice& d) { d.setSerialNumber(0); });
    EXPECT_FALSE(logic->AfficheNumeroSerie());
}

TEST_F(ConsoleRead, RawValuesBecomeTheirTexts) {
    struct Case {
        int battery;
        int low9, high10;
        int low45, high46;
        const char* batterie;
        int bar;
        const char* delai;
        const char* seuil;
    };
    startWithDevice();
    for (const Case& c : {Case{0, 0xFF, 0xFF, 0, 0, "0,0", 0, "65535", ","},
                          Case{1023, 0x02, 0x00, 0xF9, 0x02, "9,7", 1023, "2", "7,2"},
                          // Beyond the converter: the bar stays, the text follows.
                          Case{2000, 0x3C, 0x00, 79, 0, "18,9", 1023, "60", ",75"}}) {
        SCOPED_TRACE(c.battery);
        bus.modify(id, [&](SimDevice& d) {
            d.setBattery(c.battery);
            d.setEeprom(9, c.low9);
            d.setEeprom(10, c.high10);
            d.setEeprom(45, c.low45);
            d.setEeprom(46, c.high46);
        });
        logic->Lire_Click();
        EXPECT_EQ(text("Batterie"), QString::fromUtf8(c.batterie));
        EXPECT_EQ(view[QStringLiteral("ProgressBar3")].value, c.bar);
        EXPECT_EQ(text("ValeurManualAction"), QString::fromUtf8(c.delai));
        EXPECT_EQ(text("MinBat"), QString::fromUtf8(c.seuil));
        EXPECT_TRUE(requests().contains(QStringLiteral("F1"))); // the read went to its end
        bus.clearTrace();
    }
}

} // namespace
} // namespace qv::test
