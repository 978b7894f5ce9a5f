#include "DeviceWorker.h"

#include <chrono>
#include <cstdio>
#include <exception>

namespace qv {

DeviceWorker::DeviceWorker() : thread_([this] { loop(); }) {}

DeviceWorker::~DeviceWorker() {
    stop();
}

void DeviceWorker::post(Job job) {
    {
        const std::lock_guard hold(mutex_);
        if (stopping_)
            return;
        queue_.push_back({std::move(job), QString()});
    }
    changed_.notify_all();
}

void DeviceWorker::postTick(const QString& timer, Job job) {
    {
        const std::lock_guard hold(mutex_);
        if (stopping_)
            return;
        for (const Entry& entry : queue_)
            if (entry.tick == timer)
                return;
        queue_.push_back({std::move(job), timer});
    }
    changed_.notify_all();
}

void DeviceWorker::dropTick(const QString& timer) {
    const std::lock_guard hold(mutex_);
    std::erase_if(queue_, [&](const Entry& entry) { return entry.tick == timer; });
}

bool DeviceWorker::onWorkerThread() const {
    return std::this_thread::get_id() == thread_.get_id();
}

bool DeviceWorker::idle() const {
    const std::lock_guard hold(mutex_);
    return running_ == 0 && queue_.empty();
}

bool DeviceWorker::stopping() const {
    const std::lock_guard hold(mutex_);
    return stopping_;
}

void DeviceWorker::setActivityObserver(std::function<void(bool)> observer) {
    const std::lock_guard hold(mutex_);
    observer_ = std::move(observer);
}

bool DeviceWorker::take(Entry& entry, std::unique_lock<std::mutex>& hold, int waitMs) {
    const auto ready = [this] { return stopping_ || !queue_.empty(); };
    if (waitMs < 0)
        changed_.wait(hold, ready);
    else
        changed_.wait_for(hold, std::chrono::milliseconds(waitMs), ready);
    if (stopping_ || queue_.empty())
        return false;
    entry = std::move(queue_.front());
    queue_.pop_front();
    ++running_;
    return true;
}

void DeviceWorker::run(Entry& entry) {
    try {
        entry.job();
    } catch (const std::exception& e) {
        // A job must not take the thread down with it; the sequences report
        // their own failures, this is the last resort.
        std::fprintf(stderr, "quorvel: a device job failed: %s\n", e.what());
    } catch (...) {
        std::fprintf(stderr, "quorvel: a device job failed\n");
    }
    entry.job = nullptr; // what it holds goes now, on this thread
}

bool DeviceWorker::runQueued(int waitMs) {
    std::unique_lock hold(mutex_);
    Entry entry;
    if (!take(entry, hold, waitMs))
        return !stopping_;
    do {
        hold.unlock();
        run(entry);
        hold.lock();
        --running_;
    } while (take(entry, hold, 0));
    return !stopping_;
}

void DeviceWorker::loop() {
    std::unique_lock hold(mutex_);
    bool busy = false;
    // The observer is told outside the lock: it may well post jobs.
    const auto tell = [&](bool value) {
        busy = value;
        if (auto observer = observer_) {
            hold.unlock();
            observer(value);
            hold.lock();
        }
    };
    for (;;) {
        Entry entry;
        if (!take(entry, hold, -1))
            break;
        if (!busy)
            tell(true);
        hold.unlock();
        run(entry);
        hold.lock();
        --running_;
        if (queue_.empty() && !stopping_)
            tell(false);
    }
    if (busy)
        tell(false);
    Entry last{std::move(last_), QString()};
    hold.unlock();
    if (last.job)
        run(last);
}

void DeviceWorker::stop(Job last) {
    {
        const std::lock_guard hold(mutex_);
        if (!stopping_) {
            stopping_ = true;
            queue_.clear();
            last_ = std::move(last);
        }
    }
    changed_.notify_all();
    if (thread_.joinable() && !onWorkerThread())
        thread_.join();
}

} // namespace qv
