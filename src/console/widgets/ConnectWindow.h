#pragma once

#include "console/ConnectLogic.h"

#include <QDialog>
#include <functional>
#include <memory>

namespace Ui {
class frmConnect;
}

namespace qv {

class ConsoleView;
class DeviceWorker;
class Dialogs;
class UiBridge;

// The connection list's window, frmConnect: forwards the operator's events to
// ConnectLogic. Opened anew for each use, without a local event loop (open());
// the list is filled once the window is on screen, so that the operator sees
// it fill. In the program the logic runs as jobs of the device thread and
// reaches this window through the bridge; without them (tests) it runs in
// place. The logic outlives the window while a job of it still runs.
class ConnectWindow : public QDialog {
    Q_OBJECT
public:
    using MessageLookup = ConnectLogic::MessageLookup;

    // `mainScreen` reaches Lire, Ecrire, SetTime, mnuPLC and nmuBootLoad of
    // the main window; `message` gives a key's text in the language chosen
    // there; `updateFirmware` starts the firmware update (demande false).
    ConnectWindow(Device& device, ConsoleView& mainScreen, Dialogs& dialogs, MessageLookup message,
                  std::function<void(bool demande)> updateFirmware, QWidget* parent = nullptr,
                  DeviceWorker* worker = nullptr, UiBridge* bridge = nullptr);
    ~ConnectWindow() override;

    // The handlers, as the operator's events reach them.
    void Form_Load();
    void ViewAll_Click();
    void ListeSorvane_Click();
    void ExitEtalonnage_Click();

    // The one-second wait after each probe of the first pass (tests only).
    void setProbeWait(std::function<void(int milliseconds)> wait);
    // What follows the list where the logic runs: in the very job of the
    // choice that closes it (so that nothing comes between the choice and
    // what depends on it, TimeOut above all), or, when the window is closed
    // otherwise, in a job of its own.
    void setAfterClose(std::function<void()> continuation);

    // The window's own controls.
    ConsoleView& view();
    // The logic's state, to read once its jobs are over.
    const ConnectLogic& logic() const;
    bool EnRafraichissement() const { return logic().EnRafraichissement(); }
    int NombreUsb() const { return logic().NombreUsb(); }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Session;
    // Runs a handler of the logic where the logic runs.
    void run(void (ConnectLogic::*handler)());

    std::unique_ptr<Ui::frmConnect> ui_;
    std::shared_ptr<Session> session_;
    DeviceWorker* worker_;
    bool loaded_ = false;
    bool movedByKey_ = false;
};

} // namespace qv
