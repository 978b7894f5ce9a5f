// The device thread's queue with real threads: order, ticks that wait as
// one, the wait that lets queued jobs run, and a stop that ends the thread.
#include "link/DeviceWorker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace qv::test {
namespace {

using namespace std::chrono_literals;

// Holds the worker in a job until released, so that what is posted
// meanwhile queues up behind it.
class Gate {
public:
    void hold(DeviceWorker& worker) {
        worker.post([this] { released_.get_future().wait(); });
    }
    void release() { released_.set_value(); }

private:
    std::promise<void> released_;
};

bool waitIdle(DeviceWorker& worker) {
    for (int i = 0; i < 2000; ++i) {
        if (worker.idle())
            return true;
        std::this_thread::sleep_for(1ms);
    }
    return false;
}

TEST(DeviceWorker, RunsJobsOneAtATimeInTheOrderAsked) {
    DeviceWorker worker;
    std::mutex mutex;
    std::vector<int> order;
    std::atomic<int> running{0};
    std::atomic<int> mostRunning{0};
    for (int i = 0; i < 50; ++i)
        worker.post([&, i] {
            const int now = ++running;
            mostRunning = std::max(mostRunning.load(), now);
            std::this_thread::sleep_for(100us);
            {
                const std::lock_guard hold(mutex);
                order.push_back(i);
            }
            --running;
        });
    ASSERT_TRUE(waitIdle(worker));
    ASSERT_EQ(order.size(), 50u);
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(order[static_cast<size_t>(i)], i);
    EXPECT_EQ(mostRunning, 1);
}

TEST(DeviceWorker, TicksThatFallInsideAJobWaitAsOneAndARestartDropsThem) {
    struct Case {
        const char* name;
        bool restart;
        int expected;
    };
    for (const Case& c : {Case{"coalesced", false, 1}, Case{"restarted", true, 0}}) {
        SCOPED_TRACE(c.name);
        DeviceWorker worker;
        std::atomic<int> ticks{0};
        std::atomic<int> others{0};
        Gate gate;
        gate.hold(worker);
        for (int i = 0; i < 10; ++i)
            worker.postTick(QStringLiteral("TimerEntree"), [&] { ++ticks; });
        worker.postTick(QStringLiteral("test"), [&] { ++others; });
        if (c.restart)
            worker.dropTick(QStringLiteral("TimerEntree"));
        gate.release();
        ASSERT_TRUE(waitIdle(worker));
        EXPECT_EQ(ticks, c.expected);
        EXPECT_EQ(others, 1) << "another timer's tick is its own";
    }
}

TEST(DeviceWorker, AWaitingJobRunsWhatQueuedBehindItAndNothingOnceStopping) {
    DeviceWorker worker;
    std::atomic<int> ticks{0};
    std::promise<int> waited;
    worker.post([&] {
        // The write cycle's wait: until five ticks have run.
        int turns = 0;
        while (ticks < 5 && turns < 1000) {
            worker.runQueued(5);
            ++turns;
        }
        waited.set_value(ticks);
    });
    for (int i = 0; i < 5; ++i) {
        std::this_thread::sleep_for(10ms);
        worker.postTick(QStringLiteral("test"), [&] { ++ticks; });
    }
    auto result = waited.get_future();
    ASSERT_EQ(result.wait_for(5s), std::future_status::ready);
    EXPECT_EQ(result.get(), 5);

    // A job that waits forever for a tick that never comes ends its wait
    // when the worker stops.
    std::atomic<bool> ended{false};
    worker.post([&] {
        while (worker.runQueued(5)) {
        }
        ended = true;
    });
    std::this_thread::sleep_for(20ms);
    std::atomic<bool> last{false};
    worker.stop([&] { last = true; });
    EXPECT_TRUE(ended);
    EXPECT_TRUE(last) << "the closing job runs after the one under way";
    worker.post([&] { ended = false; });
    std::this_thread::sleep_for(10ms);
    EXPECT_TRUE(ended) << "nothing runs once stopped";
}

TEST(DeviceWorker, TellsWhenItStartsWorkingAndWhenItRests) {
    DeviceWorker worker;
    std::mutex mutex;
    std::vector<bool> told;
    worker.setActivityObserver([&](bool busy) {
        const std::lock_guard hold(mutex);
        told.push_back(busy);
    });
    Gate gate;
    gate.hold(worker);
    worker.post([] {});
    worker.post([] {});
    gate.release();
    ASSERT_TRUE(waitIdle(worker));
    std::this_thread::sleep_for(5ms);
    const std::lock_guard hold(mutex);
    EXPECT_EQ(told, (std::vector<bool>{true, false})) << "one busy spell for three jobs";
}

TEST(DeviceWorker, AJobThatThrowsLeavesTheThreadRunning) {
    DeviceWorker worker;
    std::atomic<bool> after{false};
    worker.post([] { throw std::runtime_error("a fault"); });
    worker.post([&] { after = true; });
    ASSERT_TRUE(waitIdle(worker));
    EXPECT_TRUE(after);
}

} // namespace
} // namespace qv::test
