#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

using ConsoleMonitoring = ConsoleFixture;

const QString kTimeOut = QStringLiteral("Quorvel not responding (Time Out)");

TEST_F(ConsoleMonitoring, ManualActionFrames) {
    struct Case {
        int row; // of ValeurSortieLogique
        bool stop;
        void (MainScreenLogic::*handler)();
        const char* frame;
    };
    startWithDevice();
    state.TimeOut = true;
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
    // Activer clears the time-out flag and starts the short timer.
    EXPECT_FALSE(state.TimeOut);
    EXPECT_EQ(host.calls, (QStringList(3, QStringLiteral("startTest 80"))));

    // A dead device costs one box and the controls stay as they are.
    bus.unplug(id);
    view.setChecked(QStringLiteral("ArretProgramme"), true);
    logic->ArretProgramme_Click();
    EXPECT_EQ(boxTexts(), QStringList{kTimeOut});
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
    EXPECT_EQ(requests(), (QStringList{"F1", "V0", "V2", "F0"}));
    EXPECT_TRUE(host.timerEntree);
    EXPECT_TRUE(view.isChecked(QStringLiteral("Continu")));
    EXPECT_EQ(text("ValeurSortieLogique"), QStringLiteral("Open"));
    EXPECT_EQ(text("Ils"), QStringLiteral("3"));
    EXPECT_EQ(text("txtCurrentTime"), QStringLiteral("10/03/26 - 14:30:01"));

    bus.unplug(id);
    logic->TimerEntree_Timer();
    EXPECT_EQ(boxTexts(), QStringList{kTimeOut});
    EXPECT_FALSE(host.timerEntree);
    EXPECT_FALSE(view.isChecked(QStringLiteral("Continu")));

    // Ticking it on a dead device starts the timer, whose first tick stops it.
    view.setChecked(QStringLiteral("Continu"), true);
    logic->Continu_Click();
    EXPECT_TRUE(host.timerEntree);
    dialogs.clear();
    logic->TimerEntree_Timer();
    EXPECT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_FALSE(host.timerEntree);
}

TEST_F(ConsoleMonitoring, TheCycleJudgesByTheLastExchangeOfItsRound) {
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

TEST_F(ConsoleMonitoring, TheManualDelayBoxHoldsItsLimits) {
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
