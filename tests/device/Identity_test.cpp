#include "DeviceTestSupport.h"
#include "device/DeviceSelection.h"
#include "device/Identity.h"

namespace qv {
namespace {

using test::DeviceFixture;

TEST(IdentityTextTest, HardwareNamesAndVersionTexts) {
    // The minor number is padded to two digits, the bootloader's is not.
    const std::tuple<Bytes, const char*, const char*> versions[] = {
        {{0, 2, 12, 9, 0, 0, 0, 1, 3}, "2.09", "103"},
        {{0, 2, 12, 10, 0, 0, 0, 0, 0}, "2.10", "00"},
        {{0, 2, 12, 100, 0, 0, 0, 2, 11}, "2.100", "2011"},
    };
    for (const auto& [reply, firmware, bootloader] : versions) {
        EXPECT_EQ(firmwareVersionText(reply), QString::fromUtf8(firmware));
        EXPECT_EQ(bootloaderVersionText(reply), QString::fromUtf8(bootloader));
    }
    // 1023 steps are 9.67 V, shown with one decimal in the system locale.
    EXPECT_TRUE(QStringList({"9.7", "9,7"}).contains(batteryVoltsText(1023)));
}

TEST_F(DeviceFixture, LegacyProbeOnlyOldFirmwareAnswers) {
    const auto oldId = plug({.firmware = {2, 60}});
    const auto newId = plug({.firmware = {2, 70}});
    bool recognised = true;
    EXPECT_EQ(LitVersionAvantV270(link, newId, recognised), QString());
    EXPECT_FALSE(recognised);
    EXPECT_TRUE(state.TimeOut);
    // After a silent device the raw read reads nothing: the device list
    // clears the flag before each probe.
    EXPECT_EQ(LitVersionAvantV270(link, oldId, recognised), QString());
    state.TimeOut = false;
    EXPECT_EQ(LitVersionAvantV270(link, oldId, recognised), QStringLiteral("Quorvel : (12) 2.60"));
    EXPECT_TRUE(recognised);
    EXPECT_FALSE(state.TimeOut);
    EXPECT_TRUE(dialogs.boxes().empty());
    // An old device of another model gives no text.
    const auto otherOld = plug({.hardware = 7, .firmware = {2, 60}});
    EXPECT_EQ(LitVersionAvantV270(link, otherOld, recognised), QString());
    EXPECT_FALSE(recognised);
}

TEST_F(DeviceFixture, ConnectionTextOfEveryCode) {
    const auto current = plug({.firmware = {2, 70}});
    const auto minorBelowTen = plug({.hardware = 14, .firmware = {2, 5}});
    bool recognised = false;
    EXPECT_EQ(LitVersion(link, current, recognised, QStringLiteral("m")),
              QStringLiteral("Quorvel : (12) 2.70     BL V 103"));
    EXPECT_TRUE(recognised);
    EXPECT_EQ(LitVersion(link, minorBelowTen, recognised, QStringLiteral("m")),
              QStringLiteral(" : (14) 2.05    BL V 103"));
    EXPECT_FALSE(recognised);
    bus.unplug(current);
    EXPECT_EQ(LitVersion(link, current, recognised, QStringLiteral("m")),
              QStringLiteral("Generic Sorvane : (0) 0.00    BL V 00"));
    EXPECT_EQ(dialogs.boxes().size(), 1u);
}

// The battery is the one value that comes high byte first.
TEST_F(DeviceFixture, MainWindowIdentity) {
    plug({.battery = 1023});
    const MainIdentity identity = LitVersionPrincipale(device);
    EXPECT_EQ(identity.versionCaption, QStringLiteral("(12) 2.70"));
    EXPECT_EQ(identity.batteryRaw, 1023);
}

struct SelectionFixture : DeviceFixture {
    int waits = 0;
    DeviceSelection selection{device,
                              [](const QString& key) { return QStringLiteral("<%1>").arg(key); }};
    void SetUp() override {
        DeviceFixture::SetUp();
        selection.setProbeWait([this](int ms) {
            EXPECT_EQ(ms, 1000);
            ++waits;
        });
    }
};

TEST_F(SelectionFixture, CurrentDevicesWithSerialAndOtherModelsOnlyWithViewAll) {
    state.UsbID = 4242; // no device keeps the id in use
    EXPECT_TRUE(selection.RafraichitListe(false).lines.empty());
    EXPECT_EQ(state.UsbID, 4242);
    const auto quorvel = plug({.serial = 1234u});
    const auto other = plug({.hardware = 7});
    state.UsbID = quorvel;
    DeviceList list = selection.RafraichitListe(false);
    EXPECT_EQ(waits, 2); // one second per device in the first pass
    ASSERT_EQ(list.lines.size(), 1u);
    EXPECT_EQ(list.lines[0].text, QStringLiteral("Quorvel : (12) 2.70     BL V 103-->1234"));
    EXPECT_EQ(list.lines[0].itemData, quorvel);
    EXPECT_EQ(list.selectedRow, 0);
    EXPECT_EQ(state.UsbID, quorvel);

    list = selection.RafraichitListe(true);
    ASSERT_EQ(list.lines.size(), 2u);
    EXPECT_EQ(list.lines[1].text, QStringLiteral("Quorvel MB : (7) 2.70     BL V 103"));
    EXPECT_EQ(list.lines[1].itemData, other);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(SelectionFixture, AnOldDeviceHidesTheOthers) {
    plug({.firmware = {2, 60}});
    plug({.firmware = {2, 70}});
    state.UsbID = 77;
    const DeviceList list = selection.RafraichitListe(true);
    ASSERT_EQ(list.lines.size(), 1u);
    EXPECT_TRUE(list.oldFirmwareFound);
    EXPECT_EQ(list.lines[0].text,
              QStringLiteral("<Warning : you must Upgrade to Firmware V2.70 or higher > "
                             "Quorvel : (12) 2.60"));
    EXPECT_EQ(list.lines[0].itemData, kMarkerOldFirmware);
    EXPECT_EQ(list.selectedRow, -1);
    EXPECT_EQ(state.UsbID, 77);
}

} // namespace
} // namespace qv
