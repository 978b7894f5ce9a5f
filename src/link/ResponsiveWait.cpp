#include "ResponsiveWait.h"

#include "FrameLink.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <exception>
#include <mutex>
#include <thread>

namespace qv {

namespace {

// Held while a transfer runs, wherever it runs.
std::mutex& transferLock() {
    static std::mutex lock;
    return lock;
}

// Waits that are under way on this thread.
thread_local int waitDepth = 0;

bool canLoop() {
    // A local loop needs an application, and only makes sense on the thread
    // that runs it: a worker elsewhere has no window to keep alive.
    const QCoreApplication* app = QCoreApplication::instance();
    return app && QThread::currentThread() == app->thread();
}

class ResponsiveHandle : public BusHandle {
public:
    explicit ResponsiveHandle(std::unique_ptr<BusHandle> inner) : inner_(std::move(inner)) {}

    bool write(const QByteArray& transfer) override {
        bool ok = false;
        runResponsively([&] { ok = inner_->write(transfer); });
        return ok;
    }
    QByteArray read(int maxLength) override {
        QByteArray reply;
        runResponsively([&] { reply = inner_->read(maxLength); });
        return reply;
    }
    void cancel() override { inner_->cancel(); }
    int lastError() const override { return inner_->lastError(); }

private:
    std::unique_ptr<BusHandle> inner_;
};

} // namespace

void waitResponsively(int milliseconds) {
    if (!canLoop()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return;
    }
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    ++waitDepth;
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    --waitDepth;
}

void runResponsively(const std::function<void()>& work) {
    if (!canLoop() || waitDepth > 0) {
        const std::lock_guard<std::mutex> hold(transferLock());
        work();
        return;
    }
    std::exception_ptr failure;
    QEventLoop loop;
    QThread* worker = QThread::create([&] {
        const std::lock_guard<std::mutex> hold(transferLock());
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    });
    // finished() comes from the worker; the loop lives here, so the quit is
    // queued and reaches the loop even when the work ends before exec().
    QObject::connect(worker, &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    worker->start();
    ++waitDepth;
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    --waitDepth;
    worker->wait();
    delete worker;
    if (failure)
        std::rethrow_exception(failure);
}

ResponsiveBus::ResponsiveBus(Bus& inner) : inner_(inner) {}

int ResponsiveBus::deviceCount() {
    return inner_.deviceCount();
}

std::int32_t ResponsiveBus::uniqueId(int index) {
    return inner_.uniqueId(index);
}

std::unique_ptr<BusHandle> ResponsiveBus::open(std::int32_t uniqueId) {
    auto handle = inner_.open(uniqueId);
    if (!handle)
        return nullptr;
    return std::make_unique<ResponsiveHandle>(std::move(handle));
}

void makePauseResponsive(FrameLink& link) {
    link.setPause(&waitResponsively);
}

} // namespace qv
