// An exchange blocks its caller, but the window must keep painting and its
// timers ticking meanwhile; two exchanges must never reach the bus at once.
#include "AppTestSupport.h"
#include "link/ResponsiveWait.h"

#include <QElapsedTimer>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace qv::test {
namespace {

// A device that takes its time over every transfer, and counts how many
// transfers run at the same moment.
class SlowBus : public Bus {
public:
    explicit SlowBus(int ms) : ms_(ms) {}
    int deviceCount() override { return 1; }
    std::int32_t uniqueId(int) override { return 7; }
    std::unique_ptr<BusHandle> open(std::int32_t) override {
        return std::make_unique<Handle>(*this);
    }

    std::atomic<int> running{0};
    std::atomic<int> mostAtOnce{0};
    std::atomic<int> transfers{0};

private:
    class Handle : public BusHandle {
    public:
        explicit Handle(SlowBus& bus) : bus_(bus) {}
        bool write(const QByteArray&) override {
            work();
            return true;
        }
        QByteArray read(int) override {
            work();
            return QByteArray(3, '\x2A');
        }

    private:
        void work() {
            const int now = ++bus_.running;
            int most = bus_.mostAtOnce;
            while (now > most && !bus_.mostAtOnce.compare_exchange_weak(most, now)) {
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(bus_.ms_));
            --bus_.running;
            ++bus_.transfers;
        }
        SlowBus& bus_;
    };
    int ms_;
};

// Ticks of a 5 ms timer while `blockingCall` runs.
int ticksDuring(const std::function<void()>& blockingCall) {
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(5);
    blockingCall();
    return ticks;
}

TEST(ResponsiveWait, TimersTickWhileTheCallerWaits) {
    SlowBus slow(200);
    ResponsiveBus bus(slow);
    const auto handle = bus.open(7);
    ASSERT_NE(handle, nullptr);
    struct Case {
        const char* what;
        std::function<void()> call;
    };
    const std::vector<Case> cases = {
        {"wait", [] { waitResponsively(200); }},
        {"write", [&] { EXPECT_TRUE(handle->write(QByteArray(16, '\0'))); }},
        {"read", [&] { EXPECT_EQ(handle->read(3), QByteArray(3, '\x2A')); }},
    };
    for (const Case& c : cases) {
        QElapsedTimer clock;
        clock.start();
        const int ticks = ticksDuring(c.call);
        EXPECT_GE(clock.elapsed(), 190) << c.what << ": the caller is held until the end";
        EXPECT_GE(ticks, 5) << c.what;
    }
}

TEST(ResponsiveWait, ThePlainBusBlocksTimersWhichIsWhatTheDecoratorIsFor) {
    SlowBus slow(100);
    const auto handle = slow.open(7);
    EXPECT_EQ(ticksDuring([&] { handle->write(QByteArray(16, '\0')); }), 0);
}

TEST(ResponsiveWait, TransfersStartedFromATimerDuringAWaitDoNotOverlap) {
    SlowBus slow(30);
    ResponsiveBus bus(slow);
    const auto first = bus.open(7);
    const auto second = bus.open(7);
    int nested = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++nested;
        second->read(3);
    });
    timer.start(2);
    for (int i = 0; i < 5; ++i)
        first->write(QByteArray(16, '\0'));
    timer.stop();
    EXPECT_GT(nested, 0) << "the timer did run during the waits";
    EXPECT_EQ(slow.mostAtOnce.load(), 1);
    EXPECT_EQ(slow.transfers.load(), 5 + nested);
}

TEST(ResponsiveWait, AFailureOfTheWorkReachesTheCaller) {
    EXPECT_THROW(runResponsively([] { throw std::runtime_error("lost"); }), std::runtime_error);
    int done = 0;
    runResponsively([&] { ++done; });
    EXPECT_EQ(done, 1);
}

TEST(ResponsiveWait, TheLinkPauseStaysTenMillisecondsAndKeepsTheWindowAlive) {
    SlowBus slow(0);
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link(slow, dialogs, state);
    makePauseResponsive(link);
    QElapsedTimer clock;
    clock.start();
    const int ticks = ticksDuring([&] {
        for (int i = 0; i < 5; ++i)
            link.pause();
    });
    EXPECT_GE(clock.elapsed(), 5 * FrameLink::kPauseMs);
    EXPECT_LT(clock.elapsed(), 5 * FrameLink::kPauseMs + 200);
    EXPECT_GE(ticks, 2);
}

TEST(ResponsiveWait, OpeningAndCountingPassThrough) {
    SlowBus slow(0);
    ResponsiveBus bus(slow);
    EXPECT_EQ(bus.deviceCount(), 1);
    EXPECT_EQ(bus.uniqueId(0), 7);
    EXPECT_EQ(&bus.inner(), &slow);
    EmptyBus nothing;
    ResponsiveBus none(nothing);
    EXPECT_EQ(none.open(7), nullptr);
}

} // namespace
} // namespace qv::test
