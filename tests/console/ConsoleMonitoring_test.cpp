#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

using ConsoleMonitoring = ConsoleFixture;

TEST_F(ConsoleMonitoring, ManualActionFrames) {
    struct Case {
        int row; // of ValeurSortieLogique
        bool stop;
        void (MainScreenLogic::*handler)();
        const char* frame;
    };
    startWithDevice();
    for (const Case& c : {Case{1, false, &MainScreenLogic::Activer_Click, "04 3 1 0"},
                          Case{0, false, &MainScreenLogic::Activer_Click, "04 3 0 0"},
                          Case{1, true, &MainScreenLogic::Activer_Click, "04 3 1 1"},
                          Case{1, true, &MainScreenLogic::ArretProgramme_Click, "04 255 255 1"},
                          Case{0, false, &MainScreenLogic::ArretProgramme_Click, "04 255 255 0"}}) {
        SCOPED_TRACE(c.frame);
        bus.clearTrace();
        view.setCurrentRow(QStringLiteral("ValeurSortieLogique"), c.row);
        view.setChecked(QStringLiteral("ArretProgramme"), c.stop);
        ((*logic).*(c.handler))();
        EXPECT_EQ(requests(), QStringList{QString::fromLatin1(c.frame)});
        EXPECT_EQ(sim().programmeStopped(), c.stop);
    }
    EXPECT_EQ(sim().outputState(), 1);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(ConsoleMonitoring, ActiverClearsTimeOutAndStartsTheShortTimer) {
    startWithDevice();
    state.TimeOut = true;
    view.setCurrentRow(QStringLiteral("ValeurSortieLogique"), 1);
    logic->Activer_Click();
    EXPECT_EQ(host.calls, QStringList{QStringLiteral("startTest 80")});
    EXPECT_FALSE(state.TimeOut);
    EXPECT_EQ(sim().outputState(), 1);
}

TEST_F(ConsoleMonitoring, AManualActionToADeadDeviceShowsOneBoxAndKeepsTheControls) {
    startWithDevice();
    bus.unplug(id);
    view.setChecked(QStringLiteral("ArretProgramme"), true);
    logic->ArretProgramme_Click();
    EXPECT_EQ(boxTexts(), QStringList{QStringLiteral("Quorvel not responding (Time Out)")});
    EXPECT_TRUE(view.isChecked(QStringLiteral("ArretProgramme")));
}

TEST_F(ConsoleMonitoring, TheContinuousCycleReadsLiveValuesUntilTheDeviceGoes) {
    startWithDevice();
    view.setChecked(QStringLiteral("Continu"), true);
    logic->Continu_Click();
    EXPECT_TRUE(host.timerEntree);
    EXPECT_TRUE(requests().contains(QStringLiteral("R48"))); // a full read first

    bus.clearTrace();
    bus.modify(id, [](SimDevice& d) {
        d.setOutputState(1);
        d.setIlsInput(3);
    });
    busMs += 1000;
    logic->TimerEntree_Timer();
    EXPECT_EQ(requests(), (QStringList{QStringLiteral("F1"), QStringLiteral("V0"),
                                       QStringLiteral("V2"), QStringLiteral("F0")}));
    EXPECT_TRUE(host.timerEntree);
    EXPECT_TRUE(view.isChecked(QStringLiteral("Continu")));
    EXPECT_EQ(text("ValeurSortieLogique"), QStringLiteral("Open"));
    EXPECT_EQ(text("Ils"), QStringLiteral("3"));
    EXPECT_EQ(text("txtCurrentTime"), QStringLiteral("10/03/26 - 14:30:01"));

    bus.unplug(id);
    logic->TimerEntree_Timer();
    EXPECT_EQ(boxTexts(), QStringList{QStringLiteral("Quorvel not responding (Time Out)")});
    EXPECT_FALSE(host.timerEntree);
    EXPECT_FALSE(view.isChecked(QStringLiteral("Continu")));
    EXPECT_FALSE(logic->busy());
}

TEST_F(ConsoleMonitoring, TheCycleJudgesByTheLastExchangeOfItsRound) {
    struct Case {
        int corrupted; // replies, from the round's first exchange on
        bool keepsRunning;
        size_t boxes;
    };
    // A round is four exchanges of up to three tries each. The flags are
    // those of the last exchange, so a bad clock reply alone goes by.
    for (const Case& c : {Case{3, true, 1}, Case{12, false, 4}}) {
        SCOPED_TRACE(c.corrupted);
        restart();
        startWithDevice();
        view.setChecked(QStringLiteral("Continu"), true);
        logic->Continu_Click();
        dialogs.clear();
        bus.corruptReplies(id, c.corrupted);
        logic->TimerEntree_Timer();
        EXPECT_EQ(host.timerEntree, c.keepsRunning);
        EXPECT_EQ(view.isChecked(QStringLiteral("Continu")), c.keepsRunning);
        EXPECT_EQ(dialogs.boxes().size(), c.boxes);
        for (const auto& box : dialogs.boxes())
            EXPECT_EQ(box.text, QStringLiteral("Quorvel not responding (CRC error)"));
    }
}

TEST_F(ConsoleMonitoring, TickingContinuOnADeadDeviceStartsTheTimerThatThenStops) {
    startWithDevice();
    bus.unplug(id);
    view.setChecked(QStringLiteral("Continu"), true);
    logic->Continu_Click();
    EXPECT_GT(dialogs.boxes().size(), 1u);
    EXPECT_TRUE(host.timerEntree);
    dialogs.clear();
    logic->TimerEntree_Timer();
    EXPECT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_FALSE(host.timerEntree);
    EXPECT_FALSE(view.isChecked(QStringLiteral("Continu")));
}

TEST_F(ConsoleMonitoring, UntickingContinuStopsWithoutReading) {
    startWithDevice();
    view.setChecked(QStringLiteral("Continu"), true);
    logic->Continu_Click();
    bus.clearTrace();
    view.setChecked(QStringLiteral("Continu"), false);
    logic->Continu_Click();
    EXPECT_FALSE(host.timerEntree);
    EXPECT_TRUE(requests().isEmpty());
}

TEST_F(ConsoleMonitoring, TheManualDelayBoxHoldsItsLimits) {
    struct Case {
        const char* typed;
        const char* kept;
    };
    for (const Case& c :
         {Case{"1", "2"}, Case{"a", "2"}, Case{"", "2"}, Case{"-5", "2"}, Case{"65536", "65535"},
          Case{"300", "300"}, Case{"65535", "65535"}, Case{"2", "2"}, Case{"2,5", "2,5"}}) {
        SCOPED_TRACE(c.typed);
        view[QStringLiteral("ValeurManualAction")].text = QString::fromUtf8(c.typed);
        logic->ValeurManualAction_Change();
        EXPECT_EQ(text("ValeurManualAction"), QString::fromUtf8(c.kept));
    }
}

} // namespace
} // namespace qv::test
