#include "UsbMockController.h"

#include <QDateTime>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <deque>
#include <linux/usbdevice_fs.h>
#include <map>
#include <mutex>
#include <stdexcept>
#include <sys/ioctl.h>
#include <umockdev.h>
#include <vector>

namespace {

// The serial-number string descriptor's index in the device descriptor.
constexpr int kSerialIndex = 3;

QByteArray descriptors(const UsbMockBus::Controller& c) {
    const unsigned char bytes[] = {
        // Device: USB 2.0, vendor class at interface level, 64-byte EP0.
        18, 1, 0x00, 0x02, 0, 0, 0, 64, static_cast<unsigned char>(c.vendor & 0xFF),
        static_cast<unsigned char>(c.vendor >> 8), static_cast<unsigned char>(c.product & 0xFF),
        static_cast<unsigned char>(c.product >> 8), 0x00, 0x01, 0, 0,
        static_cast<unsigned char>(c.serial ? kSerialIndex : 0), 1,
        // Configuration 1, one interface, 32 bytes in all.
        9, 2, 32, 0, 1, 1, 0, 0x80, 50,
        // Interface 0: two endpoints, vendor specific.
        9, 4, 0, 0, 2, 0xFF, 0, 0, 0,
        // Bulk OUT 0x02 and bulk IN 0x81, 64 bytes.
        7, 5, 0x02, 2, 64, 0, 0, 7, 5, 0x81, 2, 64, 0, 0};
    return QByteArray(reinterpret_cast<const char*>(bytes), sizeof bytes);
}

} // namespace

struct UsbMockBus::Impl {
    struct Device {
        explicit Device(const Controller& c)
            : setup(c), firmware(c.firmware), repliesBeforeLate(c.late) {}
        Controller setup;
        qv::SimDevice firmware;
        QString syspath;
        QString node;
        bool plugged = true;
        // What the device has put in its IN endpoint, oldest first. A new
        // request cannot take back what is there: the host must read it.
        std::deque<QByteArray> replies;
        int repliesBeforeLate = 0; // counts down to the late reply
        std::optional<QByteArray> late;
        Counts counts;
        // URBs are per open node: what waits for data, and what is done
        // and waits for the host to reap it.
        struct Urbs {
            std::deque<UMockdevIoctlData*> waitingIn, reapable;
            void release() {
                for (auto* queue : {&waitingIn, &reapable})
                    for (UMockdevIoctlData* urb : *queue)
                        g_object_unref(urb);
            }
        };
        std::map<UMockdevIoctlClient*, Urbs> urbs;
    };

    UMockdevTestbed* testbed = nullptr;
    mutable std::mutex mutex;
    std::vector<std::unique_ptr<Device>> devices;
    std::vector<UMockdevIoctlBase*> handlers;

    Device* byNode(const QString& node) {
        for (auto& d : devices)
            if (d->node == node)
                return d.get();
        return nullptr;
    }
    Device* bySyspath(const QString& path) const {
        for (auto& d : devices)
            if (d->syspath == path)
                return d.get();
        return nullptr;
    }

    static usbdevfs_urb* urbOf(UMockdevIoctlData* data) {
        return reinterpret_cast<usbdevfs_urb*>(data->data);
    }

    // Fills a waiting read with the reply; the rest of a reply that does
    // not fit is lost, as on the wire.
    void fillIn(Device& d, UMockdevIoctlData* urbData) {
        usbdevfs_urb* urb = urbOf(urbData);
        GError* error = nullptr;
        UMockdevIoctlData* buffer =
            umockdev_ioctl_data_resolve(urbData, offsetof(usbdevfs_urb, buffer),
                                        static_cast<gsize>(urb->buffer_length), &error);
        const QByteArray reply = d.replies.front();
        d.replies.pop_front();
        const int n = std::min(static_cast<int>(reply.size()), urb->buffer_length);
        if (buffer)
            std::memcpy(buffer->data, reply.constData(), static_cast<size_t>(n));
        urb->actual_length = n;
        urb->status = 0;
    }

    // Returns the ioctl's result; -errno on failure.
    long submit(Device& d, UMockdevIoctlClient* client, UMockdevIoctlData* arg) {
        GError* error = nullptr;
        UMockdevIoctlData* urbData =
            umockdev_ioctl_data_resolve(arg, 0, sizeof(usbdevfs_urb), &error);
        if (!urbData)
            return -EFAULT;
        usbdevfs_urb* urb = urbOf(urbData);
        g_object_ref(urbData);
        if (urb->type == USBDEVFS_URB_TYPE_BULK && urb->endpoint == 0x02) {
            ++d.counts.bulkOut;
            GError* e = nullptr;
            UMockdevIoctlData* buffer =
                umockdev_ioctl_data_resolve(urbData, offsetof(usbdevfs_urb, buffer),
                                            static_cast<gsize>(urb->buffer_length), &e);
            QByteArray transfer(reinterpret_cast<const char*>(buffer ? buffer->data : nullptr),
                                buffer ? urb->buffer_length : 0);
            const auto outcome = d.firmware.receive(transfer, QDateTime::currentMSecsSinceEpoch());
            if (outcome.reply && !d.setup.silent) {
                if (d.repliesBeforeLate > 0 && --d.repliesBeforeLate == 0)
                    d.late = *outcome.reply;
                else
                    d.replies.push_back(*outcome.reply);
            }
            urb->actual_length = urb->buffer_length;
            urb->status = 0;
            auto& waiting = d.urbs[client].waitingIn;
            if (!d.replies.empty() && !waiting.empty()) {
                UMockdevIoctlData* in = waiting.front();
                waiting.erase(waiting.begin());
                fillIn(d, in);
                d.urbs[client].reapable.push_back(in);
            }
        } else if (urb->type == USBDEVFS_URB_TYPE_BULK && urb->endpoint == 0x81) {
            if (d.replies.empty()) {
                d.urbs[client].waitingIn.push_back(urbData);
                return 0;
            }
            fillIn(d, urbData);
        } else {
            g_object_unref(urbData);
            return -ENOENT;
        }
        d.urbs[client].reapable.push_back(urbData);
        return 0;
    }

    long discard(Device& d, UMockdevIoctlClient* client, UMockdevIoctlData* arg) {
        gulong address = 0;
        std::memcpy(&address, arg->data, sizeof address);
        auto& waiting = d.urbs[client].waitingIn;
        for (auto it = waiting.begin(); it != waiting.end(); ++it) {
            if ((*it)->client_addr != address)
                continue;
            UMockdevIoctlData* urbData = *it;
            waiting.erase(it);
            urbOf(urbData)->status = -ENOENT;
            urbOf(urbData)->actual_length = 0;
            ++d.counts.discarded;
            d.urbs[client].reapable.push_back(urbData);
            // The late reply comes just after the host stopped waiting.
            if (d.late) {
                d.replies.push_back(*d.late);
                d.late.reset();
            }
            return 0;
        }
        return -EINVAL;
    }

    long reap(Device& d, UMockdevIoctlClient* client, UMockdevIoctlData* arg) {
        auto& done = d.urbs[client].reapable;
        if (done.empty())
            return -EAGAIN;
        GError* error = nullptr;
        UMockdevIoctlData* slot = umockdev_ioctl_data_resolve(arg, 0, sizeof(void*), &error);
        if (!slot)
            return -EFAULT;
        UMockdevIoctlData* urbData = done.front();
        done.pop_front();
        umockdev_ioctl_data_set_ptr(slot, 0, urbData);
        g_object_unref(urbData);
        return 0;
    }

    long ioctl(UMockdevIoctlClient* client) {
        std::lock_guard lock(mutex);
        Device* d = byNode(QString::fromUtf8(umockdev_ioctl_client_get_devnode(client)));
        if (!d || !d->plugged)
            return -ENODEV;
        const gulong request = umockdev_ioctl_client_get_request(client);
        UMockdevIoctlData* arg = umockdev_ioctl_client_get_arg(client);
        switch (request) {
        case USBDEVFS_SUBMITURB:
            return submit(*d, client, arg);
        case USBDEVFS_DISCARDURB:
            return discard(*d, client, arg);
        case USBDEVFS_REAPURB:
        case USBDEVFS_REAPURBNDELAY:
            return reap(*d, client, arg);
        case USBDEVFS_CLAIMINTERFACE: // one interface, and no other program
        case USBDEVFS_RELEASEINTERFACE:
            return 0;
        default:
            return -ENOTTY;
        }
    }

    static gboolean onIoctl(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self) {
        const long result = static_cast<Impl*>(self)->ioctl(client);
        umockdev_ioctl_client_complete(client, result < 0 ? -1 : result,
                                       result < 0 ? static_cast<gint>(-result) : 0);
        return TRUE;
    }

    static void onVanished(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self) {
        auto* impl = static_cast<Impl*>(self);
        std::lock_guard lock(impl->mutex);
        Device* d = impl->byNode(QString::fromUtf8(umockdev_ioctl_client_get_devnode(client)));
        if (!d)
            return;
        // Closing a node drops its URBs.
        d->urbs[client].release();
        d->urbs.erase(client);
    }
};

UsbMockBus::UsbMockBus() : impl_(std::make_unique<Impl>()) {
    const QByteArray preload = qgetenv("LD_PRELOAD");
    if (!preload.contains("libumockdev-preload"))
        throw std::runtime_error("umockdev's preload library is not loaded");
    impl_->testbed = umockdev_testbed_new();
}

UsbMockBus::~UsbMockBus() {
    for (auto& d : impl_->devices)
        for (auto& [client, urbs] : d->urbs)
            urbs.release();
    for (UMockdevIoctlBase* handler : impl_->handlers)
        g_object_unref(handler);
    g_object_unref(impl_->testbed);
}

QString UsbMockBus::plug(const Controller& controller) {
    auto device = std::make_unique<Impl::Device>(controller);
    const QString name = QStringLiteral("1-%1").arg(controller.port);
    const QString node =
        QStringLiteral("/dev/bus/usb/001/%1").arg(controller.address, 3, 10, QLatin1Char('0'));
    QString text = QStringLiteral("P: /devices/pci0000:00/0000:00:14.0/usb1/%1\n"
                                  "N: %2\n"
                                  "E: SUBSYSTEM=usb\n"
                                  "E: DEVTYPE=usb_device\n"
                                  "E: DEVNAME=%3\n"
                                  "E: BUSNUM=001\n"
                                  "E: DEVNUM=%4\n"
                                  "A: busnum=1\n"
                                  "A: devnum=%5\n"
                                  "A: speed=12\n"
                                  "A: bConfigurationValue=1\n"
                                  "A: idVendor=%6\n"
                                  "A: idProduct=%7\n")
                       .arg(name, node.mid(5), node)
                       .arg(controller.address, 3, 10, QLatin1Char('0'))
                       .arg(controller.address)
                       .arg(controller.vendor, 4, 16, QLatin1Char('0'))
                       .arg(controller.product, 4, 16, QLatin1Char('0'));
    if (controller.serial)
        text += QStringLiteral("A: serial=%1\n").arg(QString::fromLatin1(*controller.serial));
    text += QStringLiteral("H: descriptors=%1\n")
                .arg(QString::fromLatin1(descriptors(controller).toHex()));
    GError* error = nullptr;
    if (!umockdev_testbed_add_from_string(impl_->testbed, text.toUtf8().constData(), &error)) {
        const std::string message = error->message;
        g_error_free(error);
        throw std::runtime_error("umockdev refused the device: " + message);
    }
    device->syspath = QStringLiteral("/sys/devices/pci0000:00/0000:00:14.0/usb1/%1").arg(name);
    device->node = node;
    UMockdevIoctlBase* handler = umockdev_ioctl_base_new();
    g_signal_connect(handler, "handle-ioctl", G_CALLBACK(Impl::onIoctl), impl_.get());
    g_signal_connect(handler, "client-vanished", G_CALLBACK(Impl::onVanished), impl_.get());
    if (!umockdev_testbed_attach_ioctl(impl_->testbed, node.toUtf8().constData(), handler,
                                       &error)) {
        const std::string message = error->message;
        g_error_free(error);
        g_object_unref(handler);
        throw std::runtime_error("umockdev cannot answer " + node.toStdString() + ": " + message);
    }
    impl_->handlers.push_back(handler);
    const QString syspath = device->syspath;
    std::lock_guard lock(impl_->mutex);
    impl_->devices.push_back(std::move(device));
    return syspath;
}

void UsbMockBus::unplug(const QString& syspath) {
    {
        std::lock_guard lock(impl_->mutex);
        if (Impl::Device* d = impl_->bySyspath(syspath))
            d->plugged = false;
    }
    // The event first: it tells the libusb contexts that watch the bus.
    umockdev_testbed_uevent(impl_->testbed, syspath.toUtf8().constData(), "remove");
    umockdev_testbed_remove_device(impl_->testbed, syspath.toUtf8().constData());
}

UsbMockBus::Counts UsbMockBus::counts(const QString& syspath) const {
    std::lock_guard lock(impl_->mutex);
    const Impl::Device* d = impl_->bySyspath(syspath);
    return d ? d->counts : Counts{};
}
