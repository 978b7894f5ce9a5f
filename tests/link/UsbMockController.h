#pragma once

#include "SimDevice.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>

// Controllers on a USB bus that exists only for this process: umockdev fakes
// sysfs and the usbfs device nodes, and the ioctls that libusb sends to a
// node are answered by the firmware model, so that the real libusb code
// lists, opens, claims and transfers. The process must run with umockdev's
// preload library (see UsbTestMain.cpp), and the bus must be set up before
// the first libusb context is made.
class UsbMockBus {
public:
    struct Controller {
        std::uint16_t vendor = 0x1209;
        std::uint16_t product = 0x0001;
        std::optional<QByteArray> serial; // none: the device has no serial string
        int port = 2;                     // on root hub 1: sysfs name "1-<port>"
        int address = 2;                  // /dev/bus/usb/001/<address>
        qv::SimDeviceConfig firmware;
        bool silent = false; // takes every transfer, answers none
        // The Nth reply (from 1; 0 for none) comes late: only once the
        // read that waited for it has been given up.
        int late = 0;
    };

    // What the fake kernel saw of one device.
    struct Counts {
        int bulkOut = 0;
        int discarded = 0; // reads given up by the host after their wait
    };

    UsbMockBus();
    ~UsbMockBus();
    UsbMockBus(const UsbMockBus&) = delete;
    UsbMockBus& operator=(const UsbMockBus&) = delete;

    // Plugs a controller in; returns its sysfs path.
    QString plug(const Controller& controller);
    // Pulls it out: gone from sysfs, and its node answers nothing more.
    void unplug(const QString& syspath);

    Counts counts(const QString& syspath) const;

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};
