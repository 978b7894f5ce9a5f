#include "SimTestSupport.h"

#include <vector>

namespace qv::test {
namespace {

using SimCommands = SimFixture;

TEST_F(SimCommands, FramesThatAreNotRightGetNoAnswer) {
    const std::int32_t id = add();
    QByteArray badCheck = checkedFrame({0xF0});
    badCheck[15] = static_cast<char>(badCheck.at(15) ^ 0x01);
    QByteArray badData = checkedFrame({0xFE, 16});
    badData[1] = 17;
    const std::vector<std::pair<const char*, QByteArray>> cases = {
        {"check value", badCheck},
        {"data byte changed after the check", badData},
        {"unknown command 0xF2", checkedFrame({0xF2})},
        {"restart", checkedFrame({0x00})},
        {"fifteen bytes", checkedFrame({0xF0}).left(15)},
        {"seventeen bytes", checkedFrame({0xF0}) + QByteArray(1, '\0')},
    };
    for (const auto& [what, frame] : cases) {
        nowMs += 10000; // past any restart silence of the case before
        EXPECT_FALSE(transfer(id, frame).has_value()) << what;
    }
}

TEST_F(SimCommands, IdentityCarriesVersionsCodeAndBatteryInTheirBytes) {
    struct Case {
        const char* firmware;
        const char* bootloader;
        int hardware;
        int battery;
        const char* expected;
    };
    for (const Case& c : {Case{"2.70", "1.3", 12, 950, "f0020c460003b60103"},
                          Case{"2.05", "0.0", 12, 1023, "f0020c050003ff0000"},
                          Case{"3.10", "2.9", 4, 256, "f003040a0001000209"},
                          Case{"2.100", "1.3", 12, 0, "f0020c640000000103"}}) {
        SimDeviceConfig config = firmware(c.firmware);
        config.bootloader = *BootloaderVersion::parse(QString::fromLatin1(c.bootloader));
        config.hardwareCode = c.hardware;
        config.battery = c.battery;
        const QByteArray expected = QByteArray::fromHex(c.expected);
        EXPECT_EQ(command(add(config), {0xF0}).value_or("").left(expected.size()), expected)
            << c.firmware;
    }
}

TEST_F(SimCommands, EepromReadsByFullAddressAndWritesAnswerTheStoredValue) {
    SimDeviceConfig config;
    config.serial = 0x12345678;
    const std::int32_t id = add(config);
    const auto log = SimDevice::logBytes(id);
    struct Case {
        int low, high, expected;
    };
    for (const Case& c :
         {Case{16, 0, 0x78}, Case{19, 0, 0x12}, Case{48, 0, 255}, Case{0, 1, log[0]},
          Case{255, 1, log[255]}, Case{0, 2, 0}, Case{255, 255, 0}})
        EXPECT_EQ(answer(id, {0xFE, c.low, c.high}), c.expected) << c.low + 256 * c.high;
    for (const auto& [address, value] : {std::pair{16, 0xD2}, {45, 0}, {255, 17}}) {
        EXPECT_EQ(answer(id, {0xFF, address, value}), value) << address;
        EXPECT_EQ(answer(id, {0xFE, address, 0}), value) << address;
    }
    EXPECT_FALSE(bus.device(id)->inBootloader());
}

TEST_F(SimCommands, RestartIsSilentForItsTimeThenAnswers) {
    const std::int32_t id = add();
    bus.modify(id, [](SimDevice& d) { d.setIlsInput(1); });
    ASSERT_TRUE(command(id, {0x04, 255, 255, 1}).has_value());
    EXPECT_FALSE(command(id, {0x00}).has_value());
    EXPECT_EQ(bus.device(id)->restartCount(), 1);
    nowMs += 1999;
    EXPECT_FALSE(command(id, {0xF0}).has_value());
    nowMs += 1;
    EXPECT_TRUE(command(id, {0xF0}).has_value());
    // The restart ended the programme stop and recorded the ILS state.
    EXPECT_FALSE(bus.device(id)->programmeStopped());
    EXPECT_EQ(answer(id, {0xFE, SimDevice::kIlsAddress, 0}), 1);

    bus.setRestartSilence(300);
    command(id, {0x00});
    nowMs += 299;
    EXPECT_FALSE(command(id, {0xF0}).has_value());
    nowMs += 1;
    EXPECT_TRUE(command(id, {0xF0}).has_value());
}

} // namespace
} // namespace qv::test
