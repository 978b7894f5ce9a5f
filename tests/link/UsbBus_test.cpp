// The libusb backend against controllers that umockdev fakes at the level of
// the kernel's usbfs: the real libusb lists, opens, claims and transfers,
// and the firmware model answers.
#include "RecordingDialogs.h"
#include "UsbMockController.h"
#include "device/Device.h"
#include "device/DeviceSelection.h"
#include "device/Identity.h"
#include "link/FrameLink.h"
#include "link/backends/UsbBus.h"
#include "linkoption/BusFactory.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>
#include <cerrno>
#include <functional>
#include <gtest/gtest.h>

using namespace qv;

namespace {

constexpr int kReadWaitMs = 60;

bool eventually(const std::function<bool()>& condition, int ms = 3000) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > ms)
            return false;
        QThread::msleep(5);
    }
    return true;
}

UsbMockBus::Controller controller(int port, std::optional<QByteArray> serial) {
    static int nextAddress = 2;
    UsbMockBus::Controller c;
    c.port = port;
    c.address = nextAddress++;
    c.serial = std::move(serial);
    return c;
}

class UsbBusTest : public ::testing::Test {
protected:
    UsbMockBus usb;
    QStringList reports;

    std::unique_ptr<UsbBus> makeBus(std::vector<UsbIdEntry> ids = defaultUsbIds()) {
        UsbBus::Settings settings;
        settings.ids = std::move(ids);
        settings.readWaitMs = kReadWaitMs;
        settings.report = [this](const QString& text) { reports << text; };
        return std::make_unique<UsbBus>(std::move(settings));
    }

    // The id that a fresh bus gives the only recognised device.
    std::int32_t onlyId() {
        auto bus = makeBus();
        EXPECT_EQ(bus->deviceCount(), 1);
        return bus->uniqueId(0);
    }
};

TEST_F(UsbBusTest, ListsRecognisedControllersInPortOrderWithIdsThatSurviveARefresh) {
    usb.plug(controller(3, QByteArray("Q-1001")));
    usb.plug(controller(2, std::nullopt));
    UsbMockBus::Controller other = controller(4, QByteArray("X-9"));
    other.product = 0x9999;
    usb.plug(other);

    auto bus = makeBus();
    ASSERT_EQ(bus->deviceCount(), 2);
    const std::int32_t first = bus->uniqueId(0);
    const std::int32_t second = bus->uniqueId(1);
    EXPECT_EQ(bus->location(first), QStringLiteral("1-2"));
    EXPECT_EQ(bus->location(second), QStringLiteral("1-3"));
    EXPECT_EQ(bus->uniqueId(2), 0);
    for (const std::int32_t id : {first, second})
        EXPECT_TRUE(id > 0 && id != 254 && id != 255) << id;
    EXPECT_NE(first, second);

    // Counting again, and counting in a new process, give the same ids.
    ASSERT_EQ(bus->deviceCount(), 2);
    EXPECT_EQ(bus->uniqueId(0), first);
    auto later = makeBus();
    ASSERT_EQ(later->deviceCount(), 2);
    EXPECT_EQ(later->uniqueId(1), second);

    // Another table recognises the other device instead.
    auto otherTable = makeBus({UsbIdEntry{0x1209, 0x9999, 0, 0x02, 0x81}});
    ASSERT_EQ(otherTable->deviceCount(), 1);
    EXPECT_EQ(otherTable->location(otherTable->uniqueId(0)), QStringLiteral("1-4"));
    EXPECT_TRUE(reports.isEmpty()) << reports.join(QLatin1Char('\n')).toStdString();
}

TEST_F(UsbBusTest, AnIdFollowsTheSerialNumberOrElseThePort) {
    struct Case {
        const char* what;
        int portBefore;
        std::optional<QByteArray> serialBefore;
        int portAfter;
        std::optional<QByteArray> serialAfter;
        bool sameId;
    };
    const Case cases[] = {
        {"serial, replugged into the same port", 2, QByteArray("A1"), 2, QByteArray("A1"), true},
        {"serial, moved to another port", 2, QByteArray("A1"), 5, QByteArray("A1"), true},
        {"another serial in the same port", 2, QByteArray("A1"), 2, QByteArray("B2"), false},
        {"no serial, replugged into the same port", 3, std::nullopt, 3, std::nullopt, true},
        {"no serial, moved to another port", 3, std::nullopt, 6, std::nullopt, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const QString before = usb.plug(controller(c.portBefore, c.serialBefore));
        const std::int32_t idBefore = onlyId();
        usb.unplug(before);
        // A new address on the bus, as after any real replug.
        const QString after = usb.plug(controller(c.portAfter, c.serialAfter));
        const std::int32_t idAfter = onlyId();
        usb.unplug(after);
        EXPECT_EQ(idBefore == idAfter, c.sameId) << idBefore << " " << idAfter;
    }
}

TEST_F(UsbBusTest, HandlesOnOneDeviceShareOneOpenedDeviceAndOneClaim) {
    const QString path = usb.plug(controller(2, QByteArray("S1")));
    auto bus = makeBus();
    ASSERT_EQ(bus->deviceCount(), 1);
    const std::int32_t id = bus->uniqueId(0);

    auto writer = bus->open(id);
    auto reader = bus->open(id);
    ASSERT_TRUE(writer && reader);
    ASSERT_TRUE(eventually([&] { return usb.counts(path).opens == 1; }));
    EXPECT_EQ(usb.counts(path).claims, 1);

    // What one handle writes, the other reads: an EEPROM read of address 16.
    ASSERT_TRUE(writer->write(withCheckValue(QByteArray("\xFE\x10", 2) + QByteArray(12, '\0'))));
    const QByteArray reply = reader->read(4);
    ASSERT_EQ(reply.size(), 4);
    EXPECT_EQ(static_cast<unsigned char>(reply[0]), 0xFE);
    EXPECT_EQ(usb.counts(path).opens, 1);

    // The interface is given back with the last handle, not before.
    writer.reset();
    EXPECT_EQ(usb.counts(path).releases, 0);
    reader.reset();
    EXPECT_EQ(usb.counts(path).releases, 1);

    // The next attempt opens and claims anew.
    auto again = bus->open(id);
    ASSERT_TRUE(again);
    EXPECT_TRUE(eventually([&] { return usb.counts(path).opens == 2; }));
    EXPECT_EQ(usb.counts(path).claims, 2);
}

class UsbLinkTest : public UsbBusTest {
protected:
    test::RecordingDialogs dialogs;
    PublicState state;

    std::unique_ptr<FrameLink> linkOver(Bus& bus) {
        return std::make_unique<FrameLink>(bus, dialogs, state);
    }
};

TEST_F(UsbLinkTest, TheConnectionListAndTheIdentityComeThroughLibusb) {
    UsbMockBus::Controller c = controller(2, QByteArray("SER-77"));
    c.firmware.serial = 1234;
    usb.plug(c);
    UsbMockBus::Controller old = controller(3, QByteArray("SER-78"));
    old.firmware.firmware = FirmwareVersion{2, 60};
    auto bus = makeBus();
    auto link = linkOver(*bus);
    Device device(*link, [] { return QStringLiteral("Quorvel Absent"); });

    ASSERT_EQ(bus->deviceCount(), 1);
    const std::int32_t id = bus->uniqueId(0);

    // The whole list as the connection window fills it: the old-firmware
    // probe goes unanswered (firmware 2.70 ignores it) and costs one wait.
    DeviceSelection selection(device, [](const QString& key) { return key; });
    selection.setProbeWait([](int) {});
    state.UsbID = 0;
    const DeviceList list = selection.RafraichitListe(false);
    ASSERT_EQ(list.lines.size(), 1u);
    EXPECT_EQ(list.lines[0].text, QStringLiteral("Quorvel : (12) 2.70     BL V 103-->1234"));
    EXPECT_EQ(list.lines[0].itemData, id);
    EXPECT_TRUE(dialogs.boxes().empty());

    // Firmware below 2.70 answers the unchecked probe of the raw calls.
    usb.plug(old);
    ASSERT_EQ(bus->deviceCount(), 2);
    const std::int32_t oldId = bus->uniqueId(1);
    bool oldRecognised = false;
    EXPECT_FALSE(LitVersionAvantV270(*link, oldId, oldRecognised).isEmpty());
    EXPECT_TRUE(oldRecognised);
}

TEST_F(UsbLinkTest, ASilentDeviceGivesTimeOutAfterThreeBoundedWaits) {
    UsbMockBus::Controller c = controller(2, QByteArray("MUTE"));
    c.silent = true;
    const QString path = usb.plug(c);
    auto bus = makeBus();
    auto link = linkOver(*bus);
    ASSERT_EQ(bus->deviceCount(), 1);

    Bytes reply;
    std::int16_t length = 1;
    QElapsedTimer timer;
    timer.start();
    const bool ok = link->EchangeUsb(bus->uniqueId(0), {0xFE, 40}, 16, reply, length,
                                     QStringLiteral("Quorvel Absent"), true, QStringLiteral("t"));
    const qint64 elapsed = timer.elapsed();
    EXPECT_FALSE(ok);
    EXPECT_TRUE(state.TimeOut);
    EXPECT_FALSE(state.CRCError);
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, QStringLiteral("Quorvel Absent (Time Out)"));
    // Every request arrived, and every read was given up after its wait, as
    // was the look for stale input before each write.
    EXPECT_EQ(usb.counts(path).bulkOut, 3);
    EXPECT_EQ(usb.counts(path).discarded, 6);
    EXPECT_GE(elapsed, 3 * kReadWaitMs);
    EXPECT_LT(elapsed, 3 * (kReadWaitMs + 2 * FrameLink::kPauseMs) + 1500);
}

TEST_F(UsbLinkTest, AReplyThatComesAfterItsReadIsNeverTakenForTheNextOne) {
    // Serial 1234 is D2 04 00 00 at addresses 16 to 19.
    UsbMockBus::Controller c = controller(2, QByteArray("LATE"));
    c.firmware.serial = 1234;
    const struct {
        const char* what;
        int late;
        int attemptsForFirst;
    } cases[] = {{"every reply on time", 0, 1}, {"the first reply late", 1, 2}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k.what);
        c.late = k.late;
        c.address += 10;
        c.port += 1;
        const QString path = usb.plug(c);
        auto bus = makeBus();
        auto link = linkOver(*bus);
        ASSERT_EQ(bus->deviceCount(), 1);
        const std::int32_t id = bus->uniqueId(0);
        const auto eeprom = [&](int address, std::int16_t& length) {
            Bytes reply;
            length = 2;
            const bool ok = link->EchangeUsb(id, {0xFE, address}, 16, reply, length,
                                             QStringLiteral("Quorvel Absent"), true, QString());
            return ok ? reply.at(1) : -1;
        };
        std::int16_t length = 0;
        EXPECT_EQ(eeprom(16, length), 0xD2);
        EXPECT_EQ(length, 2 + 2 * k.attemptsForFirst);
        // The first request's second reply is still on its way when the
        // next request goes out; it must not stand for the answer.
        EXPECT_EQ(eeprom(17, length), 0x04);
        EXPECT_EQ(length, 4);
        EXPECT_EQ(eeprom(18, length), 0x00);
        EXPECT_EQ(usb.counts(path).bulkOut, 2 + k.attemptsForFirst);
        EXPECT_TRUE(dialogs.boxes().empty());
        usb.unplug(path);
        ASSERT_TRUE(eventually([&] { return bus->deviceCount() == 0; }));
    }
}

TEST_F(UsbBusTest, ADeviceThatGoesAwayFailsAtOnce) {
    const QString path = usb.plug(controller(2, QByteArray("GONE")));
    auto bus = makeBus();
    ASSERT_EQ(bus->deviceCount(), 1);
    const std::int32_t id = bus->uniqueId(0);
    auto handle = bus->open(id);
    ASSERT_TRUE(handle);
    usb.unplug(path);

    EXPECT_FALSE(handle->write(QByteArray(16, '\0')));
    EXPECT_EQ(handle->lastError(), ENODEV);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(handle->read(4).isEmpty());
    EXPECT_LT(timer.elapsed(), kReadWaitMs);
    EXPECT_EQ(handle->lastError(), ENODEV);
    handle.reset();
    ASSERT_TRUE(eventually([&] { return bus->deviceCount() == 0; }));
    EXPECT_EQ(bus->open(id), nullptr);
}

TEST_F(UsbBusTest, AnInterfaceHeldElsewhereIsToldOnceAndNotOpened) {
    UsbMockBus::Controller c = controller(2, QByteArray("BUSY"));
    c.claimBusy = true;
    usb.plug(c);
    auto bus = makeBus();
    ASSERT_EQ(bus->deviceCount(), 1);
    for (int attempt = 0; attempt < 3; ++attempt)
        EXPECT_EQ(bus->open(bus->uniqueId(0)), nullptr);
    ASSERT_EQ(reports.size(), 1) << reports.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(reports[0].contains(QStringLiteral("held by another program")));
    EXPECT_TRUE(reports[0].contains(QStringLiteral("1209:0001")));
}

TEST_F(UsbBusTest, TheLinkOptionChoosesTheIdTable) {
    UsbMockBus::Controller c = controller(2, QByteArray("T1"));
    c.product = 0x4242;
    usb.plug(c);
    usb.plug(controller(3, QByteArray("T2")));
    QTemporaryDir dir;
    const QString table = dir.filePath(QStringLiteral("ids.conf"));
    QFile file(table);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("1209:4242 interface=0 out=0x02 in=0x81\n1209:0001\n");
    file.close();

    for (const auto& [option, count] : {std::pair{QStringLiteral("usb"), 1},
                                        {"usb:ids=" + table, 2},
                                        {"usb:ids=" + table + ",readWaitMs=20", 2}}) {
        QString error;
        auto bus = qv::makeBus(option, &error, [](const QString&) {});
        ASSERT_TRUE(bus) << option.toStdString() << ": " << error.toStdString();
        EXPECT_EQ(bus->deviceCount(), count) << option.toStdString();
    }
    qputenv("QUORVEL_USB_IDS", table.toUtf8());
    QString error;
    auto fromEnvironment = qv::makeBus(QStringLiteral("usb"), &error, [](const QString&) {});
    qunsetenv("QUORVEL_USB_IDS");
    ASSERT_TRUE(fromEnvironment) << error.toStdString();
    EXPECT_EQ(fromEnvironment->deviceCount(), 2);
}

} // namespace
