#pragma once

#include <QObject>
#include <QPointer>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace qv {

// How code on a device thread reaches the windows, which live on the
// user-interface thread: a call is queued to that thread and the caller
// waits for it, so a sequence keeps its legacy order (a view update between
// two exchanges, a box where it stands) while the window never waits for the
// device. On the user-interface thread itself every call runs in place.
//
// The user-interface thread must never wait for a device thread while one
// may be waiting here: before it does (closing the window), it closes the
// bridge, and every call waiting or to come returns at once without running.
class UiBridge {
public:
    // `uiObject` lives on the user-interface thread; calls are queued to it.
    explicit UiBridge(QObject* uiObject);
    ~UiBridge();
    UiBridge(const UiBridge&) = delete;
    UiBridge& operator=(const UiBridge&) = delete;

    bool onUiThread() const;

    // Runs `work` on the user-interface thread and returns once it has run:
    // true, or false when the bridge was closed and `work` did not run.
    bool call(const std::function<void()>& work);

    // For what answers later (a box shown without a local event loop):
    // `start` runs on the user-interface thread with a function to call once
    // with the answer; the caller waits for that answer. `fallback` when the
    // bridge is closed first. Called on the user-interface thread, `start`
    // must answer before it returns.
    int await(const std::function<void(std::function<void(int)> answer)>& start, int fallback);

    // Queues `work` for the user-interface thread and returns at once. It
    // does not run once the bridge is closed.
    void post(std::function<void()> work);

    // From the user-interface thread: nothing waits for it any more.
    void close();
    bool closed() const;

private:
    struct Pending;
    class Receiver;

    // Queues `work` and wakes the user-interface thread. The work itself
    // passes through this bridge's own lock, not through Qt's event queue,
    // so that what one thread hands the other is plainly ordered.
    void enqueue(std::function<void()> work);
    void drain();

    QPointer<QObject> ui_;
    std::unique_ptr<Receiver> receiver_;
    mutable std::mutex mutex_;
    std::condition_variable answered_;
    std::deque<std::function<void()>> queued_;
    bool closed_ = false;
};

} // namespace qv
