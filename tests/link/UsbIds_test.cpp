#include "link/backends/DeviceIds.h"
#include "link/backends/UsbIds.h"
#include "linkoption/BusFactory.h"

#include <gtest/gtest.h>

using namespace qv;

namespace {

UsbIdEntry entry(std::uint16_t vendor, std::uint16_t product, int interfaceNumber = 0,
                 std::uint8_t out = 0x02, std::uint8_t in = 0x81) {
    return UsbIdEntry{vendor, product, interfaceNumber, out, in};
}

TEST(UsbIds, TablesThatParseAndThoseThatSayWhereTheyDoNot) {
    const std::pair<const char*, std::vector<UsbIdEntry>> good[] = {
        {"  0x1209:0xABCD   # trailing note\n", {entry(0x1209, 0xABCD)}},
        {"# only a comment\n\nfeed:beef interface=2 out=0x05 in=0x86",
         {entry(0xFEED, 0xBEEF, 2, 0x05, 0x86)}},
        {"1209:0001 in=0x83\n1209:0002 out=0x01",
         {entry(0x1209, 1, 0, 0x02, 0x83), entry(0x1209, 2, 0, 0x01, 0x81)}},
    };
    for (const auto& [text, expected] : good) {
        QString error;
        const auto table = parseUsbIds(QString::fromLatin1(text), &error);
        ASSERT_TRUE(table) << text << ": " << error.toStdString();
        EXPECT_EQ(*table, expected) << text;
    }
    const std::pair<const char*, const char*> bad[] = {
        {"# nothing\n", "no controller"},
        {"1209", "line 1"},
        {"\n12g9:0001", "line 2"},
        {"1209:0001 out=0x00", "bulk OUT"},
        {"1209:0001 in=0x02", "bulk IN"},
        {"1209:0001 speed=12", "unknown setting"},
        {"1209:0001\n1209:0001 interface=1", "listed twice"},
    };
    for (const auto& [text, errorContains] : bad) {
        QString error;
        EXPECT_FALSE(parseUsbIds(QString::fromLatin1(text), &error)) << text;
        EXPECT_TRUE(error.contains(QLatin1String(errorContains))) << error.toStdString();
    }
}

TEST(DeviceIds, AreFnv1aOfTheKeyKeptPositive) {
    // Ids reach scripts (quorvelctl --device ID); a change of the hash would
    // silently point every stored id at nothing.
    EXPECT_EQ(stableDeviceId(""), 0x011C9DC5);
    EXPECT_EQ(stableDeviceId("a"), 0x640C292C);
    EXPECT_EQ(stableDeviceId("foobar"), 0x3F9CF968);
    EXPECT_NE(stableDeviceId("usb:1209:0001:A1"), stableDeviceId("usb:1209:0001:A2"));
}

// A wait of 0 would end every read at once: the controller would never be
// heard.
TEST(LinkOption, ReadWaitsRunFromOneMillisecondToAMinute) {
    const std::pair<const char*, bool> cases[] = {{"0", false},     {"1", true},   {"60000", true},
                                                  {"60001", false}, {"-5", false}, {"soon", false}};
    for (const auto& [wait, accepted] : cases) {
        QString error;
        const auto bus = makeBus(QStringLiteral("tty:/nonexistent/quorvel-*,readWaitMs=%1")
                                     .arg(QString::fromLatin1(wait)),
                                 &error);
        EXPECT_EQ(bus != nullptr, accepted) << wait;
        EXPECT_EQ(error.contains(QStringLiteral("readWaitMs")), !accepted) << error.toStdString();
    }
}

} // namespace
