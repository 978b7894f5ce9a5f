#include "DeviceTestSupport.h"
#include "device/DeviceSelection.h"
#include "device/Identity.h"

namespace qv {
namespace {

using test::DeviceFixture;

TEST(IdentityTextTest, HardwareNames) {
    struct Case {
        int code;
        bool variante;
        const char* name;
    };
    const Case cases[] = {
        {1, false, "Ombrel"},
        {1, true, "Z905RT"},
        {6, false, "Quorvel"},
        {12, false, "Quorvel"},
        {14, false, ""},
        {19, true, "Z905FRT"},
        {20, true, "Z905FRT"},
        {20, false, "Ombrel 41"},
        {0, false, "Generic Sorvane"},
        {17, false, "Generic Sorvane"},
        {21, false, "Generic Sorvane"},
        {23, false, "LTR-LTS"},
        {24, false, "Generic Sorvane"},
        {255, false, "Generic Sorvane"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(NomMateriel(c.code, c.variante), QString::fromUtf8(c.name)) << c.code;
}

TEST(IdentityTextTest, VersionTexts) {
    struct Case {
        Bytes reply;
        const char* firmware;
        const char* bootloader;
    };
    const Case cases[] = {
        {{0, 2, 12, 9, 0, 0, 0, 1, 3}, "2.09", "103"},
        {{0, 2, 12, 10, 0, 0, 0, 0, 0}, "2.10", "00"},
        {{0, 2, 12, 100, 0, 0, 0, 2, 11}, "2.100", "2011"},
        {{0, 2, 12, 5, 0, 0, 0, 0, 7}, "2.05", "07"},
        {{0, 2, 12, 70, 0, 0, 0, 1, 3}, "2.70", "103"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(firmwareVersionText(c.reply), QString::fromUtf8(c.firmware));
        EXPECT_EQ(bootloaderVersionText(c.reply), QString::fromUtf8(c.bootloader));
    }
}

TEST_F(DeviceFixture, LegacyProbeOnlyOldFirmwareAnswers) {
    const auto oldId = plug({.firmware = {2, 60}});
    const auto newId = plug({.firmware = {2, 70}});
    bool recognised = true;
    EXPECT_EQ(LitVersionAvantV270(link, newId, recognised), QString());
    EXPECT_FALSE(recognised);
    EXPECT_TRUE(state.TimeOut);
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

TEST_F(DeviceFixture, MainWindowIdentity) {
    const auto id = plug({.battery = 1023});
    const MainIdentity identity = LitVersionPrincipale(device);
    EXPECT_EQ(identity.versionCaption, QStringLiteral("(12) 2.70"));
    EXPECT_EQ(identity.maintenanceCaption, QStringLiteral("Maintenance (Bootloader V103)"));
    EXPECT_EQ(identity.batteryRaw, 1023);
    EXPECT_TRUE(identity.featureMinor14);
    EXPECT_TRUE(identity.featureMinor20);
    bus.unplug(id);
    const MainIdentity dead = LitVersionPrincipale(device);
    EXPECT_EQ(dead.versionCaption, QStringLiteral("(0) 0.00"));
    EXPECT_EQ(dead.batteryRaw, 0);
}

TEST(BatteryTextTest, OneDecimalInTheSystemLocale) {
    // 1023 steps are 9.67 V, shown with one decimal.
    const QString text = batteryVoltsText(1023);
    EXPECT_TRUE(text == QStringLiteral("9.7") || text == QStringLiteral("9,7"))
        << text.toStdString();
    EXPECT_EQ(batteryVoltsText(0).size(), 3);
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

TEST_F(SelectionFixture, NoDeviceKeepsTheIdInUse) {
    state.UsbID = 4242;
    const DeviceList list = selection.RafraichitListe(false);
    EXPECT_TRUE(list.lines.empty());
    EXPECT_EQ(list.NombreUsb, 0);
    EXPECT_EQ(state.UsbID, 4242);
}

TEST_F(SelectionFixture, SerialReadStopsAtTheFirstFailure) {
    const auto id = plug({.serial = 99u});
    EXPECT_EQ(selection.LitSerieAppareil(), QStringLiteral("99"));
    bus.dropReplies(id, 3);
    EXPECT_EQ(selection.LitSerieAppareil(), QString());
    EXPECT_EQ(dialogs.boxes().size(), 1u);
}

} // namespace
} // namespace qv
