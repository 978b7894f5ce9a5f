#pragma once

#include "Commission.h"

#include <QString>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace qv {

class Bus;
class FrameLink;

// Runs `work(index, id)` once per controller, each on a thread of its own,
// all at once; returns when every one has ended. An exception that escapes
// `work` is handed to `onError` on that thread (the others go on).
void runOnEachController(const std::vector<std::int32_t>& ids,
                         const std::function<void(size_t index, std::int32_t id)>& work,
                         const std::function<void(size_t index, std::exception_ptr)>& onError = {});

// Serial numbers S, S+1, ... in the order of the device list, so that one
// run never gives the same number twice; none without a first number.
// Throws std::range_error when the last would not fit 31 bits.
std::vector<std::optional<std::int32_t>> serialNumbersFor(size_t count,
                                                          std::optional<std::int64_t> first);

// A production run: the commission of several controllers at once, one
// thread, one link and one copy of config.xml each, over the one bus.
// start() returns at once; the listener hears from the controllers' threads
// (not from the caller's), so a window must pass what it hears on through
// queued signals. The object must outlive its threads: the destructor stops
// and joins them.
class ProductionRun {
public:
    struct Listener {
        virtual ~Listener() = default;
        virtual void stepStarted(size_t index, CommissionStep step) = 0;
        virtual void controllerEnded(size_t index, const CommissionOutcome& outcome) = 0;
        // After the last controller has ended.
        virtual void runEnded() = 0;
    };

    ProductionRun(Bus& bus, QString configPath, QString language, CommissionJob job,
                  std::vector<std::int32_t> ids, std::optional<std::int64_t> serialFrom);
    ~ProductionRun();
    ProductionRun(const ProductionRun&) = delete;
    ProductionRun& operator=(const ProductionRun&) = delete;

    // Applied to each controller's link before its first exchange (the
    // tests' shorter pauses).
    void setLinkSetup(std::function<void(FrameLink&)> setup);
    // Each controller's message boxes as they come, with its id.
    void setMessageSink(std::function<void(std::int32_t id, const QString&)> sink);

    const std::vector<std::int32_t>& ids() const { return ids_; }
    const std::vector<std::optional<std::int32_t>>& serials() const { return serials_; }

    void start(Listener& listener);
    // Each line stops before its next step; an exchange under way ends first.
    void stop();
    // Waits for every controller; the outcomes in the order of the ids.
    std::vector<CommissionOutcome> wait();
    bool running() const;

private:
    void runOne(size_t index);

    Bus& bus_;
    QString configPath_;
    QString language_;
    CommissionJob job_;
    std::vector<std::int32_t> ids_;
    std::vector<std::optional<std::int32_t>> serials_;
    std::function<void(FrameLink&)> linkSetup_;
    std::function<void(std::int32_t, const QString&)> messageSink_;
    Listener* listener_ = nullptr;
    std::atomic<bool> stop_{false};
    std::atomic<size_t> remaining_{0};
    std::vector<std::thread> threads_;
    std::vector<CommissionOutcome> outcomes_;
};

} // namespace qv
