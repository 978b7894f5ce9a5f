#include "SimOptions.h"
#include "SimulatedBus.h"

#include <QTextStream>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

TEST(SimOptions, EveryKeyFillsItsFieldAndPrefixesGiveTheDefaults) {
    QString error;
    const auto o = parseSimOptions(
        QStringLiteral("devices=2,firmware=2.60,hardware=4,serial=1234,bootloader=2.1,"
                       "battery=800,state=/tmp/s.json,autosave=0,trace=/tmp/t.log,drop=1,"
                       "dropRate=0.1,seed=9,corrupt=2,short=3,shortLength=4,unplugged=1,"
                       "restartMs=50,readWaitMs=20,late=2,lateMs=300"),
        &error);
    ASSERT_TRUE(o.has_value()) << error.toStdString();
    QString fields;
    QTextStream(&fields) << o->devices << ' ' << o->firmware.text() << ' ' << o->hardware << ' '
                         << *o->serial << ' ' << o->bootloader.text() << ' ' << o->battery << ' '
                         << o->statePath << ' ' << o->autosave << ' ' << o->tracePath << ' '
                         << o->drop << ' ' << o->dropRate << ' ' << o->seed << ' ' << o->corrupt
                         << ' ' << o->shortCount << ' ' << o->shortLength << ' ' << *o->unplugged
                         << ' ' << o->restartMs << ' ' << o->readWaitMs << ' ' << o->late << ' '
                         << o->lateMs;
    EXPECT_EQ(fields.toStdString(),
              "2 2.60 4 1234 2.1 800 /tmp/s.json 0 /tmp/t.log 1 0.1 9 2 3 4 1 50 20 2 300");

    for (const char* text : {"", "sim", "sim:", ":", "sim:devices=1,"}) {
        const auto options = parseSimOptions(QString::fromLatin1(text));
        ASSERT_TRUE(options.has_value()) << text;
        EXPECT_EQ(options->devices, 1) << text;
        EXPECT_EQ(options->firmware.text(), QStringLiteral("2.70")) << text;
        EXPECT_EQ(options->hardware, 12) << text;
        EXPECT_FALSE(options->serial.has_value()) << text;
        EXPECT_FALSE(options->unplugged.has_value()) << text;
        EXPECT_TRUE(options->statePath.isEmpty()) << text;
    }
}

TEST(SimOptions, BadKeysAndValuesNameTheCulprit) {
    for (const auto& [text, mention] : {std::pair{"colour=red", "colour"},
                                        {"devices", "devices"},
                                        {"=3", "=3"},
                                        {"devices=0", "devices"},
                                        {"devices=17", "devices"},
                                        {"devices=two", "two"},
                                        {"firmware=2.5", "2.5"},
                                        {"hardware=256", "hardware"},
                                        {"serial=4294967296", "serial"},
                                        {"battery=70000", "battery"},
                                        {"dropRate=1.5", "dropRate"},
                                        {"dropRate=nan", "dropRate"},
                                        {"drop=-1", "drop"},
                                        {"late=-2", "late"},
                                        {"lateMs=70000", "lateMs"},
                                        {"autosave=maybe", "autosave"},
                                        {"bootloader=13", "13"}}) {
        QString error;
        EXPECT_FALSE(parseSimOptions(QString::fromLatin1(text), &error).has_value()) << text;
        EXPECT_TRUE(error.contains(QString::fromLatin1(mention))) << error.toStdString();
    }
}

TEST(SimOptions, DevicesAndFaultsFollowTheOptions) {
    auto bus = SimulatedBus::fromOptions(*parseSimOptions(
        QStringLiteral("devices=3,serial=4294967294,hardware=6,firmware=2.05,drop=1")));
    ASSERT_NE(bus, nullptr);
    ASSERT_EQ(bus->deviceCount(), 3);
    const std::vector<std::uint32_t> serials = {4294967294u, 4294967295u, 0u}; // they wrap
    for (int i = 0; i < 3; ++i) {
        const auto device = bus->device(bus->uniqueId(i));
        EXPECT_EQ(bus->uniqueId(i), SimulatedBus::kFirstId + i);
        EXPECT_EQ(device->serialNumber(), serials[static_cast<size_t>(i)]) << i;
        EXPECT_EQ(device->hardwareCode(), 6);
        EXPECT_EQ(device->firmware().text(), QStringLiteral("2.05"));
        // Each device loses its first reply.
        auto handle = bus->open(bus->uniqueId(i));
        const QByteArray frame = withCheckValue(QByteArray(1, '\xF0') + QByteArray(13, '\0'));
        ASSERT_TRUE(handle->write(frame));
        EXPECT_TRUE(handle->read(64).isEmpty()) << i;
        ASSERT_TRUE(handle->write(frame));
        EXPECT_EQ(handle->read(64).size(), 11) << i;
    }

    // The demo: a current controller and another model.
    auto demo = SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("demo=1")));
    ASSERT_NE(demo, nullptr);
    ASSERT_EQ(demo->deviceCount(), 2);
    EXPECT_EQ(demo->device(demo->uniqueId(0))->serialNumber(), 1234u);
    EXPECT_EQ(demo->device(demo->uniqueId(0))->hardwareCode(), 12);
    EXPECT_NE(demo->device(demo->uniqueId(1))->hardwareCode(), 12);
}

} // namespace
} // namespace qv::test
