#include "UiBridge.h"

#include <QThread>
#include <memory>

namespace qv {

struct UiBridge::Pending {
    bool answered = false;
    int answer = 0;
};

// Lives on the user-interface thread and runs what the bridge has queued.
// It is woken by name, so that the wake-up itself is all Qt's own.
class UiBridge::Receiver : public QObject {
    Q_OBJECT
public:
    explicit Receiver(UiBridge& bridge) : bridge_(bridge) {}
    Q_INVOKABLE void drain() { bridge_.drain(); }

private:
    UiBridge& bridge_;
};

UiBridge::UiBridge(QObject* uiObject)
    : ui_(uiObject), receiver_(std::make_unique<Receiver>(*this)) {
    if (uiObject)
        receiver_->moveToThread(uiObject->thread());
}

UiBridge::~UiBridge() = default;

void UiBridge::enqueue(std::function<void()> work) {
    {
        const std::lock_guard hold(mutex_);
        if (closed_)
            return;
        queued_.push_back(std::move(work));
    }
    QMetaObject::invokeMethod(receiver_.get(), "drain", Qt::QueuedConnection);
}

void UiBridge::drain() {
    for (;;) {
        std::function<void()> work;
        {
            const std::lock_guard hold(mutex_);
            if (queued_.empty() || closed_)
                return;
            work = std::move(queued_.front());
            queued_.pop_front();
        }
        work();
    }
}

bool UiBridge::onUiThread() const {
    return ui_ && QThread::currentThread() == ui_->thread();
}

bool UiBridge::closed() const {
    const std::lock_guard hold(mutex_);
    return closed_;
}

void UiBridge::close() {
    {
        const std::lock_guard hold(mutex_);
        closed_ = true;
        queued_.clear();
    }
    answered_.notify_all();
}

void UiBridge::post(std::function<void()> work) {
    if (!ui_)
        return;
    enqueue(std::move(work));
}

int UiBridge::await(const std::function<void(std::function<void(int)>)>& start, int fallback) {
    auto pending = std::make_shared<Pending>();
    auto answer = [this, pending](int value) {
        {
            const std::lock_guard hold(mutex_);
            if (pending->answered)
                return;
            pending->answered = true;
            pending->answer = value;
        }
        answered_.notify_all();
    };
    if (onUiThread()) {
        // Nothing could answer while this thread waited: what `start` has
        // not answered by its return counts as unanswered.
        if (!closed())
            start(answer);
        const std::lock_guard hold(mutex_);
        return pending->answered ? pending->answer : fallback;
    }
    {
        if (closed() || !ui_)
            return fallback;
        // `start` belongs to the waiting caller. It runs only while the
        // caller still waits: closing happens on the user-interface thread,
        // so it cannot come between the check below and the call.
        enqueue([&start, answer] { start(answer); });
    }
    std::unique_lock hold(mutex_);
    answered_.wait(hold, [&] { return pending->answered || closed_; });
    return pending->answered ? pending->answer : fallback;
}

bool UiBridge::call(const std::function<void()>& work) {
    if (onUiThread()) {
        if (closed())
            return false;
        work();
        return true;
    }
    constexpr int kRan = 1;
    return await(
               [&work](std::function<void(int)> answer) {
                   work();
                   answer(kRan);
               },
               0) == kRan;
}

} // namespace qv

#include "UiBridge.moc"
