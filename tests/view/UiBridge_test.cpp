// The bridge between a device thread and the user-interface thread, with a
// real thread on the other side: calls run on the user-interface thread in
// order and return their results, boxes that answer later are waited for,
// and a closed bridge lets every waiter go.
#include "view/MapConsoleView.h"
#include "view/MarshalledDialogs.h"
#include "view/MarshalledView.h"
#include "view/UiBridge.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

namespace qv::test {
namespace {

// Runs this thread's events until `done` holds, or fails after 10 s.
template <typename F> bool pumpUntil(F done) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

class Answers : public Dialogs, public BoxPresenter {
public:
    int message(const QString&, const QString&, int) override { return MsgBox::AnswerYes; }
    void present(const QString&, const QString&, int, std::function<void(int)> answered) override {
        // The box stays up a moment, the window going on meanwhile.
        QTimer::singleShot(30, [answered] { answered(MsgBox::AnswerNo); });
    }
};

TEST(UiBridge, AViewCallFromAnotherThreadRunsOnTheUserInterfaceThread) {
    UiBridge bridge(QCoreApplication::instance());
    MapConsoleView form;
    MarshalledView view(bridge, form);
    const auto ui = std::this_thread::get_id();
    std::atomic<bool> ranOnUi{false};
    auto work = std::async(std::launch::async, [&] {
        EXPECT_FALSE(bridge.onUiThread());
        view.setText(QStringLiteral("Version"), QStringLiteral("(12) 2.70"));
        bridge.call([&] { ranOnUi = std::this_thread::get_id() == ui; });
        return view.text(QStringLiteral("Version"));
    });
    ASSERT_TRUE(pumpUntil(
        [&] { return work.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_EQ(work.get(), QStringLiteral("(12) 2.70"));
    EXPECT_TRUE(ranOnUi);
    EXPECT_EQ(form.text(QStringLiteral("Version")), QStringLiteral("(12) 2.70"));
}

TEST(UiBridge, ABoxShownWithoutALocalLoopIsWaitedForByTheSequenceAlone) {
    UiBridge bridge(QCoreApplication::instance());
    Answers answers;
    MarshalledDialogs dialogs(bridge, answers, &answers);
    int ticksWhileUp = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticksWhileUp; });
    ticker.start(5);
    auto asked = std::async(std::launch::async, [&] {
        return dialogs.message(QStringLiteral("Sure?"), QString(), MsgBox::YesNo);
    });
    ASSERT_TRUE(pumpUntil(
        [&] { return asked.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_EQ(asked.get(), MsgBox::AnswerNo);
    EXPECT_GT(ticksWhileUp, 2) << "the window ran while the box was up";
    // On the user-interface thread itself the box answers in place.
    EXPECT_EQ(dialogs.message(QStringLiteral("Sure?"), QString(), MsgBox::YesNo),
              MsgBox::AnswerYes);
}

TEST(UiBridge, ClosingLetsEveryWaiterGoWithTheWayOut) {
    UiBridge bridge(QCoreApplication::instance());
    Answers answers;
    MarshalledDialogs dialogs(bridge, answers, &answers);
    MapConsoleView form;
    MarshalledView view(bridge, form);
    form.setText(QStringLiteral("Lire"), QStringLiteral("Read"));
    // Nobody pumps this thread's events: the calls wait until the close.
    auto waiting = std::async(std::launch::async, [&] {
        const int answer = dialogs.message(QStringLiteral("Sure?"), QString(), MsgBox::YesNo);
        return std::pair(answer, view.text(QStringLiteral("Lire")));
    });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    bridge.close();
    ASSERT_EQ(waiting.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    const auto [answer, caption] = waiting.get();
    EXPECT_EQ(answer, MsgBox::AnswerNo);
    EXPECT_EQ(caption, QString()) << "a closed window reads as an empty one";
    // The calls queued before the close do not run afterwards.
    QCoreApplication::processEvents();
    EXPECT_EQ(form.text(QStringLiteral("Lire")), QStringLiteral("Read"));
}

} // namespace
} // namespace qv::test

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
