#pragma once

#include "UsbIds.h"
#include "link/Bus.h"

#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace qv {

// Controllers on USB through libusb: the devices that the id table
// recognises, each spoken to by one bulk transfer per frame on the table's
// interface and endpoints. Input that arrived after a read had given up is
// thrown away before the next write.
//
// A device's id comes from its serial-number string when it has one, else
// from the bus and port it is plugged into, so it survives refreshes and a
// replug into the same port. Handles on one device share one opened device
// and one claimed interface, given back when the last handle closes; a
// handle stays usable when the bus object goes first.
//
// Thread-safe: counting, ids and opening take one lock; transfers run
// without it and may come from another thread than the one that opened.
class UsbBus : public Bus {
public:
    static constexpr int kDefaultReadWaitMs = 250;
    static constexpr int kDefaultWriteWaitMs = 1000;
    // Before each write, input that arrived since the last read is taken
    // and thrown away: each look for it waits this long, and all of them
    // together stop after the limit.
    static constexpr unsigned kDrainWaitMs = 2;
    static constexpr int kDrainLimitMs = 50;

    struct Settings {
        std::vector<UsbIdEntry> ids = defaultUsbIds();
        // How long a read waits for the device's transfer.
        int readWaitMs = kDefaultReadWaitMs;
        // How long a write may take before it counts as refused.
        int writeWaitMs = kDefaultWriteWaitMs;
        // Problems that the operator can act on: no permission to open a
        // device, an interface held by someone else, no USB at all. Each
        // distinct problem is told once per bus.
        std::function<void(const QString& text)> report;
        // The wording of a report in the language in use, from the English
        // wording (config.xml's key), with %1, %2... for the details; the
        // English wording when none is given.
        std::function<QString(const QString& key)> translate;
    };

    explicit UsbBus(Settings settings);
    ~UsbBus() override;
    UsbBus(const UsbBus&) = delete;
    UsbBus& operator=(const UsbBus&) = delete;

    // Counting takes a fresh look at the bus; ids are those of that look.
    int deviceCount() override;
    std::int32_t uniqueId(int index) override; // 0 for an index out of range
    std::unique_ptr<BusHandle> open(std::int32_t uniqueId) override;

    // Where a listed device is plugged, "BUS-PORT.PORT...", for messages;
    // empty for an id that the last count did not see.
    QString location(std::int32_t uniqueId) const;

    struct Core;

private:
    std::shared_ptr<Core> core_;
};

// The text told when a device cannot be opened for lack of permission: what
// to install and how. Public for the tests and the documentation.
QString usbPermissionAdvice(const QString& device,
                            const std::function<QString(const QString& key)>& translate = {});

} // namespace qv
