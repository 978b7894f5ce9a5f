#include "ProductionRun.h"

#include "ControllerChannel.h"
#include "config/ConfigDocument.h"

#include <limits>
#include <stdexcept>

namespace qv {

void runOnEachController(const std::vector<std::int32_t>& ids,
                         const std::function<void(size_t, std::int32_t)>& work,
                         const std::function<void(size_t, std::exception_ptr)>& onError) {
    std::vector<std::thread> threads;
    threads.reserve(ids.size());
    for (size_t i = 0; i < ids.size(); ++i) {
        threads.emplace_back([&, i] {
            try {
                work(i, ids[i]);
            } catch (...) {
                if (onError)
                    onError(i, std::current_exception());
            }
        });
    }
    for (std::thread& t : threads)
        t.join();
}

std::vector<std::optional<std::int32_t>> serialNumbersFor(size_t count,
                                                          std::optional<std::int64_t> first) {
    std::vector<std::optional<std::int32_t>> serials(count);
    if (!first || count == 0)
        return serials;
    const std::int64_t last = *first + static_cast<std::int64_t>(count) - 1;
    if (*first < 0 || last > std::numeric_limits<std::int32_t>::max())
        throw std::range_error("serial numbers out of range");
    for (size_t i = 0; i < count; ++i)
        serials[i] = static_cast<std::int32_t>(*first + static_cast<std::int64_t>(i));
    return serials;
}

ProductionRun::ProductionRun(Bus& bus, QString configPath, QString language, CommissionJob job,
                             std::vector<std::int32_t> ids, std::optional<std::int64_t> serialFrom)
    : bus_(bus), configPath_(std::move(configPath)), language_(std::move(language)),
      job_(std::move(job)), ids_(std::move(ids)),
      serials_(serialNumbersFor(ids_.size(), serialFrom)) {}

ProductionRun::~ProductionRun() {
    stop();
    for (std::thread& t : threads_)
        if (t.joinable())
            t.join();
}

void ProductionRun::setLinkSetup(std::function<void(FrameLink&)> setup) {
    linkSetup_ = std::move(setup);
}

void ProductionRun::setMessageSink(std::function<void(std::int32_t, const QString&)> sink) {
    messageSink_ = std::move(sink);
}

void ProductionRun::start(Listener& listener) {
    listener_ = &listener;
    outcomes_.assign(ids_.size(), CommissionOutcome{});
    remaining_ = ids_.size();
    if (ids_.empty()) {
        listener.runEnded();
        return;
    }
    for (size_t i = 0; i < ids_.size(); ++i)
        threads_.emplace_back([this, i] { runOne(i); });
}

void ProductionRun::runOne(size_t index) {
    const std::int32_t id = ids_[index];
    CommissionOutcome outcome;
    try {
        auto forward = messageSink_ ? std::function<void(const QString&)>(
                                          [this, id](const QString& t) { messageSink_(id, t); })
                                    : std::function<void(const QString&)>();
        ControllerChannel channel(bus_, id, configPath_, language_, forward);
        if (linkSetup_)
            linkSetup_(channel.link());
        outcome = commissionController(
            channel, job_, serials_[index],
            [this, index](CommissionStep step) { listener_->stepStarted(index, step); }, stop_);
    } catch (const ConfigError& e) {
        outcome.id = id;
        outcome.failure = e.text();
    }
    outcomes_[index] = outcome;
    listener_->controllerEnded(index, outcome);
    if (--remaining_ == 0)
        listener_->runEnded();
}

void ProductionRun::stop() {
    stop_ = true;
}

std::vector<CommissionOutcome> ProductionRun::wait() {
    for (std::thread& t : threads_)
        if (t.joinable())
            t.join();
    threads_.clear();
    return outcomes_;
}

bool ProductionRun::running() const {
    return remaining_.load() > 0;
}

} // namespace qv
