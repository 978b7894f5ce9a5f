// The main window's logic for what the operator types and config.xml holds:
// entries checked at their limits, the keys that decide the start, and what
// reaches the controller.
#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

using ConsoleSettings = ConsoleFixture;

TEST_F(ConsoleSettings, TheMaintenanceAndSplashKeysDecide) {
    struct Case {
        const char* from;
        const char* to;
        bool maintenance;
        int splashes;
    };
    for (const Case& c :
         {Case{"<Maintenance>False</Maintenance>", "<Maintenance>True</Maintenance>", true, 1},
          Case{"<Maintenance>False</Maintenance>", "<Maintenance>-1</Maintenance>", true, 1},
          Case{"<Maintenance>False</Maintenance>", "", false, 1},
          Case{"<Splash>True</Splash>", "", false, 1},
          Case{"<Splash>True</Splash>", "<Splash>False</Splash>", false, 0}}) {
        SCOPED_TRACE(c.to);
        restart();
        replaceInConfig(QString::fromUtf8(c.from), QString::fromUtf8(c.to));
        host.onConnection = [this] { leaveConnection(); };
        logic->Form_Load();
        EXPECT_EQ(view.isVisible(QStringLiteral("FrameMaintenance")), c.maintenance);
        host.calls.clear();
        for (int i = 0; i < 3; ++i)
            logic->Form_Activate();
        EXPECT_EQ(host.calls.count(QStringLiteral("showSplash")), c.splashes);
    }
}

TEST_F(ConsoleSettings, UnknownKeysAreStoredWithTheirCaptionAndShownFromTheNextWalk) {
    view.add(QStringLiteral("LabelNouveau"), ConsoleView::Kind::Label);
    view[QStringLiteral("LabelNouveau")].text = QStringLiteral("Nouveau libellé");
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    // The start walks twice: the first stores the key, the second finds it.
    EXPECT_EQ(text("LabelNouveau"), QStringLiteral("Nouveau libellé"));
    EXPECT_TRUE(configText().contains(QStringLiteral("LabelNouveau")));
}

TEST_F(ConsoleSettings, ProgrammerWritesTheSerialAndRestartsInEveryCase) {
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

TEST_F(ConsoleSettings, TheBatteryThresholdIsCheckedThenWrittenInSteps) {
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

TEST_F(ConsoleSettings, ClearedCountersShowZeroEvenFromADeadDevice) {
    startWithDevice();
    view.setText(QStringLiteral("ctn_text_0"), QStringLiteral("4"));
    bus.unplug(id);
    dialogs.clear();
    logic->RazCtn_Click();
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("0"));
    EXPECT_EQ(dialogs.boxes().size(), 6u);
}

TEST_F(ConsoleSettings, TheDefaultStateComesFromTheFirstLanguage) {
    // English is the first language of the document: its row decides, even
    // while the window shows French.
    replaceInConfig(QStringLiteral("<Texte>Bistable valve</Texte><Index>0</Index><Valeur>0</"
                                   "Valeur><Etat>0</Etat>"),
                    QStringLiteral("<Texte>Bistable valve</Texte><Index>0</Index><Valeur>0</"
                                   "Valeur><Etat>1</Etat>"));
    startWithDevice();
    view.setText(QStringLiteral("ListeLangues"), QStringLiteral("Français"));
    logic->ListeLangues_Click();
    logic->Ecrire_Click();
    EXPECT_EQ(sim().eeprom(24), 1);
}

TEST_F(ConsoleSettings, SetTimeEndsWithItsBoxEvenWhenTheDeviceIsDead) {
    startWithDevice();
    bus.unplug(id);
    state.TimeOut = true;
    logic->SetTime_Click();
    const QStringList texts = boxTexts();
    ASSERT_GE(texts.size(), 3);
    EXPECT_EQ(texts.mid(0, texts.size() - 1),
              QStringList(texts.size() - 1, QStringLiteral("Quorvel not responding (Time Out)")));
    EXPECT_EQ(texts.last(), QStringLiteral("Date and time set"));
}

TEST_F(ConsoleSettings, TheManualDelayIsWrittenClampedOrNotAtAll) {
    struct Case {
        const char* typed;
        const char* shown;
        int low, high; // 7: nothing written
    };
    startWithDevice();
    for (const Case& c : {Case{"70000", "65535", 255, 255}, Case{"300", "300", 44, 1},
                          Case{"2", "2", 2, 0}, Case{"abc", "abc", 7, 7}}) {
        setEeprom(9, 7);
        setEeprom(10, 7);
        // Set as if typed before the box's own check ran.
        view[QStringLiteral("ValeurManualAction")].text = QString::fromUtf8(c.typed);
        logic->EcritDelaiManuel();
        EXPECT_EQ(text("ValeurManualAction"), QString::fromUtf8(c.shown)) << c.typed;
        EXPECT_EQ(sim().eeprom(9), c.low) << c.typed;
        EXPECT_EQ(sim().eeprom(10), c.high) << c.typed;
    }
    // The progress tick counts to five and stops.
    view.setProgress(QStringLiteral("ProgressBar2"), 0, 5, 3);
    for (int expected : {4, 5, 5}) {
        logic->test_Timer();
        EXPECT_EQ(view.progressValue(QStringLiteral("ProgressBar2")), expected);
    }
}

} // namespace
} // namespace qv::test
