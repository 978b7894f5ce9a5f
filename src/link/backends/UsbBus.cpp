#include "UsbBus.h"

#include "DeviceIds.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <libusb.h>
#include <map>
#include <mutex>
#include <set>

namespace qv {

namespace {

// The platform error code that the link's diagnostics know, for a libusb one.
int errnoOf(int libusbError) {
    switch (libusbError) {
    case LIBUSB_SUCCESS:
        return 0;
    case LIBUSB_ERROR_INVALID_PARAM:
        return EINVAL;
    case LIBUSB_ERROR_ACCESS:
        return EACCES;
    case LIBUSB_ERROR_NO_DEVICE:
        return ENODEV;
    case LIBUSB_ERROR_NOT_FOUND:
        return ENOENT;
    case LIBUSB_ERROR_BUSY:
        return EBUSY;
    case LIBUSB_ERROR_TIMEOUT:
        return ETIMEDOUT;
    case LIBUSB_ERROR_OVERFLOW:
        return EOVERFLOW;
    case LIBUSB_ERROR_PIPE:
        return EPIPE;
    case LIBUSB_ERROR_INTERRUPTED:
        return EINTR;
    case LIBUSB_ERROR_NO_MEM:
        return ENOMEM;
    case LIBUSB_ERROR_NOT_SUPPORTED:
        return ENOSYS;
    default:
        return EIO;
    }
}

QString libusbText(int error) {
    return QString::fromUtf8(libusb_strerror(static_cast<libusb_error>(error)));
}

// The wording of `key` in the language in use; the key itself is English.
QString wording(const std::function<QString(const QString&)>& translate, const QString& key) {
    const QString text = translate ? translate(key) : QString();
    return text.isEmpty() ? key : text;
}

QString hex4(unsigned value) {
    return QStringLiteral("%1").arg(value, 4, 16, QLatin1Char('0'));
}

} // namespace

QString usbPermissionAdvice(const QString& device,
                            const std::function<QString(const QString&)>& translate) {
    return wording(translate,
                   QStringLiteral(
                       "no permission to open the USB controller %1. Install the udev rule that "
                       "comes with quorvel (60-quorvel.rules, in %2) into /etc/udev/rules.d/, "
                       "run \"udevadm control --reload\" and \"udevadm trigger\" as root, then "
                       "plug the controller in again. See README, \"USB permissions\"."))
        .arg(device, QStringLiteral(QUORVEL_INSTALLED_DATA_DIR));
}

// What one opened device holds: the libusb handle and the claimed interface.
// Handles share it; the last one to go releases and closes.
struct OpenDevice {
    std::shared_ptr<UsbBus::Core> core;
    libusb_device_handle* handle = nullptr;
    UsbIdEntry entry;
    std::uint8_t busNumber = 0;
    std::uint8_t address = 0;
    int readWaitMs = UsbBus::kDefaultReadWaitMs;
    int writeWaitMs = UsbBus::kDefaultWriteWaitMs;

    OpenDevice() = default;
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;
    ~OpenDevice() {
        libusb_release_interface(handle, entry.interfaceNumber);
        libusb_close(handle);
    }
};

struct UsbBus::Core {
    // A device that the table recognises, as one look at the bus found it.
    struct Listed {
        std::int32_t id = 0;
        libusb_device* device = nullptr; // referenced while listed
        UsbIdEntry entry;
        std::uint8_t busNumber = 0;
        std::uint8_t address = 0;
        QString location; // "1-4.2"
    };

    mutable std::mutex mutex;
    Settings settings;
    libusb_context* context = nullptr;
    std::vector<Listed> listed;
    // Ids cost a read of the serial number; a device keeps its id for as long
    // as it keeps its address on its bus.
    std::map<QString, std::int32_t> idCache;
    std::map<std::int32_t, std::weak_ptr<OpenDevice>> opened;
    std::set<QString> told;

    ~Core() {
        release(listed);
        if (context)
            libusb_exit(context);
    }

    QString text(const QString& key) const { return wording(settings.translate, key); }

    void tell(const QString& text) {
        if (!told.insert(text).second)
            return;
        if (settings.report)
            settings.report(text);
    }

    static void release(std::vector<Listed>& devices) {
        for (Listed& l : devices)
            libusb_unref_device(l.device);
        devices.clear();
    }

    static QString locationOf(libusb_device* device) {
        std::uint8_t ports[8];
        const int depth = libusb_get_port_numbers(device, ports, 8);
        QString text = QString::number(libusb_get_bus_number(device)) + QLatin1Char('-');
        for (int i = 0; i < depth; ++i) {
            if (i > 0)
                text += QLatin1Char('.');
            text += QString::number(ports[i]);
        }
        return depth > 0 ? text : text + QLatin1Char('0');
    }

    // The serial-number string: from sysfs when the system offers it, which
    // needs no permission on the device; otherwise from the device itself.
    QByteArray serialOf(libusb_device* device, const libusb_device_descriptor& descriptor,
                        const QString& location) {
        QFile file(QStringLiteral("/sys/bus/usb/devices/%1/serial").arg(location));
        if (file.open(QIODevice::ReadOnly))
            return file.readAll().trimmed();
        if (descriptor.iSerialNumber == 0)
            return {};
        libusb_device_handle* handle = nullptr;
        const int opened = libusb_open(device, &handle);
        if (opened != LIBUSB_SUCCESS) {
            if (opened == LIBUSB_ERROR_ACCESS)
                tell(usbPermissionAdvice(describe(descriptor, location), settings.translate));
            return {};
        }
        unsigned char text[256] = {};
        const int length =
            libusb_get_string_descriptor_ascii(handle, descriptor.iSerialNumber, text, 255);
        libusb_close(handle);
        return length > 0 ? QByteArray(reinterpret_cast<const char*>(text), length).trimmed()
                          : QByteArray();
    }

    static QString describe(const libusb_device_descriptor& descriptor, const QString& location) {
        return QStringLiteral("%1:%2 on port %3")
            .arg(hex4(descriptor.idVendor), hex4(descriptor.idProduct), location);
    }

    // One look at the bus, under the lock; the caller releases what it
    // returns. The order is that of the ports, so that a list does not
    // reshuffle from one look to the next.
    std::vector<Listed> scan() {
        std::vector<Listed> found;
        if (!context)
            return found;
        libusb_device** devices = nullptr;
        const ssize_t count = libusb_get_device_list(context, &devices);
        if (count < 0) {
            tell(text(QStringLiteral("the USB devices cannot be listed: %1"))
                     .arg(libusbText(static_cast<int>(count))));
            return found;
        }
        for (ssize_t i = 0; i < count; ++i) {
            libusb_device_descriptor descriptor{};
            if (libusb_get_device_descriptor(devices[i], &descriptor) != LIBUSB_SUCCESS)
                continue;
            const UsbIdEntry* entry =
                findUsbId(settings.ids, descriptor.idVendor, descriptor.idProduct);
            if (!entry)
                continue;
            Listed l;
            l.device = libusb_ref_device(devices[i]);
            l.entry = *entry;
            l.busNumber = libusb_get_bus_number(devices[i]);
            l.address = libusb_get_device_address(devices[i]);
            l.location = locationOf(devices[i]);
            const QString cacheKey = l.location + QLatin1Char('@') + QString::number(l.address) +
                                     QLatin1Char('/') + hex4(descriptor.idVendor) +
                                     hex4(descriptor.idProduct);
            const auto cached = idCache.find(cacheKey);
            if (cached != idCache.end()) {
                l.id = cached->second;
            } else {
                const QByteArray serial = serialOf(devices[i], descriptor, l.location);
                // The serial number names the controller wherever it is
                // plugged; without one the port is all there is.
                l.id = serial.isEmpty()
                           ? stableDeviceId("usb-port:" + l.location.toUtf8())
                           : stableDeviceId("usb:" + hex4(descriptor.idVendor).toUtf8() + ':' +
                                            hex4(descriptor.idProduct).toUtf8() + ':' + serial);
                idCache[cacheKey] = l.id;
            }
            found.push_back(std::move(l));
        }
        libusb_free_device_list(devices, 1);
        std::sort(found.begin(), found.end(),
                  [](const Listed& a, const Listed& b) { return a.location < b.location; });
        return found;
    }

    static const Listed* find(const std::vector<Listed>& devices, std::int32_t id) {
        for (const Listed& l : devices)
            if (l.id == id)
                return &l;
        return nullptr;
    }
};

namespace {

class UsbHandle : public BusHandle {
public:
    explicit UsbHandle(std::shared_ptr<OpenDevice> device) : device_(std::move(device)) {}

    bool write(const QByteArray& transfer) override {
        drainPendingInput();
        QByteArray bytes = transfer;
        int done = 0;
        const int result = libusb_bulk_transfer(
            device_->handle, device_->entry.outEndpoint,
            reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()), &done,
            static_cast<unsigned>(std::max(1, device_->writeWaitMs)));
        settle(result, device_->entry.outEndpoint);
        lastError_ = errnoOf(result);
        return result == LIBUSB_SUCCESS && done == bytes.size();
    }

    QByteArray read(int maxLength) override {
        if (maxLength <= 0)
            return {};
        QByteArray buffer(maxLength, '\0');
        int done = 0;
        const int result =
            libusb_bulk_transfer(device_->handle, device_->entry.inEndpoint,
                                 reinterpret_cast<unsigned char*>(buffer.data()), maxLength, &done,
                                 static_cast<unsigned>(std::max(1, device_->readWaitMs)));
        settle(result, device_->entry.inEndpoint);
        // A silent device is no error: the caller learns it from the empty
        // answer. A transfer longer than asked for keeps what fitted.
        lastError_ =
            result == LIBUSB_ERROR_TIMEOUT || result == LIBUSB_ERROR_OVERFLOW ? 0 : errnoOf(result);
        buffer.truncate(std::clamp(done, 0, maxLength));
        return buffer;
    }

    int lastError() const override { return lastError_; }

private:
    // What the device sends in the meantime answers an earlier request: a
    // reply that came after its read had given up. Left there, it would be
    // taken as the reply to this write (a short one, padded with zeros,
    // still checks). So it is read and thrown away first, as the serial
    // link empties its input; a device that keeps talking cannot hold the
    // write up for longer than the bound.
    void drainPendingInput() {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(UsbBus::kDrainLimitMs);
        unsigned char buffer[kDrainBuffer];
        while (std::chrono::steady_clock::now() < deadline) {
            int done = 0;
            const int result =
                libusb_bulk_transfer(device_->handle, device_->entry.inEndpoint, buffer,
                                     kDrainBuffer, &done, UsbBus::kDrainWaitMs);
            settle(result, device_->entry.inEndpoint);
            if ((result != LIBUSB_SUCCESS && result != LIBUSB_ERROR_OVERFLOW) || done <= 0)
                return;
        }
    }

    // Larger than any packet, so that a whole one is taken at a time.
    static constexpr int kDrainBuffer = 512;

    // A stalled endpoint stays stalled until told otherwise; the next
    // attempt should find it usable.
    void settle(int result, std::uint8_t endpoint) {
        if (result == LIBUSB_ERROR_PIPE)
            libusb_clear_halt(device_->handle, endpoint);
    }

    std::shared_ptr<OpenDevice> device_;
    int lastError_ = 0;
};

// Opens, or shares, a device of `present`, under the bus's lock.
std::unique_ptr<BusHandle> openListed(const std::shared_ptr<UsbBus::Core>& core,
                                      const std::vector<UsbBus::Core::Listed>& present,
                                      std::int32_t uniqueId) {
    using Core = UsbBus::Core;
    const Core::Listed* l = Core::find(present, uniqueId);
    if (!l)
        return nullptr;
    if (auto shared = core->opened[uniqueId].lock()) {
        if (shared->busNumber == l->busNumber && shared->address == l->address)
            return std::make_unique<UsbHandle>(std::move(shared));
    }
    libusb_device_descriptor descriptor{};
    libusb_get_device_descriptor(l->device, &descriptor);
    const QString name = Core::describe(descriptor, l->location);

    libusb_device_handle* handle = nullptr;
    const int opened = libusb_open(l->device, &handle);
    if (opened != LIBUSB_SUCCESS) {
        if (opened == LIBUSB_ERROR_ACCESS)
            core->tell(usbPermissionAdvice(name, core->settings.translate));
        return nullptr;
    }
    const int claimed = libusb_claim_interface(handle, l->entry.interfaceNumber);
    if (claimed != LIBUSB_SUCCESS) {
        libusb_close(handle);
        if (claimed == LIBUSB_ERROR_BUSY)
            core->tell(core->text(QStringLiteral("interface %1 of the USB controller %2 is held by "
                                                 "another program or by a kernel driver; a "
                                                 "controller that shows up as /dev/ttyACM* is "
                                                 "reached with --link tty:/dev/ttyACM*"))
                           .arg(l->entry.interfaceNumber)
                           .arg(name));
        else if (claimed == LIBUSB_ERROR_ACCESS)
            core->tell(usbPermissionAdvice(name, core->settings.translate));
        else if (claimed == LIBUSB_ERROR_NOT_FOUND)
            core->tell(core->text(QStringLiteral("the USB controller %1 has no interface %2; check "
                                                 "its line in the USB id table"))
                           .arg(name)
                           .arg(l->entry.interfaceNumber));
        return nullptr;
    }
    auto device = std::make_shared<OpenDevice>();
    device->core = core;
    device->handle = handle;
    device->entry = l->entry;
    device->busNumber = l->busNumber;
    device->address = l->address;
    device->readWaitMs = core->settings.readWaitMs;
    device->writeWaitMs = core->settings.writeWaitMs;
    core->opened[uniqueId] = device;
    return std::make_unique<UsbHandle>(std::move(device));
}

} // namespace

UsbBus::UsbBus(Settings settings) : core_(std::make_shared<Core>()) {
    core_->settings = std::move(settings);
    const int result = libusb_init(&core_->context);
    if (result != LIBUSB_SUCCESS) {
        core_->context = nullptr;
        core_->tell(core_
                        ->text(QStringLiteral("USB cannot be used on this system (%1); no "
                                              "controller on USB will be listed"))
                        .arg(libusbText(result)));
    }
}

UsbBus::~UsbBus() = default;

int UsbBus::deviceCount() {
    std::lock_guard lock(core_->mutex);
    std::vector<Core::Listed> found = core_->scan();
    Core::release(core_->listed);
    core_->listed = std::move(found);
    return static_cast<int>(core_->listed.size());
}

std::int32_t UsbBus::uniqueId(int index) {
    std::lock_guard lock(core_->mutex);
    if (index < 0 || index >= static_cast<int>(core_->listed.size()))
        return 0;
    return core_->listed[static_cast<size_t>(index)].id;
}

QString UsbBus::location(std::int32_t uniqueId) const {
    std::lock_guard lock(core_->mutex);
    const Core::Listed* l = Core::find(core_->listed, uniqueId);
    return l ? l->location : QString();
}

std::unique_ptr<BusHandle> UsbBus::open(std::int32_t uniqueId) {
    std::lock_guard lock(core_->mutex);
    // A fresh look, kept apart from the counted list so that indices stay
    // those of the pass under way: the device may have gone, or come back
    // at a new address.
    std::vector<Core::Listed> present = core_->scan();
    auto handle = openListed(core_, present, uniqueId);
    Core::release(present);
    return handle;
}

} // namespace qv
