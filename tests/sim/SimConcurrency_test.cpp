#include "SimTestSupport.h"

#include <chrono>
#include <condition_variable>
#include <thread>

namespace qv::test {
namespace {

// Several controllers served at once: one waiting on a silent device holds
// up nobody else.
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

} // namespace
} // namespace qv::test
