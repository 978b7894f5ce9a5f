#pragma once

#include "console/ConsoleHost.h"
#include "console/MainScreenLogic.h"
#include "view/MarshalledView.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <memory>

namespace Ui {
class MainScreen;
}

class QProgressBar;

namespace qv {

class ConfigDocument;
class Conditions;
class ConnectWindow;
class Device;
class DeviceWorker;
class Dialogs;
class UiBridge;

// What the programme editor takes from the device when it opens, read by
// the job that opens it: TimeOut as it stood, and the default state byte
// when the device was there to ask.
struct EditorDeviceState {
    bool timeOut = true;
    int defaultStateByte = 0;
};

// MainScreen, the main window: owns the controls and the two timers, and
// turns every event into a job of the device thread that runs the handler
// of the same name in MainScreenLogic. The logic reaches the controls, the
// timers and the other windows from there through the bridge; this thread
// never waits for the device. Nothing of the behaviour lives here.
//
// `dialogs` are the boxes as the device thread shows them (marshalled).
class MainScreenWindow : public QMainWindow, public ConsoleHost {
    Q_OBJECT
public:
    MainScreenWindow(Device& device, ConfigDocument& config, Conditions& conditions,
                     Dialogs& dialogs, DeviceWorker& worker, UiBridge& bridge,
                     QWidget* parent = nullptr);
    ~MainScreenWindow() override;

    // The start: the logic's load, the connection list, the first read,
    // then the window and its first activation; `started` runs on this
    // thread once all of it is over.
    void start(std::function<void()> started = {});

    MainScreenLogic& logic() { return *logic_; }
    // The controls, for this thread.
    WidgetConsoleView& view() { return widgets_; }
    // The controls as the device thread reaches them.
    ConsoleView& deviceThreadView() { return marshalled_; }
    Device& device() { return device_; }
    Dialogs& dialogs() { return dialogs_; }
    DeviceWorker& worker() { return worker_; }
    UiBridge& bridge() { return bridge_; }
    // The timers, for tests.
    QTimer& timerEntree() { return TimerEntree; }
    QTimer& testTimer() { return test; }

    // Runs a handler of the logic as a job, as the window's events do.
    void post(void (MainScreenLogic::*handler)());
    // Runs `work` on this thread once the jobs asked for so far are over.
    void afterJobs(std::function<void()> work);

    // The windows that live in other parts of the tool, handed in by whoever
    // builds them; they run on this thread. Without one, the operator is
    // told that the function is not part of this build.
    void setProgrammationOpener(std::function<void(const EditorDeviceState&)> open) {
        openProgrammation_ = std::move(open);
    }
    void setProductionOpener(std::function<void()> open) { openProduction_ = std::move(open); }
    // The production bench, opened on this thread once the controller in use
    // is let go; `onClosed` is for when it has closed.
    void setProductionBenchOpener(std::function<void(std::function<void()> onClosed)> open) {
        openProductionBench_ = std::move(open);
    }
    // Runs on the device thread.
    void setFirmwareUpdater(std::function<void(bool)> update) {
        updateFirmware_ = std::move(update);
    }
    // Lets go of the bus when the window closes, so that a sequence under
    // way ends at its next exchange.
    void setDeviceRelease(std::function<void()> release) { releaseDevice_ = std::move(release); }
    // Tests: acts on each connection window as it opens.
    void setConnectionScript(std::function<void(ConnectWindow&)> script) {
        connectionScript_ = std::move(script);
    }

    // Reads the log area into the hex view, as a job; nothing without a
    // controller.
    void showDumpEEPROM();

    // ConsoleHost, called by the logic on the device thread.
    void startTimerEntree() override;
    void stopTimerEntree() override;
    bool timerEntreeRunning() const override;
    void startTest(int intervalMs) override;
    void stopTest() override;
    bool runQueuedEvents() override;
    void showConnection() override;
    void showProgrammation() override;
    void showProduction() override;
    void showAbout() override;
    void showSplash() override;
    void UpdateFirmware(bool demande) override;
    void closeApplication() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void wire();
    // Lets go of the controller, opens the bench, and comes back through the
    // connection list once the bench has closed.
    void openProductionBench();
    void notInThisBuild(const QString& what);
    // Opens the connection list without waiting; `afterClose` runs on the
    // device thread once it has closed, whichever way, right after the
    // choice that closed it.
    void openConnection(std::function<void()> afterClose);
    // On this thread, while the device thread works or rests.
    void showActivity(bool busy);
    // The job that runs a timer's tick, at most one waiting per timer.
    void postTick(const QString& timer, void (MainScreenLogic::*handler)());
    void restartTimer(QTimer& timer, int intervalMs);

    std::unique_ptr<Ui::MainScreen> ui_;
    WidgetConsoleView widgets_;
    MarshalledView marshalled_;
    Device& device_;
    ConfigDocument& config_;
    Dialogs& dialogs_;
    DeviceWorker& worker_;
    UiBridge& bridge_;
    std::unique_ptr<MainScreenLogic> logic_;
    QTimer TimerEntree;
    QTimer test;
    QTimer Timeur;
    QProgressBar* activity_ = nullptr;
    bool loaded_ = false;
    bool closing_ = false;
    std::function<void(const EditorDeviceState&)> openProgrammation_;
    std::function<void()> openProduction_;
    std::function<void(std::function<void()>)> openProductionBench_;
    std::function<void(bool)> updateFirmware_;
    std::function<void()> releaseDevice_;
    std::function<void(ConnectWindow&)> connectionScript_;
};

} // namespace qv
