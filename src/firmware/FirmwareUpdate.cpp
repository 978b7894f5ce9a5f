#include "FirmwareUpdate.h"

#include "FileDialog.h"
#include "FirmwareCheck.h"
#include "LoaderStarter.h"
#include "config/ConfigDocument.h"
#include "config/OperatorText.h"
#include "link/Dialogs.h"
#include "link/PublicState.h"
#include "view/ConsoleView.h"

#include <QDir>
#include <exception>

namespace qv {

FirmwareUpdate::FirmwareUpdate(ConsoleView& mainScreen, PublicState& state, ConfigDocument& config,
                               Dialogs& dialogs, FileDialog& fileDialog, LoaderStarter& loader,
                               QString applicationDirectory)
    : view_(mainScreen), state_(state), config_(config), dialogs_(dialogs), fileDialog_(fileDialog),
      loader_(loader), applicationDirectory_(std::move(applicationDirectory)) {}

QString FirmwareUpdate::langue() const {
    return view_.text(QStringLiteral("ListeLangues"));
}

QString FirmwareUpdate::message(const QString& key, const QString& init) {
    return config_.LitMessage(langue(), key, init);
}

void FirmwareUpdate::UpdateFirmware(bool demande) {
    // The loader needs the device to itself: the main cycle lets go of it
    // here, for good, before anything can end the update.
    state_.bUsbConnected = false;
    view_.setEnabled(QStringLiteral("Lire"), false);

    try {
        if (demande && dialogs_.message(message(FirmwareKey::Confirm), QStringLiteral("Quorvel"),
                                        MsgBox::YesNo | MsgBox::Question) != MsgBox::AnswerYes)
            return;

        FileDialog::Request request;
        request.title = message(FirmwareKey::DialogTitle);
        request.filter = kFirmwareDialogFilter;
        const QString path = fileDialog_.openFile(request);
        if (path.isEmpty())
            return;

        const FirmwareVerdict verdict = checkFirmwareFile(
            path, [this](const QString& key, const QString& init) { return message(key, init); },
            locale_);
        if (!verdict.accepted) {
            dialogs_.message(verdict.text, verdict.title, verdict.style);
            return;
        }
        loader_.start(loaderCommandLine(QDir::toNativeSeparators(applicationDirectory_), langue(),
                                        state_.UsbID, path, verdict.versionText));
    } catch (const std::exception& e) {
        // The old program died of an unusable config.xml; the operator now
        // gets the reason, in the language in use, and the window stays.
        dialogs_.message(operatorText(e, config_, langue()), QStringLiteral("Quorvel"),
                         MsgBox::Critical);
    }
}

} // namespace qv
