#pragma once

#include "Launcher.h"
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "console/widgets/ConnectWindow.h"
#include "console/widgets/MainScreenWindow.h"
#include "device/Device.h"
#include "link/DeviceWorker.h"
#include "link/FrameLink.h"
#include "link/ReleasableBus.h"
#include "programme/Conditions.h"
#include "view/MarshalledDialogs.h"
#include "view/UiBridge.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <thread>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace qv::test {

// A scratch copy of the shipped config.xml, with the switches a test asks for.
inline QString scratchConfig(const QTemporaryDir& dir, bool maintenance = false) {
    const QString path = dir.filePath(QStringLiteral("config.xml"));
    writeFile(path, readFile(QStringLiteral(QUORVEL_SHIPPED_CONFIG)));
    ConfigDocument config(path);
    config.EcritValeurXML(QStringLiteral("Splash"), QStringLiteral("False"));
    config.EcritValeurXML(QStringLiteral("Maintenance"),
                          maintenance ? QStringLiteral("True") : QStringLiteral("False"));
    return path;
}

// The device side of the window as the program builds it: the device
// thread, the bridge to this thread, the boxes marshalled to it (the
// recorder answers them at once), the link over a bus that the window lets
// go of when it closes. The pause is 1 ms instead of 10 to keep the tests
// short.
class DeviceRig {
public:
    explicit DeviceRig(Bus& bus) : releasable(bus), link(releasable, deviceDialogs, state) {
        link.setPause([](int) { std::this_thread::sleep_for(std::chrono::milliseconds(1)); });
    }

    RecordingDialogs dialogs;
    UiBridge bridge{QCoreApplication::instance()};
    MarshalledDialogs deviceDialogs{bridge, dialogs};
    PublicState state;
    ReleasableBus releasable;
    FrameLink link;
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};
    DeviceWorker worker;
};

// Stands between the window's link and the simulator. It counts the handles
// open at once: an exchange opens two and closes both, so more than two at
// once means an exchange inside another.
class WatchedBus : public Bus {
public:
    explicit WatchedBus(SimulatedBus& sim) : sim_(sim) {}

    std::atomic<int> live{0};
    std::atomic<int> mostLive{0};

    int deviceCount() override { return sim_.deviceCount(); }
    std::int32_t uniqueId(int index) override { return sim_.uniqueId(index); }
    std::unique_ptr<BusHandle> open(std::int32_t id) override {
        auto inner = sim_.open(id);
        if (!inner)
            return nullptr;
        const int now = ++live;
        int seen = mostLive;
        while (now > seen && !mostLive.compare_exchange_weak(seen, now)) {
        }
        return std::make_unique<Handle>(*this, std::move(inner));
    }

private:
    struct Handle : BusHandle {
        Handle(WatchedBus& b, std::unique_ptr<BusHandle> h) : bus(b), inner(std::move(h)) {}
        ~Handle() override { --bus.live; }
        bool write(const QByteArray& transfer) override { return inner->write(transfer); }
        QByteArray read(int maxLength) override { return inner->read(maxLength); }
        void cancel() override { inner->cancel(); }
        int lastError() const override { return inner->lastError(); }
        WatchedBus& bus;
        std::unique_ptr<BusHandle> inner;
    };
    SimulatedBus& sim_;
};

// Lets the window's jobs run until none is left, with the boxes and the view
// calls they make answered on this thread. false after `timeoutMs`.
inline bool settle(MainScreenWindow& window, int timeoutMs = 30000) {
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        bool done = false;
        window.afterJobs([&done] { done = true; });
        while (!done) {
            if (clock.elapsed() > timeoutMs)
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        // What those last events asked for in turn.
        QCoreApplication::processEvents();
        if (window.worker().idle())
            return true;
    }
}

// The main window over the demonstration controllers and a scratch
// config.xml; the connection list takes the line `connectRow` (-1: Cancel).
class WindowFixture : public ::testing::Test {
protected:
    QTemporaryDir dir;
    std::unique_ptr<SimulatedBus> bus = makeDemoBus(false);
    std::unique_ptr<DeviceRig> rig;
    std::unique_ptr<Device> ownDevice;
    std::unique_ptr<ConfigDocument> config;
    Conditions conditions;
    std::unique_ptr<MainScreenWindow> window;
    int connectRow = 0;
    int connections = 0;

    void SetUp() override { make(true); }
    // The window and its device thread go before the link and the bus.
    void TearDown() override {
        window.reset();
        ownDevice.reset();
        rig.reset();
    }

    // A new window, device thread and link, over `over` instead of the bus
    // when given; with `windowLanguage` the link's box speaks the window's
    // language.
    void make(bool maintenance, Bus* over = nullptr, bool windowLanguage = false) {
        window.reset();
        ownDevice.reset();
        rig = std::make_unique<DeviceRig>(over ? *over : *bus);
        config = std::make_unique<ConfigDocument>(scratchConfig(dir, maintenance));
        if (windowLanguage)
            ownDevice = std::make_unique<Device>(rig->link, [this] {
                return window->logic().message(QStringLiteral("Quorvel Absent"));
            });
        window = std::make_unique<MainScreenWindow>(ownDevice ? *ownDevice : rig->device, *config,
                                                    conditions, rig->deviceDialogs, rig->worker,
                                                    rig->bridge);
        window->setDeviceRelease([this] { rig->releasable.release(); });
        window->setConnectionScript([this](ConnectWindow& list) { connect(list); });
    }

    // The operator's choice in the connection list, once it is filled.
    void connect(ConnectWindow& list) {
        ++connections;
        list.setProbeWait([](int) {});
        list.Form_Load();
        window->afterJobs([this, list = QPointer<ConnectWindow>(&list)] {
            if (!list)
                return;
            if (connectRow < 0) {
                list->ExitEtalonnage_Click();
                return;
            }
            list->view().setCurrentRow(QStringLiteral("ListeSorvane"), connectRow);
            list->ListeSorvane_Click();
        });
    }

    // The start as the program makes it, waited for.
    void startWindow() {
        window->start();
        ASSERT_TRUE(settle(*window));
    }
    QString text(const char* control) { return window->view().text(QString::fromLatin1(control)); }
    std::int32_t quorvelId() const { return bus->deviceIds().front(); }
};

} // namespace qv::test
