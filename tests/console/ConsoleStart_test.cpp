#include "ConsoleTestSupport.h"

#include "programme/ProgrammeStore.h"

namespace qv::test {
namespace {

using ConsoleStart = ConsoleFixture;

TEST_F(ConsoleStart, TheWindowIsReadyBeforeTheConnectionWindowOpens) {
    plug();
    // A stored programme of two lines, to see it loaded before the choice.
    Conditions stored;
    Condition line;
    line.sortie = 3;
    line.Jour = 8;
    stored.Add(line);
    stored.Add(line);
    SauveConditions(*config, stored);
    conditions.Add(line); // what was in memory before goes

    QStringList seen;
    state.UsbID = 77;
    state.bUsbConnected = true;
    host.onConnection = [&] {
        seen << text("Lire") << text("ListeLangues")
             << (view.isVisible("ProgressBar2") ? "progress shown" : "progress hidden");
        for (const char* c : {"Ecrire", "SetTime", "mnuPLC"})
            seen << QString::fromLatin1(c) + (view.isEnabled(c) ? " enabled" : " disabled");
        seen << QStringLiteral("id %1 %2 %3")
                    .arg(state.UsbID)
                    .arg(state.bUsbConnected ? "connected" : "-")
                    .arg(state.TimeOut ? "timeout" : "-");
        seen << QStringLiteral("%1 lines").arg(conditions.Count()) << requests();
        chooseDevice();
    };
    logic->Form_Load();
    EXPECT_EQ(seen, (QStringList{"Read parameters", "English", "progress hidden", "Ecrire disabled",
                                 "SetTime disabled", "mnuPLC disabled", "id 1 - -", "2 lines"}));

    // The device chosen: the full read follows at once.
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("showConnection")});
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("Version"), QStringLiteral("(12) 2.70"));
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Ecrire")));
    EXPECT_TRUE(dialogs.boxes().empty()) << boxTexts().join('|').toStdString();
    EXPECT_TRUE(requests().contains(QStringLiteral("R48")));

    // Connect left with Cancel reads nothing.
    bus.clearTrace();
    host.calls.clear();
    host.onConnection = [this] { leaveConnection(); };
    logic->MnuConnect_Click();
    EXPECT_TRUE(requests().isEmpty());
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("showConnection")});
}

TEST_F(ConsoleStart, LeavingTheConnectionWindowOpensTheFormWithItsDashesAndTheStoredRule) {
    plug();
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();

    EXPECT_TRUE(requests().isEmpty()) << requests().join(' ').toStdString();
    EXPECT_TRUE(dialogs.boxes().empty());
    for (const char* label :
         {"Version", "NumeroSerie", "DateProgrammation", "txtCurrentTime", "Batterie"})
        EXPECT_EQ(text(label), QStringLiteral("--")) << label;
    EXPECT_FALSE(view.isEnabled(QStringLiteral("Ecrire")));
    EXPECT_FALSE(view.isEnabled(QStringLiteral("SetTime")));
    EXPECT_TRUE(view.isEnabled(QStringLiteral("MnuConnect")));
    // Summer: last week (5), Sunday (7) = 87; month 3, hour 2, 60 minutes.
    EXPECT_TRUE(view.isChecked(QStringLiteral("EnableDaylightSaving")));
    QStringList rule;
    for (const char* c : {"DaylightAdjustment", "Mois_0", "Mois_1", "Jour_0", "Semaine_1"})
        rule << text(c);
    EXPECT_EQ(rule, (QStringList{"60", "March", "October", "Sunday", "Last week"}));

    // Connect in the menu is the way back, and a chosen device is read.
    host.onConnection = [this] { chooseDevice(); };
    logic->MnuConnect_Click();
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_TRUE(requests().contains(QStringLiteral("F1")));
}

TEST_F(ConsoleStart, TheMaintenanceAndSplashKeysDecide) {
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

TEST_F(ConsoleStart, SortirSavesTheRuleAndClosesWithoutADevice) {
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    host.calls.clear();
    logic->nmuBootLoad_Click(); // the firmware window, as asked for by the operator
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("UpdateFirmware true")});
    host.calls.clear();
    view.setText(QStringLiteral("DaylightAdjustment"), QStringLiteral("30"));
    view.setChecked(QStringLiteral("EnableDaylightSaving"), false);
    logic->Sortir_Click();
    EXPECT_TRUE(configText().contains(QStringLiteral("OF_ETE_HIVER=\" 30\"")));
    EXPECT_TRUE(configText().contains(QStringLiteral("DAYLIGHT_SAVING=\" 0\"")));
    EXPECT_EQ(host.calls, (QStringList{"stopTimerEntree", "closeApplication"}));
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_TRUE(requests().isEmpty());
}

} // namespace
} // namespace qv::test
