#pragma once

#include "device/DeviceSelection.h"

#include <functional>

namespace qv {

class ConsoleView;
class Dialogs;

// The connection list, frmConnect, without its window: lists the attached
// controllers, lets the operator take one, and sets the device state and the
// main window's controls accordingly. The list is its own view (`form`);
// Lire, Ecrire, SetTime, mnuPLC and nmuBootLoad are reached through the main
// window's. Like the main window's logic it runs wherever its window runs
// its jobs, and closes the window through `close` (true: a line was taken).
class ConnectLogic {
public:
    using MessageLookup = DeviceSelection::MessageLookup;

    ConnectLogic(ConsoleView& form, ConsoleView& mainScreen, Device& device, Dialogs& dialogs,
                 MessageLookup message, std::function<void(bool demande)> updateFirmware,
                 std::function<void(bool accepted)> close);

    void Form_Load();
    void ViewAll_Click();
    // Also what a keyboard move of the selection does, as with a list box.
    // `row` is the line the operator took, as the list showed it then; -1
    // reads the list's current line.
    void ListeSorvane_Click(int row = -1);
    void ExitEtalonnage_Click();

    // The one-second wait after each probe of the first pass (tests only).
    void setProbeWait(std::function<void(int milliseconds)> wait);

    bool EnRafraichissement() const { return enRafraichissement_; }
    int NombreUsb() const { return nombreUsb_; }
    // The logic has closed the window: later clicks find it gone.
    bool closed() const { return closed_; }

private:
    void RafraichitListe(bool toutAfficher);
    void setMainControls(bool enabled);
    // The text of a key; the key itself when no lookup was given.
    QString text(const QString& key) const;
    void finish(bool accepted);

    ConsoleView& form_;
    ConsoleView& mainScreen_;
    Device& device_;
    Dialogs& dialogs_;
    MessageLookup message_;
    std::function<void(bool)> updateFirmware_;
    std::function<void(bool)> close_;
    DeviceSelection selection_;
    bool enRafraichissement_ = false;
    bool closed_ = false;
    int nombreUsb_ = 0;
};

} // namespace qv
