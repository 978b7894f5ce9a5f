#pragma once

#include "link/Bus.h"

#include <QString>
#include <QStringList>
#include <memory>

namespace qv {

// Controllers that present themselves as serial ports (CDC-ACM, or
// quorvel-sim's pseudo-terminals): the devices are the terminals whose paths
// match a glob pattern, such as /dev/ttyACM* or /dev/serial/by-id/*Sorvane*.
//
// A device's id comes from its path as the pattern finds it, symbolic links
// not followed: /dev/serial/by-id/... and quorvel-sim's links keep their
// names when what they point to changes, /dev/ttyACM0 only while the
// controllers stay in the same order. Transfers follow the boundary rule of
// TtyStream.h. Handles on one device share one opened terminal, closed when
// the last handle goes; input left on the line is thrown away before each
// write, so a late answer to an earlier request is never taken for the
// answer to this one.
//
// Thread-safe like UsbBus: listing and opening under a lock, transfers
// without it.
class TtyBus : public Bus {
public:
    static constexpr int kDefaultReadWaitMs = 250;
    static constexpr int kDefaultWriteWaitMs = 1000;

    struct Settings {
        QString pattern;
        int readWaitMs = kDefaultReadWaitMs;
        int writeWaitMs = kDefaultWriteWaitMs;
    };

    explicit TtyBus(Settings settings);
    ~TtyBus() override;
    TtyBus(const TtyBus&) = delete;
    TtyBus& operator=(const TtyBus&) = delete;

    // Counting takes a fresh look; only character devices count, so a state
    // file or a note beside quorvel-sim's links is passed over.
    int deviceCount() override;
    std::int32_t uniqueId(int index) override; // 0 for an index out of range
    std::unique_ptr<BusHandle> open(std::int32_t uniqueId) override;

    // The paths of the last count, in the order of their ids' indices.
    QStringList paths() const;

    struct Core;

private:
    std::shared_ptr<Core> core_;
};

// The id of a terminal at `path` (made absolute, links kept as they are).
std::int32_t ttyDeviceId(const QString& path);

} // namespace qv
