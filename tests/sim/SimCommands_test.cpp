#include "SimTestSupport.h"

#include <random>
#include <vector>

namespace qv::test {
namespace {

using SimCommands = SimFixture;

// Every command that answers, in an order that is valid for the programme
// frames: the reply has N payload bytes and its check value, and echoes the
// command byte.
TEST_F(SimCommands, EveryAnsweringCommandHasItsLengthEchoAndCheckValue) {
    struct Case {
        std::vector<int> request;
        int n;
    };
    const std::vector<Case> cases = {
        {{0x01, 6, 9, 30, 0, 14, 3, 26, 0}, 8},
        {{0x02, 0, 1}, 8},
        {{0x03, 3, 0, 7, 0, 0, 0, 0, 1, 44, 2}, 8},
        {{0x1F, 9, 2, 8, 15, 30}, 8},
        {{0x04, 3, 1, 0}, 8},
        {{0xF0}, 9},
        {{0xF1}, 7},
        {{0xF3, 1, 1}, 2},
        {{0xFB, 0, 0, 0, 1}, 2},
        {{0xFC, 0}, 2},
        {{0xFE, 44, 1}, 2},
        {{0xFF, 40, 3}, 2},
    };
    const std::int32_t id = add();
    for (const Case& c : cases) {
        QByteArray frame(16, '\0');
        for (size_t i = 0; i < c.request.size(); ++i)
            frame[static_cast<int>(i)] = static_cast<char>(c.request[i]);
        const std::uint16_t crc =
            crc16(reinterpret_cast<const std::uint8_t*>(frame.constData()), 14);
        frame[14] = static_cast<char>(crc & 0xFF);
        frame[15] = static_cast<char>(crc >> 8);
        SCOPED_TRACE(QString::fromLatin1(frame.toHex(' ')).toStdString());
        const auto reply = transfer(id, frame);
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->size(), c.n + 2);
        EXPECT_EQ(at(*reply, 0), c.request[0]);
        EXPECT_TRUE(checkValueHolds(*reply));
    }
}

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
        {"unknown command 0x20", checkedFrame({0x20})},
        {"unknown command 0xF2", checkedFrame({0xF2})},
        {"restart", checkedFrame({0x00})},
        {"fifteen bytes", checkedFrame({0xF0}).left(15)},
        {"seventeen bytes", checkedFrame({0xF0}) + QByteArray(1, '\0')},
        {"empty", QByteArray()},
    };
    for (const auto& [what, frame] : cases) {
        SCOPED_TRACE(what);
        nowMs += 10000; // past any restart silence of the case before
        EXPECT_FALSE(transfer(id, frame).has_value());
    }
}

// Garbage of every length, half of it with a valid check value: the model
// answers only with well-formed replies and never falls over.
TEST_F(SimCommands, GarbageGetsWellFormedRepliesOrNone) {
    SimDeviceConfig old;
    old.firmware = *FirmwareVersion::parse(QStringLiteral("2.60"));
    const std::int32_t id = add(old);
    std::mt19937 random(2024);
    int answered = 0;
    for (int i = 0; i < 3000; ++i) {
        const bool frameSized = random() % 2 == 0;
        QByteArray transfer(frameSized ? 16 : static_cast<int>(random() % 20), '\0');
        for (auto& b : transfer)
            b = static_cast<char>(random() % 4 == 0 ? 0 : random());
        if (frameSized && random() % 2 == 0) {
            static const int known[] = {0x00, 0x01, 0x02, 0x03, 0x04, 0x1F, 0xF0,
                                        0xF1, 0xF3, 0xFB, 0xFC, 0xFE, 0xFF};
            transfer[0] = static_cast<char>(known[random() % std::size(known)]);
            transfer = withCheckValue(transfer.left(14));
        }
        nowMs += 5000;
        bus.restartFromBootloader(id);
        const auto reply = transfer.isEmpty() ? std::nullopt : this->transfer(id, transfer);
        if (!reply)
            continue;
        ++answered;
        EXPECT_TRUE(checkValueHolds(*reply) || reply->size() == 7);
        EXPECT_EQ(at(*reply, 0), at(transfer, 0));
    }
    EXPECT_GT(answered, 100);
}

TEST_F(SimCommands, IdentityCarriesVersionsCodeAndBatteryInTheirBytes) {
    struct Case {
        const char* firmware;
        const char* bootloader;
        int hardware;
        int battery;
        std::vector<int> expected;
    };
    const std::vector<Case> cases = {
        {"2.70", "1.3", 12, 950, {0xF0, 2, 12, 70, 0, 0x03, 0xB6, 1, 3}},
        {"2.05", "0.0", 12, 1023, {0xF0, 2, 12, 5, 0, 0x03, 0xFF, 0, 0}},
        {"3.10", "2.9", 4, 256, {0xF0, 3, 4, 10, 0, 0x01, 0x00, 2, 9}},
        {"2.100", "1.3", 12, 0, {0xF0, 2, 12, 100, 0, 0, 0, 1, 3}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.firmware);
        SimDeviceConfig config;
        config.firmware = *FirmwareVersion::parse(QString::fromLatin1(c.firmware));
        config.bootloader = *BootloaderVersion::parse(QString::fromLatin1(c.bootloader));
        config.hardwareCode = c.hardware;
        config.battery = c.battery;
        const auto reply = command(add(config), {0xF0});
        ASSERT_TRUE(reply.has_value());
        for (size_t i = 0; i < c.expected.size(); ++i)
            EXPECT_EQ(at(*reply, static_cast<int>(i)), c.expected[i]) << "byte " << i;
    }
}

TEST_F(SimCommands, EepromReadsByFullAddressAndZeroOutside) {
    SimDeviceConfig config;
    config.serial = 0x12345678;
    const std::int32_t id = add(config);
    const auto log = SimDevice::logBytes(id);
    struct Case {
        int low, high, expected;
    };
    const std::vector<Case> cases = {
        {16, 0, 0x78},      {17, 0, 0x56}, {18, 0, 0x34},  {19, 0, 0x12},
        {48, 0, 255},       {255, 0, 0},   {0, 1, log[0]}, {44, 1, log[44]},
        {255, 1, log[255]}, {0, 2, 0},     {255, 255, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.low + 256 * c.high);
        const auto reply = command(id, {0xFE, c.low, c.high});
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(at(*reply, 1), c.expected);
    }
}

TEST_F(SimCommands, LogAreaIsStablePerIdAndDiffersBetweenIds) {
    EXPECT_EQ(SimDevice::logBytes(0x5A000001), SimDevice::logBytes(0x5A000001));
    EXPECT_NE(SimDevice::logBytes(0x5A000001), SimDevice::logBytes(0x5A000002));
    const auto log = SimDevice::logBytes(0x5A000001);
    EXPECT_GT(std::count_if(log.begin(), log.end(), [](int b) { return b != 0; }), 128);
}

TEST_F(SimCommands, EepromWriteAnswersTheStoredValueAndReadsBack) {
    const std::int32_t id = add();
    for (const auto& [address, value] :
         std::vector<std::pair<int, int>>{{16, 0xD2}, {45, 0}, {254, 77}, {255, 17}}) {
        SCOPED_TRACE(address);
        const auto written = command(id, {0xFF, address, value});
        ASSERT_TRUE(written.has_value());
        EXPECT_EQ(at(*written, 1), value);
        const auto read = command(id, {0xFE, address, 0});
        ASSERT_TRUE(read.has_value());
        EXPECT_EQ(at(*read, 1), value);
    }
    EXPECT_FALSE(bus.device(id)->inBootloader());
}

TEST_F(SimCommands, ManualActionDrivesTheValveAndTheProgrammeStop) {
    struct Case {
        int selector, value, stop;
        int output;
        bool stopped;
    };
    // Each case starts from the state the one before left.
    const std::vector<Case> cases = {
        {3, 1, 0, 1, false}, {255, 255, 1, 1, true}, {3, 0, 1, 0, true},
        {4, 1, 0, 0, false}, {3, 255, 0, 0, false},  {3, 1, 1, 1, true},
    };
    const std::int32_t id = add();
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.selector << "," << c.value << "," << c.stop);
        ASSERT_TRUE(command(id, {0x04, c.selector, c.value, c.stop}).has_value());
        const auto live = command(id, {0xFC, 0});
        ASSERT_TRUE(live.has_value());
        EXPECT_EQ(at(*live, 1), c.output);
        EXPECT_EQ(bus.device(id)->programmeStopped(), c.stopped);
    }
}

TEST_F(SimCommands, LiveValuesGiveOutputAndIlsAndZeroElsewhere) {
    const std::int32_t id = add();
    bus.modify(id, [](SimDevice& d) {
        d.setOutputState(1);
        d.setIlsInput(37);
    });
    for (const auto& [address, expected] :
         std::vector<std::pair<int, int>>{{0, 1}, {1, 0}, {2, 37}, {3, 0}, {255, 0}}) {
        const auto reply = command(id, {0xFC, address});
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(at(*reply, 1), expected) << "address " << address;
    }
}

TEST_F(SimCommands, FastClockIsReadWithoutChangeAndWrittenWithByteOne) {
    const std::int32_t id = add();
    struct Case {
        int write, state, expected;
    };
    const std::vector<Case> cases = {{0, 1, 0}, {1, 1, 1}, {0, 0, 1}, {1, 0, 0}, {1, 7, 1}};
    for (const Case& c : cases) {
        const auto reply = command(id, {0xF3, c.write, c.state});
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(at(*reply, 1), c.expected) << c.write << "," << c.state;
        EXPECT_EQ(bus.device(id)->fastClock(), c.expected == 1);
    }
}

TEST_F(SimCommands, CounterReloadMakesTheFirmwareTakeOverEepromValues) {
    const std::int32_t id = add();
    ASSERT_TRUE(command(id, {0xFF, 41, 9}).has_value());
    // Without the reload the running count overwrites what was written.
    bus.modify(id, [](SimDevice& d) { d.countEvent(1); });
    EXPECT_EQ(at(*command(id, {0xFE, 41, 0}), 1), 1);

    ASSERT_TRUE(command(id, {0xFF, 41, 9}).has_value());
    const auto reload = command(id, {0xFB, 0, 0, 0, 1});
    ASSERT_TRUE(reload.has_value());
    EXPECT_EQ(at(*reload, 1), 1);
    bus.modify(id, [](SimDevice& d) { d.countEvent(1); });
    EXPECT_EQ(at(*command(id, {0xFE, 41, 0}), 1), 10);
}

TEST_F(SimCommands, ClockStartsAtPcTimeAndRunsWithIt) {
    const std::int32_t id = add();
    const auto reply = command(id, {0xF1});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->left(7), QByteArray::fromHex("f10e031a091e00"));
    nowMs += 61000;
    EXPECT_EQ(command(id, {0xF1})->left(7), QByteArray::fromHex("f10e031a091f01"));
}

TEST_F(SimCommands, SetClockIsReadBackAndKeepsRunning) {
    const std::int32_t id = add();
    ASSERT_TRUE(command(id, {0x01, 4, 23, 59, 50, 31, 12, 26, 255}).has_value());
    EXPECT_EQ(bus.device(id)->lastTimeOption(), 255);
    EXPECT_EQ(command(id, {0xF1})->left(7), QByteArray::fromHex("f11f0c1a173b32"));
    nowMs += 15000;
    // Over the turn of the year: 1 January 2027, 00:00:05.
    EXPECT_EQ(command(id, {0xF1})->left(7), QByteArray::fromHex("f101011b000005"));
}

TEST_F(SimCommands, ImpossibleDateIsAcknowledgedAndLeavesTheClock) {
    const std::int32_t id = add();
    const QByteArray before = command(id, {0xF1})->left(7);
    ASSERT_TRUE(command(id, {0x01, 1, 10, 0, 0, 31, 2, 26, 0}).has_value());
    ASSERT_TRUE(command(id, {0x01, 1, 24, 0, 0, 1, 1, 26, 0}).has_value());
    EXPECT_EQ(command(id, {0xF1})->left(7), before);
}

TEST_F(SimCommands, ClockDriftsByItsRate) {
    const std::int32_t id = add();
    ASSERT_TRUE(command(id, {0x01, 1, 12, 0, 0, 1, 6, 26, 0}).has_value());
    // 10 % fast: after 100 s the device shows 110 s.
    bus.modify(id, [this](SimDevice& d) { d.setClockRate(100000, nowMs); });
    nowMs += 100000;
    EXPECT_EQ(command(id, {0xF1})->left(7), QByteArray::fromHex("f101061a0c0132"));
}

TEST_F(SimCommands, LegacyProbeIsAnsweredOnlyByOldFirmware) {
    SimDeviceConfig old;
    old.firmware = *FirmwareVersion::parse(QStringLiteral("2.60"));
    old.battery = 0x0321;
    const std::int32_t oldId = add(old);
    const std::int32_t currentId = add();

    const auto reply = transfer(oldId, legacyProbe());
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(*reply, QByteArray::fromHex("f0020c3c000321"));
    EXPECT_FALSE(transfer(currentId, legacyProbe()).has_value());

    QByteArray notTheProbe = legacyProbe();
    notTheProbe[3] = 1;
    EXPECT_FALSE(transfer(oldId, notTheProbe).has_value());
    // Old firmware speaks the checked protocol too.
    EXPECT_TRUE(command(oldId, {0xF0}).has_value());
}

TEST_F(SimCommands, FirmwareVersionsCompareAsWritten) {
    struct Case {
        const char* text;
        bool legacy;
    };
    for (const Case& c : std::vector<Case>{{"2.60", true},
                                           {"2.69", true},
                                           {"2.05", true},
                                           {"2.70", false},
                                           {"2.100", false},
                                           {"3.00", false},
                                           {"1.99", true}}) {
        const auto version = FirmwareVersion::parse(QString::fromLatin1(c.text));
        ASSERT_TRUE(version.has_value()) << c.text;
        EXPECT_EQ(version->answersLegacyProbe(), c.legacy) << c.text;
        EXPECT_EQ(version->text(), QString::fromLatin1(c.text));
    }
    for (const char* bad : {"2.5", "2", "2.7a", "x.70", "2.070", "300.10", "2.256", ""}) {
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
    EXPECT_EQ(at(*command(id, {0xFE, SimDevice::kIlsAddress, 0}), 1), 1);
}

TEST_F(SimCommands, RestartSilenceIsConfigurable) {
    bus.setRestartSilence(300);
    const std::int32_t id = add();
    EXPECT_FALSE(command(id, {0x00}).has_value());
    nowMs += 299;
    EXPECT_FALSE(command(id, {0xF0}).has_value());
    nowMs += 1;
    EXPECT_TRUE(command(id, {0xF0}).has_value());
}

TEST_F(SimCommands, BootRequestAcknowledgesThenStaysSilentUntilRestarted) {
    const std::int32_t id = add();
    const auto ack = command(id, {0xFF, 255, 255});
    ASSERT_TRUE(ack.has_value());
    EXPECT_EQ(at(*ack, 1), 255);
    EXPECT_TRUE(bus.device(id)->inBootloader());
    nowMs += 3600000;
    EXPECT_FALSE(command(id, {0xF0}).has_value());
    // Still on the bus: a loader has to find it.
    EXPECT_EQ(bus.deviceCount(), 1);
    EXPECT_NE(bus.open(id), nullptr);

    ASSERT_TRUE(bus.restartFromBootloader(id));
    EXPECT_TRUE(command(id, {0xF0}).has_value());
    EXPECT_EQ(at(*command(id, {0xFE, 255, 0}), 1), 0);
}

TEST_F(SimCommands, ReplyBelongsToTheDeviceAndIsCutToTheReadLength) {
    const std::int32_t id = add();
    auto writer = bus.open(id);
    auto reader = bus.open(id);
    ASSERT_TRUE(writer && reader);
    ASSERT_TRUE(writer->write(checkedFrame({0xF0})));
    const QByteArray part = reader->read(3);
    EXPECT_EQ(part, QByteArray::fromHex("f0020c"));
    EXPECT_TRUE(reader->read(64).isEmpty()) << "the rest of a transfer is lost";
    EXPECT_TRUE(writer->read(64).isEmpty());
}

TEST_F(SimCommands, AnUnansweredRequestLeavesNoStaleReply) {
    const std::int32_t id = add();
    auto handle = bus.open(id);
    ASSERT_TRUE(handle->write(checkedFrame({0xF0})));
    ASSERT_TRUE(handle->write(checkedFrame({0x05})));
    EXPECT_TRUE(handle->read(64).isEmpty());
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
    EXPECT_EQ(bus.uniqueId(0), first);
    EXPECT_EQ(bus.uniqueId(1), second);
    EXPECT_EQ(bus.uniqueId(2), 0);
    EXPECT_EQ(bus.open(0x12345), nullptr);
}

} // namespace
} // namespace qv::test
