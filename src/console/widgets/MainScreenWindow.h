#pragma once

#include "WidgetConsoleView.h"
#include "console/ConsoleHost.h"
#include "console/MainScreenLogic.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>

namespace Ui {
class MainScreen;
}

namespace qv {

class ConfigDocument;
class Conditions;
class Device;
class Dialogs;

// MainScreen, the main window: owns the controls and the two timers, and
// forwards every event to the handler of the same name in MainScreenLogic.
// Nothing of the behaviour lives here.
class MainScreenWindow : public QMainWindow, public ConsoleHost {
    Q_OBJECT
public:
    MainScreenWindow(Device& device, ConfigDocument& config, Conditions& conditions,
                     Dialogs& dialogs, QWidget* parent = nullptr);
    ~MainScreenWindow() override;

    // The start: Form_Load (which opens the connection list and makes the
    // first read), then the window, then its first activation.
    void start();

    MainScreenLogic& logic() { return *logic_; }
    WidgetConsoleView& view() { return view_; }
    Device& device() { return device_; }
    Dialogs& dialogs() { return dialogs_; }
    // The timers, for tests.
    QTimer& timerEntree() { return TimerEntree; }
    QTimer& testTimer() { return test; }

    // The windows that live in other parts of the tool, handed in by whoever
    // builds them. Without one, the operator is told that the function is
    // not part of this build.
    void setProgrammationOpener(std::function<void()> open) {
        openProgrammation_ = std::move(open);
    }
    void setProductionOpener(std::function<void()> open) { openProduction_ = std::move(open); }
    void setFirmwareUpdater(std::function<void(bool)> update) {
        updateFirmware_ = std::move(update);
    }
    // Replaces the connection window (tests): runs instead of it.
    void setConnectionOverride(std::function<void()> connect) {
        connectOverride_ = std::move(connect);
    }

    // Reads the log area into the hex view.
    void showDumpEEPROM();

    // ConsoleHost.
    void startTimerEntree() override;
    void stopTimerEntree() override;
    bool timerEntreeRunning() const override;
    void startTest(int intervalMs) override;
    void stopTest() override;
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
    void notInThisBuild(const QString& what);
    // Runs a handler unless a sequence is under way: user input waits for the
    // running handler anyway, this covers what still gets through.
    void handle(void (MainScreenLogic::*handler)());
    void onTimerEntree();

    std::unique_ptr<Ui::MainScreen> ui_;
    WidgetConsoleView view_;
    Device& device_;
    ConfigDocument& config_;
    Dialogs& dialogs_;
    std::unique_ptr<MainScreenLogic> logic_;
    QTimer TimerEntree;
    QTimer test;
    QTimer Timeur;
    bool loaded_ = false;
    bool closing_ = false;
    int windowBusy_ = 0;
    std::function<void()> openProgrammation_;
    std::function<void()> openProduction_;
    std::function<void(bool)> updateFirmware_;
    std::function<void()> connectOverride_;
};

} // namespace qv
