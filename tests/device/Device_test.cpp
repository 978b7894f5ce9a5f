#include "DeviceTestSupport.h"
#include "device/MemoryMap.h"

namespace qv {
namespace {

using test::DeviceFixture;

TEST_F(DeviceFixture, ReadsCombineBytesLittleEndianWithSign) {
    const auto id = plug();
    const auto set = [&](int address, std::vector<int> bytes) {
        bus.modify(id, [&](SimDevice& d) {
            for (int b : bytes)
                d.setEeprom(address++, b);
        });
    };
    for (const auto& [low, high, word] : {std::tuple{0xFF, 0xFF, -1},
                                          {0x00, 0x80, -32768},
                                          {0x2C, 0x01, 300},
                                          {0xFF, 0x7F, 32767}}) {
        set(45, {low, high});
        EXPECT_EQ(device.LitEEpromMot(45), word);
    }
    for (const auto& [bytes, value] : {std::pair{std::vector<int>{0, 0, 0, 0x80}, INT32_MIN},
                                       {{0x78, 0x56, 0x34, 0x12}, 0x12345678}}) {
        set(33, bytes);
        EXPECT_EQ(device.LitEEpromlong(33), value);
        EXPECT_EQ(device.LitValeurTimer(), value);
    }
    // Addresses above 255 go out with two address bytes: 44 and 1 for 300.
    set(300, {0x5A});
    bus.clearTrace();
    EXPECT_EQ(device.LitEEprom(300), 0x5A);
    EXPECT_TRUE(bus.traceLines().at(0).contains(QStringLiteral("> FE 2C 01 00")));
    bus.modify(id, [](SimDevice& d) { d.setIlsInput(7); });
    EXPECT_EQ(device.LitValeur(LiveValue::IlsInput), 7);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(DeviceFixture, WritesLandLowByteFirstAndOutOfRangeFailsBeforeSending) {
    const auto id = plug();
    device.EcritEEpromMot(45, -2);
    EXPECT_EQ(sim(id).eeprom(45), 254);
    EXPECT_EQ(sim(id).eeprom(46), 255);
    device.EcritEEpromLong(16, 90601234);
    EXPECT_EQ(sim(id).serialNumber(), 90601234u);
    EXPECT_EQ(device.EcritEEprom(40, 9), 9);
    bus.clearTrace();
    EXPECT_THROW(device.EcritEEprom(256, 1), OverflowError);
    EXPECT_THROW(device.EcritEEprom(10, 256), OverflowError);
    EXPECT_TRUE(bus.traceLines().isEmpty());

    // Counters are taken over after the reload.
    for (int i = 0; i < 5; ++i)
        device.EcritEEprom(Address::Counters + i, 0);
    device.ForceRelectureCompteur();
    EXPECT_FALSE(state.TimeOut);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(sim(id).counter(i), 0);
}

TEST_F(DeviceFixture, DeadDeviceGivesZeroAndOneBoxPerByteAndResetShowsNothing) {
    const auto id = plug();
    device.ResetDevice();
    EXPECT_EQ(sim(id).restartCount(), 1);
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_TRUE(state.TimeOut); // the restarting device does not answer

    bus.unplug(id);
    EXPECT_EQ(device.LitValeur(0), 0);
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, QStringLiteral("Quorvel Absent (Time Out)"));
    dialogs.clear();
    EXPECT_EQ(device.LitEEpromlong(16), 0);
    EXPECT_EQ(dialogs.boxes().size(), 4u);
}

} // namespace
} // namespace qv
