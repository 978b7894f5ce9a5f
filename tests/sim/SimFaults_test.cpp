#include "SimTestSupport.h"

#include <string>

namespace qv::test {
namespace {

using SimFaults = SimFixture;

TEST_F(SimFaults, DropCorruptAndShortenTheNextRepliesOnly) {
    const std::int32_t id = add();
    ASSERT_TRUE(bus.dropReplies(id, 2));
    EXPECT_FALSE(command(id, {0xFF, 50, 9}).has_value());
    EXPECT_EQ(bus.device(id)->eeprom(50), 9) << "only the answer is lost";
    EXPECT_FALSE(command(id, {0xF0}).has_value());
    EXPECT_TRUE(command(id, {0xF0}).has_value());

    bus.corruptReplies(id, 1);
    const auto corrupt = command(id, {0xFE, 16, 0});
    ASSERT_TRUE(corrupt.has_value());
    EXPECT_EQ(corrupt->size(), 4);
    EXPECT_EQ(at(*corrupt, 0), 0xFE) << "the payload is intact";
    EXPECT_FALSE(checkValueHolds(*corrupt));
    EXPECT_TRUE(checkValueHolds(*command(id, {0xFE, 16, 0})));

    bus.shortenReplies(id, 2, 3);
    EXPECT_EQ(command(id, {0xF0})->size(), 3);
    EXPECT_EQ(command(id, {0xF1})->size(), 3);
    EXPECT_EQ(command(id, {0xF0})->size(), 11);
}

TEST_F(SimFaults, DropRateIsRepeatableForASeed) {
    auto pattern = [this](std::int32_t id) {
        std::string lost;
        for (int i = 0; i < 200; ++i)
            lost += command(id, {0xF0}).has_value() ? '.' : 'x';
        return lost;
    };
    const std::int32_t a = add();
    const std::int32_t b = add();
    bus.setDropRate(a, 0.5, 42);
    bus.setDropRate(b, 0.5, 42);
    const std::string first = pattern(a);
    EXPECT_EQ(first, pattern(b));
    const auto losses = std::count(first.begin(), first.end(), 'x');
    EXPECT_GT(losses, 60);
    EXPECT_LT(losses, 140);
    bus.setDropRate(a, 0.5, 43);
    EXPECT_NE(pattern(a), first);
    bus.setDropRate(a, 0.0, 1);
    EXPECT_EQ(pattern(a), std::string(200, '.'));
}

TEST_F(SimFaults, UnplugTakesTheDeviceOffTheBusAndKillsItsHandles) {
    const std::int32_t first = add();
    const std::int32_t second = add();
    auto oldHandle = bus.open(first);
    ASSERT_TRUE(oldHandle->write(checkedFrame({0xF0}))); // its reply is pending

    ASSERT_TRUE(bus.unplug(first));
    EXPECT_EQ(bus.deviceCount(), 1);
    EXPECT_EQ(bus.uniqueId(0), second);
    EXPECT_EQ(bus.open(first), nullptr);
    EXPECT_TRUE(oldHandle->read(16).isEmpty());
    EXPECT_FALSE(oldHandle->write(checkedFrame({0xF0})));
    EXPECT_EQ(oldHandle->lastError(), SimulatedBus::kNoDevice);

    ASSERT_TRUE(bus.replug(first));
    EXPECT_EQ(bus.deviceCount(), 2);
    EXPECT_EQ(bus.uniqueId(0), first) << "the order of the bus stays";
    EXPECT_FALSE(oldHandle->write(checkedFrame({0xF0}))) << "a handle does not survive a replug";
    EXPECT_TRUE(bus.open(first)->read(64).isEmpty()) << "the pending reply is lost";
    EXPECT_TRUE(command(first, {0xF0}).has_value());

    // Faults on a device that is not there are refused.
    EXPECT_FALSE(bus.dropReplies(77, 1) || bus.unplug(77) || bus.replug(77) ||
                 bus.modify(77, [](SimDevice&) {}));
}

TEST_F(SimFaults, ReadWaitSleepsOnlyOnASilentDevice) {
    const std::int32_t id = add();
    std::vector<int> sleeps;
    bus.setSleep([&](int ms) { sleeps.push_back(ms); });
    bus.setReadWait(25);
    EXPECT_TRUE(command(id, {0xF0}).has_value());
    EXPECT_TRUE(sleeps.empty());
    EXPECT_FALSE(command(id, {0x05}).has_value());
    EXPECT_EQ(sleeps, std::vector<int>{25});
}

TEST_F(SimFaults, ALateReplyComesJustAfterItsReadAndANewRequestMakesItStale) {
    SimDeviceConfig config;
    config.serial = 1234; // D2 04 00 00 at 16..19
    const std::int32_t id = add(config);
    std::vector<int> sleeps;
    bus.setSleep([&](int ms) { sleeps.push_back(ms); });
    bus.setReadWait(25);
    ASSERT_TRUE(bus.delayReply(id, 2));
    EXPECT_EQ(answer(id, {0xFE, 16, 0}), 0xD2) << "the first reply is on time";

    auto handle = bus.open(id);
    ASSERT_TRUE(handle->write(checkedFrame({0xFE, 17, 0})));
    EXPECT_TRUE(handle->read(64).isEmpty()) << "the read waits its time in vain";
    EXPECT_EQ(sleeps, std::vector<int>{25});
    EXPECT_TRUE(bus.takeLateArrival(id));
    EXPECT_FALSE(bus.takeLateArrival(id)) << "told once";
    const QByteArray late = handle->read(64);
    ASSERT_EQ(late.size(), 4) << "then it stands ready";
    EXPECT_EQ(at(late, 1), 0x04);

    // Unread, it goes stale at the next request, and later replies are on time.
    ASSERT_TRUE(bus.delayReply(id, 1));
    ASSERT_TRUE(handle->write(checkedFrame({0xFE, 16, 0})));
    EXPECT_TRUE(handle->read(64).isEmpty());
    EXPECT_EQ(answer(id, {0xFE, 18, 0}), 0x00);
    EXPECT_EQ(answer(id, {0xFE, 17, 0}), 0x04);
    EXPECT_FALSE(bus.delayReply(77, 1));
}

TEST_F(SimFaults, TheLinkOverALateReplyRetriesAndEveryValueIsItsOwn) {
    SimDeviceConfig config;
    config.serial = 1234;
    const std::int32_t id = add(config);
    bus.setSleep([](int) {});
    bus.setReadWait(25);
    ASSERT_TRUE(bus.delayReply(id, 1));
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link(bus, dialogs, state);
    link.setPause([](int) {});
    const std::pair<int, int> expected[] = {{16, 0xD2}, {17, 0x04}, {18, 0x00}, {16, 0xD2}};
    for (const auto& [address, value] : expected) {
        SCOPED_TRACE(address);
        Bytes reply;
        std::int16_t length = 2;
        ASSERT_TRUE(
            link.EchangeUsb(id, {0xFE, address}, 16, reply, length, QString(), true, QString()));
        EXPECT_EQ(reply.at(1), value);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

} // namespace
} // namespace qv::test
