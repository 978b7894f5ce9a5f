#pragma once

#include "device/ExchangeLog.h"
#include "link/TraceHub.h"

#include <QObject>
#include <QTimer>
#include <mutex>
#include <vector>

namespace qv {

class ExchangeTableModel;

// Carries the transfers of the trace hub, recorded on device threads, to
// the inspector's model on the user-interface thread: the hub's listener
// only queues them under a lock; a timer drains the queue, pairs requests
// and replies, and appends the rows in one step. However fast transfers
// come, the window does a bounded amount of work per tick.
class ExchangeFeed : public QObject {
    Q_OBJECT
public:
    static constexpr int kDrainIntervalMs = 100;

    ExchangeFeed(TraceHub& hub, ExchangeTableModel& model, QObject* parent = nullptr);
    ~ExchangeFeed() override;

    // Paused, the rows stop moving; what arrives meanwhile is kept (up to
    // the model's capacity) and shown on resuming.
    void setPaused(bool paused);
    bool paused() const { return paused_; }

    // Empties the model and whatever waits to be shown.
    void clear();

    // Takes what has been queued now, without waiting for the timer.
    void drain();

    // Exchanges received since the start, shown or not.
    long long received() const { return received_; }

Q_SIGNALS:
    void rowsAppended(int count);

private:
    TraceHub& hub_;
    ExchangeTableModel& model_;
    int subscription_ = 0;
    std::mutex mutex_;
    std::vector<TransferRecord> queue_; // guarded by mutex_
    ExchangeAssembler assembler_;
    std::vector<Exchange> held_; // while paused
    bool paused_ = false;
    long long received_ = 0;
    QTimer timer_;
};

} // namespace qv
