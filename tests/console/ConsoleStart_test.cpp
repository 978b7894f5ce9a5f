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

    struct Seen {
        QString lire, langue, progressVisible;
        bool ecrire = true, setTime = true, mnuPLC = true;
        std::int32_t usbId = 0;
        bool connected = true, timeOut = true;
        int lines = -1;
        QStringList frames;
    } seen;
    state.UsbID = 77;
    state.bUsbConnected = true;
    host.onConnection = [&] {
        seen.lire = text("Lire");
        seen.langue = text("ListeLangues");
        seen.progressVisible = view.isVisible(QStringLiteral("ProgressBar2")) ? "shown" : "hidden";
        seen.ecrire = view.isEnabled(QStringLiteral("Ecrire"));
        seen.setTime = view.isEnabled(QStringLiteral("SetTime"));
        seen.mnuPLC = view.isEnabled(QStringLiteral("mnuPLC"));
        seen.usbId = state.UsbID;
        seen.connected = state.bUsbConnected;
        seen.timeOut = state.TimeOut;
        seen.lines = conditions.Count();
        seen.frames = requests();
        chooseDevice();
    };
    logic->Form_Load();

    EXPECT_EQ(seen.lire, QStringLiteral("Read parameters"));
    EXPECT_EQ(seen.langue, QStringLiteral("English"));
    EXPECT_EQ(seen.progressVisible, QStringLiteral("hidden"));
    EXPECT_FALSE(seen.ecrire);
    EXPECT_FALSE(seen.setTime);
    EXPECT_FALSE(seen.mnuPLC);
    EXPECT_EQ(seen.usbId, 1);
    EXPECT_FALSE(seen.connected);
    EXPECT_FALSE(seen.timeOut);
    EXPECT_EQ(seen.lines, 2);
    EXPECT_TRUE(seen.frames.isEmpty()) << seen.frames.join(' ').toStdString();

    // The device chosen: the full read follows at once.
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("showConnection")});
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_EQ(text("Version"), QStringLiteral("(12) 2.70"));
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Ecrire")));
    EXPECT_TRUE(dialogs.boxes().empty()) << boxTexts().join('|').toStdString();
    EXPECT_TRUE(requests().contains(QStringLiteral("R48")));
}

TEST_F(ConsoleStart, LeavingTheConnectionWindowOpensTheFormWithItsDashes) {
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

    // Connect in the menu is the way back, and a chosen device is read.
    host.onConnection = [this] { chooseDevice(); };
    logic->MnuConnect_Click();
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
    EXPECT_TRUE(requests().contains(QStringLiteral("F1")));
}

TEST_F(ConsoleStart, ConnectLeftAgainReadsNothing) {
    startWithDevice();
    host.onConnection = [this] { leaveConnection(); };
    logic->MnuConnect_Click();
    EXPECT_TRUE(requests().isEmpty());
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("showConnection")});
}

TEST_F(ConsoleStart, TheMaintenanceKeyDecidesThePanel) {
    struct Case {
        const char* element;
        bool visible;
    };
    for (const Case& c : {Case{"<Maintenance>True</Maintenance>", true},
                          Case{"<Maintenance>-1</Maintenance>", true},
                          Case{"<Maintenance>False</Maintenance>", false}, Case{"", false}}) {
        SCOPED_TRACE(c.element);
        restart();
        replaceInConfig(QStringLiteral("<Maintenance>False</Maintenance>"),
                        QString::fromUtf8(c.element));
        host.onConnection = [this] { leaveConnection(); };
        logic->Form_Load();
        EXPECT_EQ(view.isVisible(QStringLiteral("FrameMaintenance")), c.visible);
    }
}

TEST_F(ConsoleStart, TheSplashShowsOnceAndOnlyWhenTheKeyAllowsIt) {
    struct Case {
        const char* element;
        int shown;
    };
    for (const Case& c :
         {Case{"<Splash>True</Splash>", 1}, Case{"", 1}, Case{"<Splash>False</Splash>", 0}}) {
        SCOPED_TRACE(c.element);
        restart();
        replaceInConfig(QStringLiteral("<Splash>True</Splash>"), QString::fromUtf8(c.element));
        host.onConnection = [this] { leaveConnection(); };
        logic->Form_Load();
        host.calls.clear();
        for (int i = 0; i < 3; ++i)
            logic->Form_Activate();
        EXPECT_EQ(host.calls.count(QStringLiteral("showSplash")), c.shown);
    }
}

TEST_F(ConsoleStart, TheStoredRuleIsOnTheFormAfterTheStart) {
    // Summer: last week (5), Sunday (7) = 87; month 3, hour 2, 60 minutes.
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    EXPECT_TRUE(view.isChecked(QStringLiteral("EnableDaylightSaving")));
    EXPECT_EQ(text("DaylightAdjustment"), QStringLiteral("60"));
    EXPECT_EQ(text("Mois_0"), QStringLiteral("March"));
    EXPECT_EQ(text("Mois_1"), QStringLiteral("October"));
    EXPECT_EQ(text("Jour_0"), QStringLiteral("Sunday"));
    EXPECT_EQ(text("Semaine_1"), QStringLiteral("Last week"));
}

TEST_F(ConsoleStart, MenusHandTheirWindowsToTheHost) {
    struct Case {
        void (MainScreenLogic::*handler)();
        const char* call;
    };
    for (const Case& c : {Case{&MainScreenLogic::mnuPLC_Click, "showProgrammation"},
                          Case{&MainScreenLogic::mnurapport_Click, "showProduction"},
                          Case{&MainScreenLogic::nmuBootLoad_Click, "UpdateFirmware true"},
                          Case{&MainScreenLogic::mnuApropos_Click, "showAbout"}}) {
        host.calls.clear();
        ((*logic).*(c.handler))();
        EXPECT_EQ(host.calls, QStringList{QString::fromLatin1(c.call)});
    }
    EXPECT_TRUE(requests().isEmpty());
}

TEST_F(ConsoleStart, SortirSavesTheRuleAndClosesWithoutADevice) {
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    host.calls.clear();
    view.setText(QStringLiteral("DaylightAdjustment"), QStringLiteral("30"));
    view.setChecked(QStringLiteral("EnableDaylightSaving"), false);
    logic->Sortir_Click();

    EXPECT_TRUE(configText().contains(QStringLiteral("OF_ETE_HIVER=\" 30\"")));
    EXPECT_TRUE(configText().contains(QStringLiteral("DAYLIGHT_SAVING=\" 0\"")) ||
                configText().contains(QStringLiteral("DAYLIGHT_SAVING=\"0\"")));
    EXPECT_EQ(host.calls,
              (QStringList{QStringLiteral("stopTimerEntree"), QStringLiteral("closeApplication")}));
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_TRUE(requests().isEmpty());
}

} // namespace
} // namespace qv::test
