// The shared state of a SimulatedBus and its handles; private to the
// simulator's bus sources.
#pragma once

#include "SimState.h"
#include "SimulatedBus.h"

#include <QDateTime>
#include <QFile>
#include <chrono>
#include <mutex>
#include <random>
#include <thread>

namespace qv {

inline void setSimError(QString* error, const QString& text) {
    if (error)
        *error = text;
}

// Writes the state file whole or leaves the old one; false with a reason.
bool writeSimState(const QString& path, const QByteArray& document, QString* error);

struct SimulatedBus::Core {
    // One controller with what the bus adds around it: the faults in force,
    // the reply waiting to be read, and a count of unpluggings that makes old
    // handles stale.
    struct Slot {
        explicit Slot(SimDevice d) : device(std::move(d)) {}
        SimDevice device;
        std::optional<QByteArray> pending;
        int generation = 0;
        int dropNext = 0;
        double dropRate = 0;
        std::mt19937 rng{1};
        int corruptNext = 0;
        int shortNext = 0;
        int shortLength = 3;
        int repliesBeforeLate = 0; // counts down to the late reply
        std::optional<QByteArray> late;
        int lateArrivals = 0;
        // Requests still answered before the device is pulled out; -1 never.
        int unplugAfter = -1;
        QStringList trace;
    };

    mutable std::mutex mutex;
    std::vector<Slot> slots;
    // Handles remember the generation they were opened in; a device that is
    // unplugged, or replaced by a load, gets a new one.
    int generations = 0;
    std::function<qint64()> clock = [] { return QDateTime::currentMSecsSinceEpoch(); };
    std::function<void(int)> sleep = [](int ms) {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    };
    int readWaitMs = 0;
    int lateDelayMs = 400;
    int restartSilenceMs = SimDevice::kDefaultRestartSilenceMs;
    qint64 startMs = 0;
    QStringList trace;
    std::unique_ptr<QFile> traceFile;
    QString autosavePath;
    QString autosaveError;

    // Changes one device's slot under the lock; false when there is none.
    template <typename Change> bool changeSlot(std::int32_t id, Change change) {
        std::lock_guard lock(mutex);
        Slot* slot = find(id);
        if (slot)
            change(*slot);
        return slot != nullptr;
    }

    Slot* find(std::int32_t id) {
        for (Slot& slot : slots)
            if (slot.device.uniqueId() == id)
                return &slot;
        return nullptr;
    }

    void addSlot(SimDevice device) {
        slots.emplace_back(std::move(device));
        slots.back().generation = ++generations;
    }

    std::int32_t nextFreeId() {
        for (std::int32_t id = kFirstId;; ++id)
            if (!find(id))
                return id;
    }

    void record(Slot& slot, char direction, const QByteArray& bytes) {
        const double seconds = static_cast<double>(clock() - startMs) / 1000.0;
        QString line = QString::number(seconds, 'f', 3) + QLatin1Char(' ') + QLatin1Char(direction);
        if (!bytes.isEmpty())
            line += QLatin1Char(' ') + QString::fromLatin1(bytes.toHex(' ').toUpper());
        trace.append(line);
        slot.trace.append(line);
        if (traceFile) {
            traceFile->write((line + QLatin1Char('\n')).toUtf8());
            traceFile->flush();
        }
    }

    QByteArray stateDocument() const {
        std::vector<const SimDevice*> devices;
        for (const Slot& slot : slots)
            devices.push_back(&slot.device);
        return devicesToState(devices);
    }

    void autosave() {
        if (autosavePath.isEmpty())
            return;
        QString error;
        if (!writeSimState(autosavePath, stateDocument(), &error))
            autosaveError = error;
    }

    // The faults stand between the firmware and the wire, in this order: a
    // lost reply is lost whole; a kept one may then be damaged or cut.
    void deliver(Slot& slot, QByteArray reply) {
        if (slot.dropNext > 0) {
            --slot.dropNext;
            return;
        }
        if (slot.dropRate > 0) {
            const double draw = static_cast<double>(slot.rng() >> 8) / 16777216.0;
            if (draw < slot.dropRate)
                return;
        }
        if (slot.corruptNext > 0) {
            --slot.corruptNext;
            const int n = static_cast<int>(reply.size());
            for (int i = std::max(0, n - 2); i < n; ++i)
                reply[i] = static_cast<char>(reply.at(i) ^ 0xFF);
        }
        if (slot.shortNext > 0) {
            --slot.shortNext;
            reply.truncate(slot.shortLength);
        }
        if (reply.isEmpty())
            return;
        if (slot.repliesBeforeLate > 0 && --slot.repliesBeforeLate == 0)
            slot.late = reply;
        else
            slot.pending = reply;
    }
};

} // namespace qv
