#pragma once

#include "SimDevice.h"
#include "SimOptions.h"
#include "link/Bus.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qv {

// Controllers that live in the process: the bus interface in front of a set
// of SimDevice models, with fault injection, a transfer trace and a state
// file so that separate runs of the command line see the same controllers.
//
// Thread-safe: every call takes one lock, so a worker thread may exchange
// frames while the main thread looks at or changes the devices. The lock is
// held only while a transfer is handed over, never across a read's wait, so
// threads that work with different devices exchange at the same time.
class SimulatedBus : public Bus {
public:
    // The first id given out; further devices count up from it. 254 and 255
    // mean something else to the device list and are never used.
    static constexpr std::int32_t kFirstId = 0x5A000001;
    // The error code of a handle whose device has gone (ENODEV).
    static constexpr int kNoDevice = 19;

    SimulatedBus();
    explicit SimulatedBus(const std::vector<SimDeviceConfig>& devices);
    ~SimulatedBus() override;
    SimulatedBus(const SimulatedBus&) = delete;
    SimulatedBus& operator=(const SimulatedBus&) = delete;

    // The bus that a --link argument describes: the state file loaded when it
    // exists, otherwise created from the options (and saved at once when a
    // path is given); faults, trace and timings applied. nullptr and a
    // message when the state file or the trace file cannot be used.
    static std::unique_ptr<SimulatedBus> fromOptions(const SimOptions& options,
                                                     QString* error = nullptr);

    // Bus: plugged devices only, in the order they were added.
    int deviceCount() override;
    std::int32_t uniqueId(int index) override; // 0 for an index out of range
    std::unique_ptr<BusHandle> open(std::int32_t uniqueId) override;

    // Adds a controller and returns its id; 0 and a message when the id asked
    // for is taken, 0, 254 or 255.
    std::int32_t addDevice(const SimDeviceConfig& config, QString* error = nullptr);
    // Every device, plugged or not.
    std::vector<std::int32_t> deviceIds() const;
    // A copy of a device's state, for looking at.
    std::optional<SimDevice> device(std::int32_t uniqueId) const;
    // Runs `change` on the device under the lock (and autosaves after it);
    // `change` must not call back into the bus. False when there is no such
    // device.
    bool modify(std::int32_t uniqueId, const std::function<void(SimDevice&)>& change);

    // Faults. Each returns false when there is no such device.
    bool dropReplies(std::int32_t uniqueId, int count);
    bool setDropRate(std::int32_t uniqueId, double probability, std::uint32_t seed);
    bool corruptReplies(std::int32_t uniqueId, int count);
    bool shortenReplies(std::int32_t uniqueId, int count, int length);
    // The `nth` reply from now (1 the next; 0 none) comes late: the read
    // that waits for it gets nothing, and it stands ready just after that
    // read has given up, until the next request makes it stale.
    bool delayReply(std::int32_t uniqueId, int nth);
    // True once for each late reply that has come since: a terminal in front
    // of the bus sends it then, lateDelay() after its request.
    bool takeLateArrival(std::int32_t uniqueId);
    void setLateDelay(int milliseconds);
    int lateDelay() const;
    // Unplugging takes the device off the count and kills its open handles
    // for good; a replugged device needs new handles.
    bool unplug(std::int32_t uniqueId);
    // The device answers `requests` more requests, then is unplugged as the
    // next one arrives (that one finds no device); -1 cancels.
    bool unplugAfter(std::int32_t uniqueId, int requests);
    bool replug(std::int32_t uniqueId);
    // Ends the bootloader's silence after a boot request.
    bool restartFromBootloader(std::int32_t uniqueId);

    // Time. The clock gives milliseconds since the epoch; setting it also
    // restarts the trace's time base. The sleep serves the read wait.
    void setClock(std::function<qint64()> msSinceEpoch);
    qint64 now() const;
    void setSleep(std::function<void(int milliseconds)> sleep);
    void setReadWait(int milliseconds);
    // How long a restarted device stays silent, for every device.
    void setRestartSilence(int milliseconds);

    // Trace: one line per transfer, "12.345 > F0 00 ...". Kept in memory and,
    // when a file is set, appended to it line by line.
    bool setTraceFile(const QString& path, QString* error = nullptr);
    QStringList traceLines() const;
    // The lines of one device's transfers only.
    QStringList traceLines(std::int32_t uniqueId) const;
    void clearTrace();

    // State file (JSON). Loading replaces every device and clears faults.
    bool save(const QString& path, QString* error = nullptr) const;
    bool load(const QString& path, QString* error = nullptr);
    // Saves to `path` after every change; an empty path stops it.
    void setAutosave(const QString& path);
    // The message of the last autosave that failed, empty when none did.
    QString lastAutosaveError() const;

    struct Core;

private:
    std::shared_ptr<Core> core_;
};

} // namespace qv
