// The full read and its parts, shared with the continuous cycle.
#include "MainScreenParts.h"

#include "ConsoleHost.h"
#include "config/ConfigDocument.h"
#include "config/DateHelpers.h"
#include "config/VbFormat.h"
#include "device/Device.h"
#include "device/Identity.h"
#include "device/Packing.h"
#include "link/Dialogs.h"
#include "programme/ProgrammeUpload.h"

namespace qv {

using namespace mainscreen;

void MainScreenLogic::Lire_Click() {
    guarded([&] {
        view_.setBusyCursor(true);
        host_.stopTimerEntree();
        view_.setEnabled(QStringLiteral("Lire"), false);
        view_.setEnabled(QStringLiteral("Lire"), true);
        view_.setFocus(QStringLiteral("Lire"));
        untickContinu();
        device_.state().TimeOut = false;
        LitParametres();
    });
    view_.setBusyCursor(false);
}

void MainScreenLogic::LitParametres() {
    guarded([&] {
        const PublicState& state = device_.state();

        // A dead device must still walk every step up to the threshold, each
        // one trying and failing on its own, so no TimeOut test until then.
        skipOnError([&] { AfficheNumeroSerie(); });
        skipOnError([&] { LitVersion(); });
        skipOnError([&] { timekeeping_->calibration->LitValeurTimer(); });
        skipOnError([&] { CalculeDeriveTemps(); });
        // A changed box reports itself like a click, which sends the state
        // just read back to the device.
        skipOnError([&] { timekeeping_->calibration->LitVitesseHorloge(); });
        for (int i = 0; i < Address::CounterCount; ++i)
            skipOnError([&] {
                view_.setText(arrayMember(QStringLiteral("ctn_text"), i),
                              QString::number(device_.LitEEprom(Address::Counters + i)));
            });
        skipOnError([&] { DayLightSaving(false, false, false); });
        skipOnError([&] {
            const int low = device_.LitEEprom(Address::ManualActionDelay);
            const int high = device_.LitEEprom(Address::ManualActionDelay + 1);
            setManualDelayText(QString::number(low + 256 * high));
        });
        skipOnError([&] {
            const double volts =
                device_.LitEEpromMot(Address::BatteryThreshold) / kBatteryStepsPerVolt;
            view_.setText(QStringLiteral("MinBat"),
                          formatVb(volts, QStringLiteral("##.##"), locale_));
        });

        if (state.TimeOut) {
            AfficheLibellesSortie();
            return;
        }

        LitEtatsDirects();
        LitProgramme();
        // Read twice, with the identity between, as the device has always
        // been asked; only the second reading counts.
        LitDateProgrammation();
        LitVersion();
        const Bytes date = LitDateProgrammation();
        timekeeping_->clock.DateProgrammationCourante = AssembleLong(date);
        view_.setText(QStringLiteral("DateProgrammation"),
                      SecondesEnDate(timekeeping_->clock.DateProgrammationCourante, locale_));
        LitDateEtHeure();
        CalculeDeriveTemps();
        AfficheLibellesSortie();
        view_.setEnabled(QStringLiteral("Lire"), true);
    });
}

bool MainScreenLogic::AfficheNumeroSerie() {
    Bytes octets(4, 0);
    for (int i = 0; i < 4; ++i) {
        octets[static_cast<size_t>(i)] = device_.LitEEprom(Address::SerialNumber + i);
        if (device_.state().TimeOut)
            return false;
    }
    const std::int32_t serie = AssembleLong(octets);
    view_.setText(QStringLiteral("ValeurNumeroSerie"), QString::number(serie));
    view_.setText(QStringLiteral("NumeroSerie"), QString::number(serie));
    const bool avecBatterie = serie >= kFirstSerialWithBattery;
    for (const QString& control : kBatteryControls)
        view_.setVisible(control, avecBatterie);
    view_.setText(QStringLiteral("Ils"),
                  QString::number(device_.LitEEprom(Address::IlsAtLastWrite)));
    return serie != 0;
}

void MainScreenLogic::LitVersion() {
    const MainIdentity identity = LitVersionPrincipale(device_);
    view_.setText(QStringLiteral("Version"), identity.versionCaption);
    view_.setText(QStringLiteral("FrameMaintenance"), identity.maintenanceCaption);
    // A reading beyond the converter's range leaves the bar where it was,
    // and the voltage is shown all the same.
    if (identity.batteryRaw >= 0 && identity.batteryRaw <= 1023)
        view_.setProgress(QStringLiteral("ProgressBar3"), 0, 1023, identity.batteryRaw);
    view_.setText(QStringLiteral("Batterie"), formatVb(identity.batteryRaw / kBatteryStepsPerVolt,
                                                       QStringLiteral("0.0"), locale_));
}

void MainScreenLogic::LitDateEtHeure() {
    timekeeping_->calibration->LitDateEtHeure();
}

void MainScreenLogic::LitProgramme() {
    const MessageLookup lookup = [this](const QString& key) { return message(key); };
    const OutputFormatLookup format = [this](int position) -> std::optional<double> {
        const auto rows = view_.rows(kListeSorties);
        if (position < 0 || position >= static_cast<int>(rows.size()))
            return std::nullopt;
        return rows[static_cast<size_t>(position)].itemData;
    };
    LitEtSauveProgramme(device_, config_, lookup, format);
}

void MainScreenLogic::AfficheLibellesSortie() {
    view_.setText(QStringLiteral("NomSortie"),
                  message(QStringLiteral("Electro Vanne Bist.")) + QStringLiteral(" 1"));
    setOutputStateRows();
}

void MainScreenLogic::setOutputStateRows() {
    const QString close = message(QStringLiteral("Close"));
    const QString open = message(QStringLiteral("Open"));
    if (view_.rows(kValeurSortieLogique).size() < 2) {
        const int row = view_.currentRow(kValeurSortieLogique);
        view_.setRows(kValeurSortieLogique, {{close, 0}, {open, 1}});
        view_.setCurrentRow(kValeurSortieLogique, row);
        return;
    }
    view_.setRowText(kValeurSortieLogique, 0, close);
    view_.setRowText(kValeurSortieLogique, 1, open);
}

void MainScreenLogic::LitEtatsDirects() {
    const int sortie = device_.LitValeur(LiveValue::OutputState);
    view_.setCurrentRow(kValeurSortieLogique, sortie != 0 ? 1 : 0);
    view_.setText(QStringLiteral("Ils"), QString::number(device_.LitValeur(LiveValue::IlsInput)));
}

Bytes MainScreenLogic::LitDateProgrammation() {
    Bytes octets(4, 0);
    for (int i = 0; i < 4; ++i)
        octets[static_cast<size_t>(i)] = device_.LitEEprom(Address::ProgrammingDate + i);
    return octets;
}

void MainScreenLogic::RemplitListesSorties() {
    if (const auto rows = config_.RemplitListe(langue(), kListeSorties))
        view_.setRows(kListeSorties, toRows(*rows));
    const auto rows = view_.rows(kListeSorties);
    if (!rows.empty())
        view_.setText(QStringLiteral("NomSortie"), rows.front().text);
    view_.setText(QStringLiteral("Activer"), message(QStringLiteral("Activer")));
    setOutputStateRows();
}

} // namespace qv
