#include "ExchangeFeed.h"

#include "ExchangeTableModel.h"

namespace qv {

ExchangeFeed::ExchangeFeed(TraceHub& hub, ExchangeTableModel& model, QObject* parent)
    : QObject(parent), hub_(hub), model_(model) {
    subscription_ = hub_.subscribe([this](const TransferRecord& record) {
        std::lock_guard lock(mutex_);
        queue_.push_back(record);
    });
    timer_.setInterval(kDrainIntervalMs);
    connect(&timer_, &QTimer::timeout, this, &ExchangeFeed::drain);
    timer_.start();
}

ExchangeFeed::~ExchangeFeed() {
    // After this no device thread can reach the queue.
    hub_.unsubscribe(subscription_);
}

void ExchangeFeed::setPaused(bool paused) {
    paused_ = paused;
    if (!paused_ && !held_.empty()) {
        std::vector<Exchange> rows;
        rows.swap(held_);
        const int count = static_cast<int>(rows.size());
        model_.append(std::move(rows));
        Q_EMIT rowsAppended(count);
    }
}

void ExchangeFeed::clear() {
    {
        std::lock_guard lock(mutex_);
        queue_.clear();
    }
    held_.clear();
    assembler_.clear();
    model_.clear();
}

void ExchangeFeed::drain() {
    std::vector<TransferRecord> taken;
    {
        std::lock_guard lock(mutex_);
        taken.swap(queue_);
    }
    if (taken.empty())
        return;
    std::vector<Exchange> rows;
    for (const TransferRecord& r : taken)
        for (Exchange& e : assembler_.add(r))
            rows.push_back(std::move(e));
    received_ += static_cast<long long>(rows.size());
    if (rows.empty())
        return;
    if (paused_) {
        for (Exchange& e : rows)
            held_.push_back(std::move(e));
        const size_t capacity = static_cast<size_t>(model_.capacity());
        if (held_.size() > capacity)
            held_.erase(held_.begin(),
                        held_.begin() + static_cast<std::ptrdiff_t>(held_.size() - capacity));
        return;
    }
    const int count = static_cast<int>(rows.size());
    model_.append(std::move(rows));
    Q_EMIT rowsAppended(count);
}

} // namespace qv
