#include "SimOptions.h"
#include "SimulatedBus.h"

#include <gtest/gtest.h>

namespace qv::test {
namespace {

TEST(SimOptions, EveryKeyFillsItsField) {
    QString error;
    const auto options = parseSimOptions(
        QStringLiteral("devices=2,firmware=2.60,hardware=4,serial=1234,bootloader=2.1,"
                       "battery=800,state=/tmp/s.json,autosave=0,trace=/tmp/t.log,drop=1,"
                       "dropRate=0.1,seed=9,corrupt=2,short=3,shortLength=4,unplugged=1,"
                       "restartMs=50,readWaitMs=20"),
        &error);
    ASSERT_TRUE(options.has_value()) << error.toStdString();
    EXPECT_EQ(options->devices, 2);
    EXPECT_EQ(options->firmware.text(), QStringLiteral("2.60"));
    EXPECT_EQ(options->hardware, 4);
    EXPECT_EQ(options->serial, 1234u);
    EXPECT_EQ(options->bootloader.text(), QStringLiteral("2.1"));
    EXPECT_EQ(options->battery, 800);
    EXPECT_EQ(options->statePath, QStringLiteral("/tmp/s.json"));
    EXPECT_FALSE(options->autosave);
    EXPECT_EQ(options->tracePath, QStringLiteral("/tmp/t.log"));
    EXPECT_EQ(options->drop, 1);
    EXPECT_DOUBLE_EQ(options->dropRate, 0.1);
    EXPECT_EQ(options->seed, 9u);
    EXPECT_EQ(options->corrupt, 2);
    EXPECT_EQ(options->shortCount, 3);
    EXPECT_EQ(options->shortLength, 4);
    EXPECT_EQ(options->unplugged, 1);
    EXPECT_EQ(options->restartMs, 50);
    EXPECT_EQ(options->readWaitMs, 20);
}

TEST(SimOptions, PrefixesAndEmptyTextGiveTheDefaults) {
    for (const char* text : {"", "sim", "sim:", ":", "sim:devices=1,"}) {
        SCOPED_TRACE(text);
        const auto options = parseSimOptions(QString::fromLatin1(text));
        ASSERT_TRUE(options.has_value());
        EXPECT_EQ(options->devices, 1);
        EXPECT_EQ(options->firmware.text(), QStringLiteral("2.70"));
        EXPECT_EQ(options->hardware, 12);
        EXPECT_FALSE(options->serial.has_value());
        EXPECT_FALSE(options->unplugged.has_value());
        EXPECT_TRUE(options->statePath.isEmpty());
    }
}

TEST(SimOptions, BadKeysAndValuesNameTheCulprit) {
    struct Case {
        const char* text;
        const char* mention;
    };
    for (const Case& c : std::vector<Case>{{"colour=red", "colour"},
                                           {"devices", "devices"},
                                           {"=3", "=3"},
                                           {"devices=0", "devices"},
                                           {"devices=two", "two"},
                                           {"devices=17", "devices"},
                                           {"firmware=2.5", "2.5"},
                                           {"hardware=256", "hardware"},
                                           {"serial=-1", "serial"},
                                           {"serial=4294967296", "serial"},
                                           {"battery=70000", "battery"},
                                           {"dropRate=1.5", "dropRate"},
                                           {"dropRate=nan", "dropRate"},
                                           {"drop=-1", "drop"},
                                           {"autosave=maybe", "autosave"},
                                           {"bootloader=13", "13"},
                                           {"short=x", "short"}}) {
        SCOPED_TRACE(c.text);
        QString error;
        EXPECT_FALSE(parseSimOptions(QString::fromLatin1(c.text), &error).has_value());
        EXPECT_TRUE(error.contains(QString::fromLatin1(c.mention))) << error.toStdString();
    }
}

TEST(SimOptions, DevicesFollowTheOptions) {
    const auto options =
        parseSimOptions(QStringLiteral("devices=3,serial=4294967294,hardware=6,firmware=2.05"));
    ASSERT_TRUE(options.has_value());
    SimulatedBus bus(deviceConfigs(*options));
    ASSERT_EQ(bus.deviceCount(), 3);
    const std::vector<std::uint32_t> serials = {4294967294u, 4294967295u, 0u};
    for (int i = 0; i < 3; ++i) {
        const auto device = bus.device(bus.uniqueId(i));
        EXPECT_EQ(bus.uniqueId(i), SimulatedBus::kFirstId + i);
        EXPECT_EQ(device->serialNumber(), serials[static_cast<size_t>(i)]) << i;
        EXPECT_EQ(device->hardwareCode(), 6);
        EXPECT_EQ(device->firmware().text(), QStringLiteral("2.05"));
    }
}

TEST(SimOptions, FaultsFromOptionsReachEveryDevice) {
    auto bus = SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("devices=2,drop=1")));
    ASSERT_NE(bus, nullptr);
    for (int i = 0; i < 2; ++i) {
        auto handle = bus->open(bus->uniqueId(i));
        QByteArray identity(14, '\0');
        identity[0] = static_cast<char>(0xF0);
        const QByteArray frame = withCheckValue(identity);
        ASSERT_TRUE(handle->write(frame));
        EXPECT_TRUE(handle->read(64).isEmpty()) << i;
        ASSERT_TRUE(handle->write(frame));
        EXPECT_EQ(handle->read(64).size(), 11) << i;
    }
}

TEST(SimOptions, DemoHasACurrentControllerAndAnotherModel) {
    auto bus = SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("demo=1")));
    ASSERT_NE(bus, nullptr);
    ASSERT_EQ(bus->deviceCount(), 2);
    EXPECT_EQ(bus->device(bus->uniqueId(0))->serialNumber(), 1234u);
    EXPECT_EQ(bus->device(bus->uniqueId(0))->hardwareCode(), 12);
    EXPECT_NE(bus->device(bus->uniqueId(1))->hardwareCode(), 12);
}

} // namespace
} // namespace qv::test
