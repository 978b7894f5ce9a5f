#pragma once

// What the parts of the main window's logic share: the names of the controls
// they reach, the limits of the values they write, and the time-keeping
// pieces. Private to console/.

#include "MainScreenLogic.h"
#include "device/MemoryMap.h"
#include "timekeeping/ClockCalibration.h"
#include "timekeeping/DaylightSaving.h"
#include "view/ConsoleView.h"

#include <QLocale>
#include <QStringList>
#include <array>
#include <optional>

namespace qv {

namespace mainscreen {

inline const QString kListeLangues = QStringLiteral("ListeLangues");
inline const QString kListeSorties = QStringLiteral("ListeSorties");
inline const QString kValeurSortieLogique = QStringLiteral("ValeurSortieLogique");
inline const QString kProgressBar2 = QStringLiteral("ProgressBar2");
inline const QString kValeurManualAction = QStringLiteral("ValeurManualAction");

// Serial numbers from here on belong to devices that measure their battery.
constexpr std::int64_t kFirstSerialWithBattery = 90601000;
constexpr int kWaitTicks = 5;
constexpr int kManualDelayMinimum = 2;
constexpr int kManualDelayMaximum = 65535;
// The valve, first output of every model: the only one driven by hand.
constexpr int kValveOutput = 3;

// The labels of the five counters, by index: they are not translated under
// the array's shared name but each under its own words.
inline const std::array<QString, Address::CounterCount> kCounterKeys = {
    QStringLiteral("Power on reset"), QStringLiteral("CRC errors"),
    QStringLiteral("Brown out errors"), QStringLiteral("Watch dog errors"),
    QStringLiteral("Soft Resets")};

// The controls that the wait after a restart takes away from the operator,
// so that nothing can reach the device while it comes back.
inline const std::array<QString, 10> kLockedDuringWrite = {QStringLiteral("Lire"),
                                                           QStringLiteral("Ecrire"),
                                                           QStringLiteral("Sortir"),
                                                           QStringLiteral("CommandCalibrationCLK"),
                                                           QStringLiteral("Programmer"),
                                                           QStringLiteral("Activer"),
                                                           QStringLiteral("Continu"),
                                                           QStringLiteral("ArretProgramme"),
                                                           QStringLiteral("ValeurSortieLogique"),
                                                           QStringLiteral("SetTime")};

inline const QStringList kBatteryControls = {
    QStringLiteral("LabelBatterie"), QStringLiteral("Batterie"), QStringLiteral("ProgressBar3"),
    QStringLiteral("VMIN"), QStringLiteral("VMAX")};

inline QString hexByte(int value) {
    return QStringLiteral("%1 ").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

} // namespace mainscreen

// The daylight-saving rule and the clock calibration live in their own
// module; the console only says when to run them.
struct MainScreenLogic::Timekeeping {
    ClockState clock;
    std::optional<DaylightSavingRule> rule;
    std::optional<ClockCalibration> calibration;

    // Both read the entry boxes in the logic's locale, so they are made
    // again when it changes; the clock state stays.
    void rebuild(MainScreenLogic& logic) {
        rule.emplace(
            logic.view_, logic.device_, logic.config_, [&logic] { return logic.langue(); },
            logic.locale_);
        calibration.emplace(logic.view_, logic.device_, clock, logic.locale_,
                            [&logic] { return logic.now(); });
    }
};

} // namespace qv
