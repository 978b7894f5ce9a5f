// Several controllers served at once: one waiting on a silent device holds
// up nobody else, and a controller pulled out in the middle goes alone.
#include "SimOptions.h"
#include "SimTestSupport.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <thread>

namespace qv {
namespace {

using test::checkedFrame;

TEST(SimConcurrency, AReadWaitingOnOneDeviceHoldsUpNoOtherDevice) {
    SimulatedBus bus;
    const std::int32_t silent = bus.addDevice({});
    const std::int32_t busy = bus.addDevice({});
    bus.dropReplies(silent, 1);
    bus.setReadWait(200);
    std::mutex mutex;
    std::condition_variable cv;
    bool waiting = false, released = false;
    bus.setSleep([&](int) {
        std::unique_lock lock(mutex);
        waiting = true;
        cv.notify_all();
        // Held until the other device has been served (ten seconds at most).
        cv.wait_for(lock, std::chrono::seconds(10), [&] { return released; });
    });

    std::thread reader([&] {
        auto handle = bus.open(silent);
        handle->write(checkedFrame({0xF0}));
        EXPECT_TRUE(handle->read(64).isEmpty());
    });
    {
        std::unique_lock lock(mutex);
        ASSERT_TRUE(cv.wait_for(lock, std::chrono::seconds(5), [&] { return waiting; }));
    }
    // The silent device's read is now waiting; the other answers at once.
    int answered = 0;
    for (int i = 0; i < 20; ++i) {
        auto handle = bus.open(busy);
        handle->write(checkedFrame({0xFE, 16}));
        answered += handle->read(64).isEmpty() ? 0 : 1;
    }
    bool stillWaiting = false;
    {
        std::lock_guard lock(mutex);
        stillWaiting = !released;
        released = true;
    }
    cv.notify_all();
    reader.join();
    EXPECT_EQ(answered, 20);
    EXPECT_TRUE(stillWaiting);
}

TEST(SimConcurrency, UnplugAfterAnswersThatManyRequestsThenTheDeviceIsGone) {
    SimulatedBus bus;
    const std::int32_t first = bus.addDevice({});
    const std::int32_t second = bus.addDevice({});
    bus.unplugAfter(second, 2);
    for (int i = 0; i < 2; ++i) {
        auto handle = bus.open(second);
        ASSERT_TRUE(handle);
        EXPECT_TRUE(handle->write(checkedFrame({0xF0})));
        EXPECT_FALSE(handle->read(64).isEmpty());
    }
    auto handle = bus.open(second);
    ASSERT_TRUE(handle);
    EXPECT_FALSE(handle->write(checkedFrame({0xF0})));
    EXPECT_EQ(handle->lastError(), SimulatedBus::kNoDevice);
    EXPECT_FALSE(bus.open(second));
    EXPECT_EQ(bus.deviceCount(), 1);
    EXPECT_EQ(bus.uniqueId(0), first);
    // Each device's trace holds its own transfers only: two requests, two
    // replies.
    EXPECT_EQ(bus.traceLines(second).size(), 4);
    EXPECT_TRUE(bus.traceLines(first).isEmpty());
    // Replugged, it stays.
    bus.replug(second);
    EXPECT_EQ(bus.deviceCount(), 2);
    auto again = bus.open(second);
    EXPECT_TRUE(again->write(checkedFrame({0xF0})));
}

TEST(SimConcurrency, TheUnplugAfterOptionPullsOutTheLastDevice) {
    QString error;
    const auto options = parseSimOptions(QStringLiteral("devices=3,unplugAfter=1"), &error);
    ASSERT_TRUE(options) << error.toStdString();
    auto bus = SimulatedBus::fromOptions(*options, &error);
    ASSERT_TRUE(bus);
    const auto ids = bus->deviceIds();
    for (std::int32_t id : ids) {
        auto handle = bus->open(id);
        EXPECT_TRUE(handle->write(checkedFrame({0xF0})));
        EXPECT_TRUE(bus->open(id)->write(checkedFrame({0xF0})) == (id != ids.back()));
    }
    EXPECT_EQ(bus->deviceCount(), 2);
    EXPECT_FALSE(parseSimOptions(QStringLiteral("unplugAfter=-1")));
}

} // namespace
} // namespace qv
