#include "SimTestSupport.h"

#include <random>
#include <vector>

namespace qv::test {
namespace {

using SimCommands = SimFixture;

const QByteArray kLegacyProbe = QByteArray(1, '\xF0') + QByteArray(11, '\0');

TEST_F(SimCommands, FramesThatAreNotRightGetNoAnswer) {
    const std::int32_t id = add();
    QByteArray badCheck = checkedFrame({0xF0});
    badCheck[15] = static_cast<char>(badCheck.at(15) ^ 0x01);
    QByteArray badData = checkedFrame({0xFE, 16});
    badData[1] = 17;
    const std::vector<std::pair<const char*, QByteArray>> cases = {
        {"check value", badCheck},
        {"data byte changed after the check", badData},
        {"unknown command 0x05", checkedFrame({0x05})},
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

// Garbage of every length, half of it with a valid check value: the model
// answers only with well-formed replies and never falls over.
TEST_F(SimCommands, GarbageGetsWellFormedRepliesOrNone) {
    const std::int32_t id = add(firmware("2.60"));
    std::mt19937 random(2024);
    int answered = 0;
    for (int i = 0; i < 3000; ++i) {
        const bool frameSized = random() % 2 == 0;
        QByteArray request(frameSized ? 16 : static_cast<int>(random() % 20) + 1, '\0');
        for (auto& b : request)
            b = static_cast<char>(random() % 4 == 0 ? 0 : random());
        if (frameSized && random() % 2 == 0) {
            static const int known[] = {0x00, 0x01, 0x02, 0x03, 0x04, 0x1F, 0xF0,
                                        0xF1, 0xF3, 0xFB, 0xFC, 0xFE, 0xFF};
            request[0] = static_cast<char>(known[random() % std::size(known)]);
            request = withCheckValue(request.left(14));
        }
        nowMs += 5000;
        bus.restartFromBootloader(id);
        const auto reply = transfer(id, request);
        if (!reply)
            continue;
        ++answered;
        EXPECT_TRUE(checkValueHolds(*reply) || reply->size() == 7);
        EXPECT_EQ(at(*reply, 0), at(request, 0));
    }
    EXPECT_GT(answered, 100);
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

    // The log area is stable per id and differs between ids.
    EXPECT_EQ(SimDevice::logBytes(id), log);
    EXPECT_NE(SimDevice::logBytes(id + 1), log);
    EXPECT_GT(std::count_if(log.begin(), log.end(), [](int b) { return b != 0; }), 128);
}

TEST_F(SimCommands, ManualActionDrivesTheValveAndTheProgrammeStop) {
    struct Case {
        int selector, value, stop;
        int output;
        bool stopped;
    };
    const std::int32_t id = add();
    // Each case starts from the state the one before left.
    for (const Case& c :
         {Case{3, 1, 0, 1, false}, Case{255, 255, 1, 1, true}, Case{3, 0, 1, 0, true},
          Case{4, 1, 0, 0, false}, Case{3, 255, 0, 0, false}, Case{3, 1, 1, 1, true}}) {
        SCOPED_TRACE(testing::Message() << c.selector << "," << c.value << "," << c.stop);
        ASSERT_TRUE(command(id, {0x04, c.selector, c.value, c.stop}).has_value());
        EXPECT_EQ(answer(id, {0xFC, 0}), c.output);
        EXPECT_EQ(bus.device(id)->programmeStopped(), c.stopped);
    }
    bus.modify(id, [](SimDevice& d) { d.setIlsInput(37); });
    for (const auto& [address, expected] : {std::pair{2, 37}, {1, 0}, {3, 0}, {255, 0}})
        EXPECT_EQ(answer(id, {0xFC, address}), expected) << "live value " << address;
}

TEST_F(SimCommands, FastClockIsReadWithoutChangeAndWrittenWithByteOne) {
    const std::int32_t id = add();
    struct Case {
        int write, state, expected;
    };
    for (const Case& c :
         {Case{0, 1, 0}, Case{1, 1, 1}, Case{0, 0, 1}, Case{1, 0, 0}, Case{1, 7, 1}}) {
        EXPECT_EQ(answer(id, {0xF3, c.write, c.state}), c.expected) << c.write << "," << c.state;
        EXPECT_EQ(bus.device(id)->fastClock(), c.expected == 1);
    }
}

TEST_F(SimCommands, CounterReloadMakesTheFirmwareTakeOverEepromValues) {
    const std::int32_t id = add();
    ASSERT_EQ(answer(id, {0xFF, 41, 9}), 9);
    // Without the reload the running count overwrites what was written.
    bus.modify(id, [](SimDevice& d) { d.countEvent(1); });
    EXPECT_EQ(answer(id, {0xFE, 41, 0}), 1);

    ASSERT_EQ(answer(id, {0xFF, 41, 9}), 9);
    EXPECT_EQ(answer(id, {0xFB, 0, 0, 0, 1}), 1);
    bus.modify(id, [](SimDevice& d) { d.countEvent(1); });
    EXPECT_EQ(answer(id, {0xFE, 41, 0}), 10);
}

TEST_F(SimCommands, ClockStartsAtPcTimeRunsAndDriftsAndIsSet) {
    const std::int32_t id = add();
    EXPECT_EQ(clock(id), QByteArray::fromHex("0e031a091e00"));
    nowMs += 61000;
    EXPECT_EQ(clock(id), QByteArray::fromHex("0e031a091f01"));

    ASSERT_TRUE(command(id, {0x01, 4, 23, 59, 50, 31, 12, 26, 255}).has_value());
    EXPECT_EQ(bus.device(id)->lastTimeOption(), 255);
    EXPECT_EQ(clock(id), QByteArray::fromHex("1f0c1a173b32"));
    nowMs += 15000; // over the turn of the year: 1 January 2027, 00:00:05
    EXPECT_EQ(clock(id), QByteArray::fromHex("01011b000005"));

    // An impossible date is acknowledged and leaves the clock.
    ASSERT_TRUE(command(id, {0x01, 1, 10, 0, 0, 31, 2, 26, 0}).has_value());
    ASSERT_TRUE(command(id, {0x01, 1, 24, 0, 0, 1, 1, 26, 0}).has_value());
    EXPECT_EQ(clock(id), QByteArray::fromHex("01011b000005"));

    // 10 % fast: after 100 s the device shows 110 s.
    ASSERT_TRUE(command(id, {0x01, 1, 12, 0, 0, 1, 6, 26, 0}).has_value());
    bus.modify(id, [this](SimDevice& d) { d.setClockRate(100000, nowMs); });
    nowMs += 100000;
    EXPECT_EQ(clock(id), QByteArray::fromHex("01061a0c0132"));
}

TEST_F(SimCommands, LegacyProbeIsAnsweredOnlyByOldFirmware) {
    SimDeviceConfig old = firmware("2.60");
    old.battery = 0x0321;
    const std::int32_t oldId = add(old);
    EXPECT_EQ(transfer(oldId, kLegacyProbe), QByteArray::fromHex("f0020c3c000321"));
    EXPECT_FALSE(transfer(add(), kLegacyProbe).has_value());
    QByteArray notTheProbe = kLegacyProbe;
    notTheProbe[3] = 1;
    EXPECT_FALSE(transfer(oldId, notTheProbe).has_value());
    EXPECT_TRUE(command(oldId, {0xF0}).has_value()); // old firmware speaks the checked protocol too

    // Below 2.70, by number: 2.100 is above.
    const char* const versions[] = {"2.69", "2.05", "1.99", "2.70", "2.100", "3.00"};
    for (int i = 0; i < 6; ++i) {
        const auto version = FirmwareVersion::parse(QString::fromLatin1(versions[i]));
        ASSERT_TRUE(version.has_value()) << versions[i];
        EXPECT_EQ(version->answersLegacyProbe(), i < 3) << versions[i];
        EXPECT_EQ(version->text(), QString::fromLatin1(versions[i]));
    }
    for (const char* bad : {"2.5", "2", "2.7a", "2.070", "300.10", "2.256", ""}) {
        QString error;
        EXPECT_FALSE(FirmwareVersion::parse(QString::fromLatin1(bad), &error).has_value()) << bad;
        EXPECT_FALSE(error.isEmpty()) << bad;
    }
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

TEST_F(SimCommands, BootRequestAcknowledgesThenStaysSilentUntilRestarted) {
    const std::int32_t id = add();
    EXPECT_EQ(answer(id, {0xFF, 255, 255}), 255);
    EXPECT_TRUE(bus.device(id)->inBootloader());
    nowMs += 3600000;
    EXPECT_FALSE(command(id, {0xF0}).has_value());
    // Still on the bus: a loader has to find it.
    EXPECT_EQ(bus.deviceCount(), 1);
    EXPECT_NE(bus.open(id), nullptr);
    ASSERT_TRUE(bus.restartFromBootloader(id));
    EXPECT_EQ(answer(id, {0xFE, 255, 0}), 0);
}

TEST_F(SimCommands, ReplyBelongsToTheDeviceAndIsCutToTheReadLength) {
    const std::int32_t id = add();
    auto writer = bus.open(id);
    auto reader = bus.open(id);
    ASSERT_TRUE(writer && reader);
    ASSERT_TRUE(writer->write(checkedFrame({0xF0})));
    EXPECT_EQ(reader->read(3), QByteArray::fromHex("f0020c"));
    EXPECT_TRUE(reader->read(64).isEmpty()) << "the rest of a transfer is lost";
    EXPECT_TRUE(writer->read(64).isEmpty());
    // An unanswered request leaves no stale reply.
    ASSERT_TRUE(writer->write(checkedFrame({0xF0})));
    ASSERT_TRUE(writer->write(checkedFrame({0x05})));
    EXPECT_TRUE(reader->read(64).isEmpty());
}

TEST_F(SimCommands, DevicesGetDistinctIdsAndReservedOnesAreRefused) {
    const std::int32_t first = add();
    const std::int32_t second = add();
    EXPECT_EQ(first, SimulatedBus::kFirstId);
    EXPECT_EQ(second, SimulatedBus::kFirstId + 1);
    for (std::int32_t reserved : {254, 255, first}) {
        SimDeviceConfig config;
        config.uniqueId = reserved;
        QString error;
        EXPECT_EQ(bus.addDevice(config, &error), 0) << reserved;
        EXPECT_FALSE(error.isEmpty());
    }
    EXPECT_EQ(bus.deviceCount(), 2);
    EXPECT_EQ(bus.uniqueId(1), second);
    EXPECT_EQ(bus.uniqueId(2), 0);
    EXPECT_EQ(bus.open(0x12345), nullptr);
}

} // namespace
} // namespace qv::test
