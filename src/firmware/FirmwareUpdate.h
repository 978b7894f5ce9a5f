#pragma once

#include <QLocale>
#include <QString>

namespace qv {

class ConsoleView;
class ConfigDocument;
class Dialogs;
class FileDialog;
class LoaderStarter;
struct PublicState;

// The firmware update of the main window: choose and check a firmware file,
// free the device, and hand over to the loader. The tool never transfers
// firmware itself.
//
// The device is released first, before any question, and stays released
// whatever follows (a No, a cancel, a refused file): the operator picks a
// device again through the connection window. `Lire` is disabled through
// the main window's view; the language in use is the text of its
// ListeLangues, for the messages and for the loader's LANGUE= field.
class FirmwareUpdate {
public:
    FirmwareUpdate(ConsoleView& mainScreen, PublicState& state, ConfigDocument& config,
                   Dialogs& dialogs, FileDialog& fileDialog, LoaderStarter& loader,
                   QString applicationDirectory);

    // Tests fix the number reading; the window leaves the machine's.
    void setLocale(const QLocale& locale) { locale_ = locale; }

    // `demande`: ask the operator first (from the menu); the connection
    // window, which has asked already, passes false.
    void UpdateFirmware(bool demande);

private:
    QString langue() const;
    QString message(const QString& key, const QString& init = QString());

    ConsoleView& view_;
    PublicState& state_;
    ConfigDocument& config_;
    Dialogs& dialogs_;
    FileDialog& fileDialog_;
    LoaderStarter& loader_;
    QString applicationDirectory_;
    QLocale locale_ = QLocale::system();
};

} // namespace qv
