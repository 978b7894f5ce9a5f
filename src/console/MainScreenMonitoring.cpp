// Output monitoring and the manual action.
#include "MainScreenParts.h"

#include "ConsoleHost.h"
#include "config/ConfigDocument.h"
#include "config/LocaleNumber.h"
#include "device/Device.h"
#include "link/Dialogs.h"

namespace qv {

using namespace mainscreen;

// ------------------------------------------------ monitoring and manual action

void MainScreenLogic::envoiManuel(int sortie, int valeur) {
    Bytes frame(kFrameLength, 0);
    frame[0] = Command::ManualAction;
    frame[1] = sortie;
    frame[2] = valeur;
    frame[3] = view_.isChecked(QStringLiteral("ArretProgramme")) ? 1 : 0;
    device_.transact(frame, ReplyLength::ManualAction);
}

void MainScreenLogic::Activer_Click() {
    guarded([&] {
        device_.state().TimeOut = false;
        host_.startTest(80);
        envoiManuel(kValveOutput, view_.currentRow(kValeurSortieLogique));
    });
}

void MainScreenLogic::ArretProgramme_Click() {
    guarded([&] { envoiManuel(255, 255); });
}

void MainScreenLogic::Continu_Click() {
    guarded([&] {
        device_.state().TimeOut = false;
        if (view_.isChecked(QStringLiteral("Continu")))
            LitParametres();
        // Switching on starts the cycle even after a failed read: its first
        // tick then stops it again.
        if (view_.isChecked(QStringLiteral("Continu")))
            host_.startTimerEntree();
        else
            host_.stopTimerEntree();
    });
}

void MainScreenLogic::ValeurManualAction_Change() {
    const QString text = view_.text(kValeurManualAction);
    const auto value = parseLocaleNumber(text, locale_);
    QString clamped = text;
    if (!value)
        clamped = QString::number(kManualDelayMinimum);
    else if (*value < kManualDelayMinimum)
        clamped = QString::number(kManualDelayMinimum);
    else if (*value > kManualDelayMaximum)
        clamped = QString::number(kManualDelayMaximum);
    if (clamped != text)
        view_.setText(kValeurManualAction, clamped);
}

} // namespace qv
