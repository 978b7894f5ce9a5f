#include "SimulatedBus.h"

#include "SimState.h"
#include "SimulatedBusCore.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <mutex>

namespace qv {

bool writeSimState(const QString& path, const QByteArray& document, QString* error) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        setSimError(error, QStringLiteral("cannot write the simulator state %1: %2")
                               .arg(path, file.errorString()));
        return false;
    }
    file.write(document);
    if (!file.commit()) {
        setSimError(error, QStringLiteral("cannot write the simulator state %1: %2")
                               .arg(path, file.errorString()));
        return false;
    }
    return true;
}

namespace {

class SimHandle : public BusHandle {
public:
    SimHandle(std::shared_ptr<SimulatedBus::Core> core, std::int32_t id, int generation)
        : core_(std::move(core)), id_(id), generation_(generation) {}

    bool write(const QByteArray& transfer) override {
        std::lock_guard lock(core_->mutex);
        auto* slot = live();
        if (!slot)
            return false;
        if (slot->unplugAfter == 0) {
            // Pulled out in the middle of a run: the request finds no device.
            slot->unplugAfter = -1;
            slot->device.setPlugged(false);
            slot->generation = ++core_->generations;
            slot->pending.reset();
            core_->autosave();
            lastError_ = SimulatedBus::kNoDevice;
            return false;
        }
        if (slot->unplugAfter > 0)
            --slot->unplugAfter;
        lastError_ = 0;
        core_->record(*slot, '>', transfer);
        // A new request makes any unread answer stale.
        slot->pending.reset();
        const SimDevice::Outcome outcome = slot->device.receive(transfer, core_->clock());
        if (outcome.reply)
            core_->deliver(*slot, *outcome.reply);
        if (outcome.changed)
            core_->autosave();
        return true;
    }

    QByteArray read(int maxLength) override {
        std::function<void(int)> sleep;
        int wait = 0;
        {
            std::lock_guard lock(core_->mutex);
            if (auto reply = take(maxLength))
                return *reply;
            if (lastError_ != 0)
                return {};
            sleep = core_->sleep;
            wait = core_->readWaitMs;
        }
        if (wait > 0)
            sleep(wait);
        std::lock_guard lock(core_->mutex);
        if (auto* slot = live(); slot && slot->late) {
            // Too late for this read: it comes just after.
            slot->pending = *slot->late;
            slot->late.reset();
            ++slot->lateArrivals;
            return {};
        }
        if (wait <= 0)
            return {};
        return take(maxLength).value_or(QByteArray());
    }

    int lastError() const override { return lastError_; }

private:
    // The device behind this handle, or nullptr (and the error set) when it
    // has gone since the handle was opened.
    SimulatedBus::Core::Slot* live() {
        auto* slot = core_->find(id_);
        if (!slot || !slot->device.plugged() || slot->generation != generation_) {
            lastError_ = SimulatedBus::kNoDevice;
            return nullptr;
        }
        return slot;
    }

    std::optional<QByteArray> take(int maxLength) {
        auto* slot = live();
        if (!slot || !slot->pending)
            return std::nullopt;
        lastError_ = 0;
        QByteArray reply = *slot->pending;
        slot->pending.reset();
        // Like a USB transfer: what does not fit the buffer is lost.
        reply.truncate(std::max(0, maxLength));
        if (reply.isEmpty())
            return std::nullopt;
        core_->record(*slot, '<', reply);
        return reply;
    }

    std::shared_ptr<SimulatedBus::Core> core_;
    std::int32_t id_;
    int generation_;
    int lastError_ = 0;
};

} // namespace

SimulatedBus::SimulatedBus() : core_(std::make_shared<Core>()) {
    core_->startMs = core_->clock();
}

SimulatedBus::SimulatedBus(const std::vector<SimDeviceConfig>& devices) : SimulatedBus() {
    for (const SimDeviceConfig& config : devices)
        addDevice(config);
}

SimulatedBus::~SimulatedBus() = default;

std::unique_ptr<SimulatedBus> SimulatedBus::fromOptions(const SimOptions& options, QString* error) {
    auto bus = std::make_unique<SimulatedBus>();
    bus->setRestartSilence(options.restartMs);
    bus->setReadWait(options.readWaitMs);
    bus->setLateDelay(options.lateMs);
    if (!options.tracePath.isEmpty() && !bus->setTraceFile(options.tracePath, error))
        return nullptr;
    if (!options.statePath.isEmpty() && QFileInfo::exists(options.statePath)) {
        if (!bus->load(options.statePath, error))
            return nullptr;
        // The silence after a restart is the one of this run's options.
        bus->setRestartSilence(options.restartMs);
    } else {
        for (const SimDeviceConfig& config : deviceConfigs(options))
            bus->addDevice(config);
    }
    const std::vector<std::int32_t> ids = bus->deviceIds();
    for (size_t i = 0; i < ids.size(); ++i) {
        bus->dropReplies(ids[i], options.drop);
        bus->setDropRate(ids[i], options.dropRate, options.seed + static_cast<std::uint32_t>(i));
        bus->corruptReplies(ids[i], options.corrupt);
        bus->shortenReplies(ids[i], options.shortCount, options.shortLength);
        bus->delayReply(ids[i], options.late);
        if (options.unplugAfter && i + 1 == ids.size())
            bus->unplugAfter(ids[i], *options.unplugAfter);
        if (options.unplugged) {
            if (static_cast<int>(i) < *options.unplugged)
                bus->unplug(ids[i]);
            else
                bus->replug(ids[i]);
        }
    }
    if (!options.statePath.isEmpty()) {
        if (!bus->save(options.statePath, error))
            return nullptr;
        if (options.autosave)
            bus->setAutosave(options.statePath);
    }
    return bus;
}

int SimulatedBus::deviceCount() {
    std::lock_guard lock(core_->mutex);
    int count = 0;
    for (const auto& slot : core_->slots)
        count += slot.device.plugged() ? 1 : 0;
    return count;
}

std::int32_t SimulatedBus::uniqueId(int index) {
    std::lock_guard lock(core_->mutex);
    int position = 0;
    for (const auto& slot : core_->slots) {
        if (!slot.device.plugged())
            continue;
        if (position++ == index)
            return slot.device.uniqueId();
    }
    return 0;
}

std::unique_ptr<BusHandle> SimulatedBus::open(std::int32_t uniqueId) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (!slot || !slot->device.plugged())
        return nullptr;
    return std::make_unique<SimHandle>(core_, uniqueId, slot->generation);
}

std::int32_t SimulatedBus::addDevice(const SimDeviceConfig& config, QString* error) {
    std::lock_guard lock(core_->mutex);
    SimDeviceConfig actual = config;
    if (actual.uniqueId == 0) {
        actual.uniqueId = core_->nextFreeId();
    } else if (actual.uniqueId == 254 || actual.uniqueId == 255) {
        setSimError(error, QStringLiteral("device id %1 is reserved").arg(actual.uniqueId));
        return 0;
    } else if (core_->find(actual.uniqueId)) {
        setSimError(error, QStringLiteral("device id %1 is taken").arg(actual.uniqueId));
        return 0;
    }
    SimDevice device(actual);
    device.setRestartSilenceMs(core_->restartSilenceMs);
    core_->addSlot(std::move(device));
    core_->autosave();
    return actual.uniqueId;
}

std::vector<std::int32_t> SimulatedBus::deviceIds() const {
    std::lock_guard lock(core_->mutex);
    std::vector<std::int32_t> ids;
    for (const auto& slot : core_->slots)
        ids.push_back(slot.device.uniqueId());
    return ids;
}

std::optional<SimDevice> SimulatedBus::device(std::int32_t uniqueId) const {
    std::lock_guard lock(core_->mutex);
    if (auto* slot = core_->find(uniqueId))
        return slot->device;
    return std::nullopt;
}

bool SimulatedBus::modify(std::int32_t uniqueId, const std::function<void(SimDevice&)>& change) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (!slot)
        return false;
    const bool wasPlugged = slot->device.plugged();
    change(slot->device);
    if (wasPlugged && !slot->device.plugged()) {
        slot->generation = ++core_->generations;
        slot->pending.reset();
    }
    core_->autosave();
    return true;
}

void SimulatedBus::setClock(std::function<qint64()> msSinceEpoch) {
    std::lock_guard lock(core_->mutex);
    core_->clock = std::move(msSinceEpoch);
    core_->startMs = core_->clock();
}

qint64 SimulatedBus::now() const {
    std::lock_guard lock(core_->mutex);
    return core_->clock();
}

void SimulatedBus::setSleep(std::function<void(int)> sleep) {
    std::lock_guard lock(core_->mutex);
    core_->sleep = std::move(sleep);
}

void SimulatedBus::setReadWait(int milliseconds) {
    std::lock_guard lock(core_->mutex);
    core_->readWaitMs = std::max(0, milliseconds);
}

void SimulatedBus::setRestartSilence(int milliseconds) {
    std::lock_guard lock(core_->mutex);
    core_->restartSilenceMs = std::max(0, milliseconds);
    for (auto& slot : core_->slots)
        slot.device.setRestartSilenceMs(core_->restartSilenceMs);
}

bool SimulatedBus::setTraceFile(const QString& path, QString* error) {
    std::lock_guard lock(core_->mutex);
    if (path.isEmpty()) {
        core_->traceFile.reset();
        return true;
    }
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Append)) {
        setSimError(
            error,
            QStringLiteral("cannot open the trace file %1: %2").arg(path, file->errorString()));
        return false;
    }
    core_->traceFile = std::move(file);
    return true;
}

QStringList SimulatedBus::traceLines() const {
    std::lock_guard lock(core_->mutex);
    return core_->trace;
}

QStringList SimulatedBus::traceLines(std::int32_t uniqueId) const {
    std::lock_guard lock(core_->mutex);
    if (auto* slot = core_->find(uniqueId))
        return slot->trace;
    return {};
}

void SimulatedBus::clearTrace() {
    std::lock_guard lock(core_->mutex);
    core_->trace.clear();
    for (auto& slot : core_->slots)
        slot.trace.clear();
}

bool SimulatedBus::save(const QString& path, QString* error) const {
    std::lock_guard lock(core_->mutex);
    return writeSimState(path, core_->stateDocument(), error);
}

bool SimulatedBus::load(const QString& path, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        setSimError(
            error,
            QStringLiteral("cannot read the simulator state %1: %2").arg(path, file.errorString()));
        return false;
    }
    // A state file is a few kilobytes; anything far larger is not one.
    const QByteArray document = file.read(16 * 1024 * 1024);
    QString problem;
    auto devices = devicesFromState(document, &problem);
    if (!devices) {
        setSimError(error, QStringLiteral("simulator state %1: %2").arg(path, problem));
        return false;
    }
    std::lock_guard lock(core_->mutex);
    core_->slots.clear();
    for (SimDevice& device : *devices)
        core_->addSlot(std::move(device));
    return true;
}

void SimulatedBus::setAutosave(const QString& path) {
    std::lock_guard lock(core_->mutex);
    core_->autosavePath = path;
    core_->autosaveError.clear();
}

QString SimulatedBus::lastAutosaveError() const {
    std::lock_guard lock(core_->mutex);
    return core_->autosaveError;
}

} // namespace qv
