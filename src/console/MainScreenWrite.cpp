// The write cycle and the setting of the clock.
#include "MainScreenParts.h"

#include "ConsoleHost.h"
#include "config/ConfigDocument.h"
#include "config/LocaleNumber.h"
#include "device/Device.h"
#include "device/DeviceClock.h"
#include "device/Packing.h"
#include "link/Dialogs.h"
#include "programme/Conditions.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeDownload.h"

namespace qv {

using namespace mainscreen;

void MainScreenLogic::Ecrire_Click() {
    guarded([&] {
        PublicState& state = device_.state();
        state.TimeOut = false;
        LitVersion();
        if (state.TimeOut)
            return;
        untickContinu();

        // The default state always comes from the first language of the
        // list, whichever one is in use.
        const auto langues = view_.rows(kListeLangues);
        const QString premiere = langues.empty() ? QString() : langues.front().text;
        const std::int16_t etatDefaut = Donne_EtatDefautSortie(config_, premiere, 0);
        const EnvoiResultat envoi =
            Envoi_Conditions(device_, conditions_, etatDefaut,
                             message(QStringLiteral("Les anciennes valeurs seront écrasées")),
                             madate(), now(), [this](const QString& key) { return message(key); });
        if (envoi.cancelled)
            view_.setEnabled(QStringLiteral("Ecrire"), true);
        if (!envoi.resultat || state.TimeOut)
            return;

        // From here a lost device costs one box per exchange, and the cycle
        // still runs to its end: the operator reads the boxes.
        DayLightSaving(true, true, false);
        DayLightSaving(true, false, false);
        EcritDelaiManuel();
        EcritDateProgrammation();

        view_.setVisible(kProgressBar2, true);
        view_.setProgress(kProgressBar2, 0, kWaitTicks, 0);
        device_.ResetDevice();
        host_.startTest(1000);
        for (const QString& control : kLockedDuringWrite)
            view_.setEnabled(control, false);
        // The device needs five seconds to come back. The ticks of `test`
        // count them, and the clicks and ticks that come meanwhile run here,
        // as they always have: the controls above keep the operator from
        // anything that would talk to the restarting device.
        while (view_.progressValue(kProgressBar2) != kWaitTicks)
            if (!host_.runQueuedEvents())
                break;
        view_.setVisible(kProgressBar2, false);
        host_.stopTest();
        dialogs_.message(message(QStringLiteral("Programmation terminée")), QString(),
                         MsgBox::Exclamation);
        for (const QString& control : kLockedDuringWrite)
            view_.setEnabled(control, true);
    });
}

void MainScreenLogic::EcritDelaiManuel() {
    const auto value = parseLocaleNumber(view_.text(kValeurManualAction), locale_);
    if (!value)
        return;
    double delai = *value;
    if (delai > kManualDelayMaximum) {
        setManualDelayText(QString::number(kManualDelayMaximum));
        delai = kManualDelayMaximum;
    }
    const auto octets = DecoupeMot(delai);
    device_.EcritEEprom(Address::ManualActionDelay, static_cast<int>(octets[0]));
    device_.EcritEEprom(Address::ManualActionDelay + 1, static_cast<int>(octets[1]));
}

void MainScreenLogic::EcritDateProgrammation() {
    timekeeping_->calibration->EcritDateProgrammation();
}

void MainScreenLogic::SetTime_Click() {
    guarded([&] {
        // No TimeOut test anywhere: the box closes the action in any case.
        MAH(device_, 0, madate(), now());
        DayLightSaving(true, false, false);
        EcritDelaiManuel();
        dialogs_.message(message(QStringLiteral("Date and Time Set")), QString(),
                         MsgBox::Exclamation);
    });
}

} // namespace qv
