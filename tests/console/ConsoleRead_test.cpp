// The main window's logic reading a simulated controller: the order of the
// requests, the texts the raw values become, and what a dead device leaves.
#include "ConsoleTestSupport.h"

#include "config/DateHelpers.h"
#include "programme/ProgrammeStore.h"

namespace qv::test {
namespace {

using ConsoleRead = ConsoleFixture;

QStringList range(int from, int to) {
    QStringList names;
    for (int a = from; a <= to; ++a)
        names << QStringLiteral("R%1").arg(a);
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

    const QStringList expected =
        range(16, 19) + QStringList{"R39", "F0"} + range(33, 36) + QStringList{"F3 0 0"} +
        range(40, 44) + QStringList{"R26", "R28", "R31", "R29", "R32", "R27", "R30",
                                    "R9",  "R10", "R45", "R46", "V0",  "V2",  "R48"} +
        range(20, 23) + QStringList{"F0"} + range(20, 23) + QStringList{"F1"};
    EXPECT_EQ(requests(), expected);
    EXPECT_TRUE(dialogs.boxes().empty()) << boxTexts().join('|').toStdString();

    QStringList shown;
    for (const char* c :
         {"ValeurNumeroSerie", "NumeroSerie", "Version", "FrameMaintenance", "Batterie",
          "ctn_text_0", "ctn_text_4", "ValeurManualAction", "MinBat", "Ils", "ValeurSortieLogique",
          "NomSortie", "txtCurrentTime", "ValeurHorloge_0", "ValeurHorloge_2"})
        shown << text(c);
    EXPECT_EQ(shown,
              (QStringList{"90601234", "90601234", "(12) 2.70", "Maintenance (Bootloader V103)",
                           "9,0", // 950 / 105.76
                           "11", "55", "300",
                           "7,", // 6.997 through "##.##"
                           "5",  // the live value overwrites 39
                           "Open", "Bistable valve 1", "10/03/26 - 14:30:00", "0", "32,0000"}));
    EXPECT_EQ(view[QStringLiteral("ProgressBar3")].value, 950);
    EXPECT_EQ(view[QStringLiteral("ProgressBar3")].maximum, 1023);
    EXPECT_EQ(view.currentRow(QStringLiteral("ValeurSortieLogique")), 1);
    EXPECT_EQ(text("DateProgrammation"), SecondesEnDate(programmed, QLocale(QLocale::French)));
    EXPECT_EQ(logic->dateProgrammationCourante(), programmed);
    // The device's rule is off: 255 at 27.
    EXPECT_FALSE(view.isChecked(QStringLiteral("EnableDaylightSaving")));
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Lire")));
    EXPECT_FALSE(view.busy);
}

TEST_F(ConsoleRead, RawValuesBecomeTheirTexts) {
    struct Case {
        int battery, low9, high10, low45, high46;
        const char *batterie, *delai, *seuil;
        int bar;
    };
    startWithDevice();
    for (const Case& c : {Case{0, 0xFF, 0xFF, 0, 0, "0,0", "65535", ",", 0},
                          Case{1023, 0x02, 0x00, 0xF9, 0x02, "9,7", "2", "7,2", 1023},
                          // Beyond the converter: the bar stays, the text follows.
                          Case{2000, 0x3C, 0x00, 79, 0, "18,9", "60", ",75", 1023}}) {
        SCOPED_TRACE(c.battery);
        bus.modify(id, [&](SimDevice& d) {
            d.setBattery(c.battery);
            d.setEeprom(9, c.low9);
            d.setEeprom(10, c.high10);
            d.setEeprom(45, c.low45);
            d.setEeprom(46, c.high46);
        });
        bus.clearTrace();
        logic->Lire_Click();
        EXPECT_EQ(text("Batterie"), QString::fromUtf8(c.batterie));
        EXPECT_EQ(view[QStringLiteral("ProgressBar3")].value, c.bar);
        EXPECT_EQ(text("ValeurManualAction"), QString::fromUtf8(c.delai));
        EXPECT_EQ(text("MinBat"), QString::fromUtf8(c.seuil));
        EXPECT_TRUE(requests().contains(QStringLiteral("F1"))); // the read went to its end
    }
}

TEST_F(ConsoleRead, TheCycleJudgesByTheLastExchangeOfItsRound) {
    // A round is four exchanges of up to three tries each. The flags are
    // those of the last exchange, so a bad clock reply alone goes by.
    for (const auto& [corrupted, keepsRunning, boxes] :
         {std::tuple{3, true, 1u}, std::tuple{12, false, 4u}}) {
        SCOPED_TRACE(corrupted);
        restart();
        startWithDevice();
        view.setChecked(QStringLiteral("Continu"), true);
        logic->Continu_Click();
        dialogs.clear();
        bus.corruptReplies(id, corrupted);
        logic->TimerEntree_Timer();
        EXPECT_EQ(host.timerEntree, keepsRunning);
        EXPECT_EQ(view.isChecked(QStringLiteral("Continu")), keepsRunning);
        EXPECT_EQ(boxTexts(), QStringList(boxes, "Quorvel not responding (CRC error)"));
        // Unticking stops without reading.
        bus.clearTrace();
        view.setChecked(QStringLiteral("Continu"), false);
        logic->Continu_Click();
        EXPECT_FALSE(host.timerEntree);
        EXPECT_TRUE(requests().isEmpty());
    }
}

TEST_F(ConsoleRead, TheManualDelayBoxHoldsItsLimits) {
    for (const auto& [typed, kept] : {std::pair{"1", "2"},
                                      {"a", "2"},
                                      {"", "2"},
                                      {"-5", "2"},
                                      {"65536", "65535"},
                                      {"300", "300"},
                                      {"65535", "65535"},
                                      {"2", "2"},
                                      {"2,5", "2,5"}}) {
        view[QStringLiteral("ValeurManualAction")].text = QString::fromUtf8(typed);
        logic->ValeurManualAction_Change();
        EXPECT_EQ(text("ValeurManualAction"), QString::fromUtf8(kept)) << typed;
    }
}

} // namespace
} // namespace qv::test
