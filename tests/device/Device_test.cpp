#include "DeviceTestSupport.h"
#include "ScriptedBus.h"
#include "device/MemoryMap.h"

namespace qv {
namespace {

using test::DeviceFixture;

TEST_F(DeviceFixture, ReadsCombineBytesLittleEndianWithSign) {
    const auto id = plug();
    struct Case {
        int low, high;
        std::int16_t word;
    };
    for (const Case c : {Case{0xFF, 0xFF, -1}, Case{0x00, 0x80, -32768}, Case{0x2C, 0x01, 300},
                         Case{0xFF, 0x7F, 32767}}) {
        bus.modify(id, [&](SimDevice& d) {
            d.setEeprom(45, c.low);
            d.setEeprom(46, c.high);
        });
        EXPECT_EQ(device.LitEEpromMot(45), c.word);
    }
    struct LongCase {
        std::array<int, 4> bytes;
        std::int32_t value;
    };
    for (const LongCase c :
         {LongCase{{0, 0, 0, 0x80}, INT32_MIN}, LongCase{{255, 255, 255, 255}, -1},
          LongCase{{0x78, 0x56, 0x34, 0x12}, 0x12345678}}) {
        bus.modify(id, [&](SimDevice& d) {
            for (int i = 0; i < 4; ++i)
                d.setEeprom(33 + i, c.bytes[static_cast<size_t>(i)]);
        });
        EXPECT_EQ(device.LitEEpromlong(33), c.value);
        EXPECT_EQ(device.LitValeurTimer(), c.value);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(DeviceFixture, HighAddressesAreReadWithTwoAddressBytes) {
    const auto id = plug();
    bus.modify(id, [](SimDevice& d) { d.setEeprom(300, 0x5A); });
    bus.clearTrace();
    EXPECT_EQ(device.LitEEprom(300), 0x5A);
    // The request carries 44 and 1: the low and high bytes of 300.
    EXPECT_TRUE(bus.traceLines().at(0).contains(QStringLiteral("> FE 2C 01 00")));
}

TEST_F(DeviceFixture, WritesLandLowByteFirst) {
    const auto id = plug();
    device.EcritEEpromMot(45, -2);
    EXPECT_EQ(sim(id).eeprom(45), 254);
    EXPECT_EQ(sim(id).eeprom(46), 255);
    device.EcritEEpromLong(16, 90601234);
    EXPECT_EQ(sim(id).serialNumber(), 90601234u);
    EXPECT_EQ(device.EcritEEprom(40, 9), 9);
    EXPECT_EQ(sim(id).eeprom(40), 9);
}

TEST_F(DeviceFixture, WriteAboveTheWritableAreaFailsBeforeSending) {
    plug();
    bus.clearTrace();
    EXPECT_THROW(device.EcritEEprom(256, 1), OverflowError);
    EXPECT_THROW(device.EcritEEprom(10, 256), OverflowError);
    EXPECT_TRUE(bus.traceLines().isEmpty());
}

TEST_F(DeviceFixture, LiveValues) {
    const auto id = plug();
    bus.modify(id, [](SimDevice& d) {
        d.setOutputState(1);
        d.setIlsInput(7);
    });
    EXPECT_EQ(device.LitValeur(LiveValue::OutputState), 1);
    EXPECT_EQ(device.LitValeur(LiveValue::IlsInput), 7);
}

TEST_F(DeviceFixture, DeadDeviceGivesZeroAndOneBoxPerByte) {
    const auto id = plug();
    bus.unplug(id);
    EXPECT_EQ(device.LitValeur(0), 0);
    EXPECT_TRUE(state.TimeOut);
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, QStringLiteral("Quorvel Absent (Time Out)"));
    dialogs.clear();
    EXPECT_EQ(device.LitEEpromlong(16), 0);
    EXPECT_EQ(dialogs.boxes().size(), 4u);
}

TEST_F(DeviceFixture, ResetIsSilentAndShowsNothing) {
    const auto id = plug();
    device.ResetDevice();
    EXPECT_EQ(sim(id).restartCount(), 1);
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_TRUE(state.TimeOut); // the restarting device does not answer
}

TEST_F(DeviceFixture, CountersAreTakenOverAfterReload) {
    const auto id = plug();
    for (int i = 0; i < 5; ++i)
        device.EcritEEprom(Address::Counters + i, 0);
    device.ForceRelectureCompteur();
    EXPECT_FALSE(state.TimeOut);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(sim(id).counter(i), 0);
}

TEST(LogWordsTest, FromTheCachedBytes) {
    const std::vector<int> logs{0x34, 0x12, 0xFF, 0xFF};
    EXPECT_EQ(Device::LitLogsMot(logs, 0), 0x1234);
    EXPECT_EQ(Device::LitLogsMot(logs, 2), -1);
    EXPECT_EQ(Device::LitLogsMot(logs, 3), 0); // past the end
}

} // namespace
} // namespace qv

namespace qv {
namespace {

TEST(LiveWordTest, LowThenHighWithSign) {
    test::ScriptedBus bus;
    test::RecordingDialogs dialogs;
    PublicState state;
    FrameLink link(bus, dialogs, state);
    link.setPause([](int) {});
    Device device(link, [] { return QStringLiteral("absent"); });
    struct Case {
        int low, high;
        std::int32_t value;
    };
    for (const Case c : {Case{0x34, 0x82, -32204}, Case{0xFF, 0x7F, 32767}, Case{1, 0, 1}}) {
        bus.written.clear();
        bus.replies.push_back(test::ScriptedBus::checked(QByteArray("\xFC", 1) + char(c.low)));
        bus.replies.push_back(test::ScriptedBus::checked(QByteArray("\xFC", 1) + char(c.high)));
        EXPECT_EQ(device.LitValeurMot(6), c.value);
        ASSERT_EQ(bus.written.size(), 2u);
        EXPECT_EQ(bus.written[0][1], 6); // the low byte's address first
        EXPECT_EQ(bus.written[1][1], 7);
    }
}

} // namespace
} // namespace qv
