#pragma once

#include <QString>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace qv {

// The one thread that talks to the devices of a link. Every device sequence
// runs here as a job, one job at a time, in the order asked for: exchanges
// are serial by construction, whatever the window does meanwhile.
//
// What the legacy message queue did, the job queue does on purpose:
// - a timer's tick is a job of its own kind: at most one waits per timer,
//   and a timer started anew or stopped drops the tick it has waiting;
// - a job may let the jobs waiting behind it run (runQueued), which the
//   write cycle does while the device restarts, and nothing else does.
class DeviceWorker {
public:
    using Job = std::function<void()>;

    DeviceWorker();
    // Stops the thread as stop() does.
    ~DeviceWorker();
    DeviceWorker(const DeviceWorker&) = delete;
    DeviceWorker& operator=(const DeviceWorker&) = delete;

    // Queues a job. Ignored once stopping.
    void post(Job job);
    // Queues the tick of `timer`, unless one is already waiting.
    void postTick(const QString& timer, Job job);
    // Drops the tick of `timer` that waits, if any.
    void dropTick(const QString& timer);

    // From inside a job: runs the jobs that wait, or waits up to `waitMs`
    // for one and runs it. false once the worker is stopping: the caller
    // then ends what it waits for.
    bool runQueued(int waitMs);

    bool onWorkerThread() const;
    // No job running and none waiting.
    bool idle() const;
    bool stopping() const;

    // Called on the worker thread when it starts on a job after being idle
    // (true) and when the queue runs dry (false).
    void setActivityObserver(std::function<void(bool busy)> observer);

    // Takes no more jobs and drops those that wait; lets the running job end
    // (the owner makes sure it can: a closed bridge, a released bus); runs
    // `last` on the worker thread; ends the thread and returns once it has.
    void stop(Job last = {});

private:
    struct Entry {
        Job job;
        QString tick; // empty for plain jobs
    };

    void loop();
    // Takes the next job, waiting up to `waitMs` (forever when negative);
    // false when there is none or the worker is stopping.
    bool take(Entry& entry, std::unique_lock<std::mutex>& hold, int waitMs);
    void run(Entry& entry);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Entry> queue_;
    bool stopping_ = false;
    int running_ = 0; // nesting depth of jobs under way
    Job last_;
    std::function<void(bool)> observer_;
    std::thread thread_;
};

} // namespace qv
