#pragma once

#include "console/widgets/WidgetConsoleView.h"
#include "device/DeviceSelection.h"

#include <QDialog>
#include <functional>
#include <memory>

namespace Ui {
class frmConnect;
}

namespace qv {

class Dialogs;

// The connection list, frmConnect: lists the attached controllers, lets the
// operator take one, and sets the device state and the main window's
// controls accordingly. Modal; opened anew for each use. The list is filled
// once the window is on screen, so that the operator sees it fill.
class ConnectWindow : public QDialog {
    Q_OBJECT
public:
    using MessageLookup = DeviceSelection::MessageLookup;

    // `mainScreen` reaches Lire, Ecrire, SetTime, mnuPLC and nmuBootLoad of
    // the main window; `message` gives a key's text in the language chosen
    // there; `updateFirmware` starts the firmware update (demande false).
    ConnectWindow(Device& device, ConsoleView& mainScreen, Dialogs& dialogs, MessageLookup message,
                  std::function<void(bool demande)> updateFirmware, QWidget* parent = nullptr);
    ~ConnectWindow() override;

    // Handlers, public so that tests drive them as the operator would.
    void Form_Load();
    void ViewAll_Click();
    void ListeSorvane_Click();
    void ExitEtalonnage_Click();

    // The one-second wait after each probe of the first pass (tests only).
    void setProbeWait(std::function<void(int milliseconds)> wait);

    ConsoleView& view() { return view_; }
    bool EnRafraichissement() const { return enRafraichissement_; }
    int NombreUsb() const { return nombreUsb_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void RafraichitListe(bool toutAfficher);
    // The text of a key; the key itself when no lookup was given.
    QString text(const QString& key) const;

    std::unique_ptr<Ui::frmConnect> ui_;
    WidgetConsoleView view_;
    Device& device_;
    ConsoleView& mainScreen_;
    Dialogs& dialogs_;
    MessageLookup message_;
    std::function<void(bool)> updateFirmware_;
    DeviceSelection selection_;
    bool enRafraichissement_ = false;
    bool loaded_ = false;
    int nombreUsb_ = 0;
};

} // namespace qv
