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

#include <QElapsedTimer>
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

class UsbLinkTest : public UsbBusTest {
protected:
    test::RecordingDialogs dialogs;
    PublicState state;

    std::unique_ptr<FrameLink> linkOver(Bus& bus) {
        return std::make_unique<FrameLink>(bus, dialogs, state);
    }
};

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

} // namespace
