// The service panel: serial number, battery threshold, counters, boot request,
// log area, and the clock and daylight-saving handlers.
#include "MainScreenParts.h"

#include "ConsoleHost.h"
#include "config/ConfigDocument.h"
#include "config/LocaleNumber.h"
#include "device/Device.h"
#include "device/Packing.h"
#include "link/Dialogs.h"

namespace qv {

using namespace mainscreen;

// ----------------------------------------------------------------- service

void MainScreenLogic::Programmer_Click() {
    guarded([&] {
        device_.state().TimeOut = false;
        const auto value =
            parseLocaleNumber(view_.text(QStringLiteral("ValeurNumeroSerie")), locale_);
        if (!value) {
            dialogs_.message(QStringLiteral("Le n° de série n'est pas valide"), QString(),
                             MsgBox::OkOnly);
        } else if (*value > 2147483647.0) {
            dialogs_.message(QStringLiteral("Le n° de série est trop grand (> 32 bits)"), QString(),
                             MsgBox::OkOnly);
        } else {
            // A negative number is let through and lands as its two's
            // complement, as it always has.
            const auto octets = DecoupeLong(*value);
            for (int i = 0; i < 4; ++i)
                device_.EcritEEprom(Address::SerialNumber + i,
                                    static_cast<int>(octets[static_cast<size_t>(i)]));
        }
        // The device restarts after a refused entry too.
        device_.ResetDevice();
    });
}

void MainScreenLogic::Seuilbatterie_Click() {
    guarded([&] { EcritSeuilBatterie(); });
}

void MainScreenLogic::EcritSeuilBatterie() {
    if (!ControleNumerique(QStringLiteral("MinBat")))
        return;
    const double volts = *parseLocaleNumber(view_.text(QStringLiteral("MinBat")), locale_);
    device_.EcritEEpromMot(Address::BatteryThreshold, toInt32Checked(volts * kBatteryStepsPerVolt));
}

bool MainScreenLogic::ControleNumerique(const QString& saisie) {
    if (parseLocaleNumber(view_.text(saisie), locale_))
        return true;
    view_.setFocus(saisie);
    view_.selectAll(saisie);
    dialogs_.message(message(QStringLiteral("erreur de saisie")), QString(), MsgBox::Exclamation);
    return false;
}

void MainScreenLogic::RazCtn_Click() {
    guarded([&] {
        for (int i = 0; i < Address::CounterCount; ++i) {
            device_.EcritEEprom(Address::Counters + i, 0);
            view_.setText(arrayMember(QStringLiteral("ctn_text"), i), QStringLiteral("0"));
        }
        device_.ForceRelectureCompteur();
    });
}

void MainScreenLogic::ForceBoot_Click() {
    guarded([&] {
        const int answer = dialogs_.message(message(QStringLiteral("Are You Sure ? ")), QString(),
                                            MsgBox::YesNo | MsgBox::Question);
        // Yes and No are both answers that are not zero: the request goes
        // either way, as operators have come to expect.
        if (answer != 0)
            device_.EcritEEprom(Address::BootRequest, kBootRequestValue);
    });
}

QStringList MainScreenLogic::DumpEEPROM() {
    QStringList lines;
    guarded([&] {
        device_.state().TimeOut = false;
        QString line;
        for (int i = 0; i < Address::LogAreaLength; ++i) {
            const int value = device_.LitEEprom(Address::LogArea + i);
            // One box is enough: a dead device would otherwise raise one
            // for each of the 256 bytes.
            if (device_.state().TimeOut)
                break;
            line += hexByte(value);
            if ((i + 1) % 16 == 0) {
                lines.append(line);
                line.clear();
            }
        }
        if (!line.isEmpty())
            lines.append(line);
    });
    return lines;
}

// ---------------------------------------------------- daylight saving, clock

void MainScreenLogic::EnableDaylightSaving_Click() {
    guarded([&] { timekeeping_->rule->EnableDaylightSaving_Click(); });
}

void MainScreenLogic::CommandCalibrationCLK_Click() {
    guarded([&] { timekeeping_->calibration->CommandCalibrationCLK_Click(); });
}

void MainScreenLogic::CheckClockSpeed_Click() {
    guarded([&] { timekeeping_->calibration->CheckClockSpeed_Click(); });
}

void MainScreenLogic::DayLightSaving(bool ecriture, bool enConfiguration, bool initialisation) {
    timekeeping_->rule->DayLightSaving(ecriture, enConfiguration, initialisation);
}

void MainScreenLogic::CalculeDeriveTemps() {
    timekeeping_->calibration->CalculeDeriveTemps();
}

int MainScreenLogic::MesureHorloge(bool ecriture) {
    return timekeeping_->calibration->MesureHorloge(ecriture);
}

} // namespace qv
