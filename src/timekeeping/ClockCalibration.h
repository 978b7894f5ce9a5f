#pragma once

#include "device/Device.h"
#include "view/ConsoleView.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

namespace qv {

// The three times that the drift computation compares, in device seconds
// (DateEnSecondes), shared with the read cycle that sets the programming
// date.
struct ClockState {
    double HeurePC = 0;                   // PC time of the last drift computation
    double HeureDevice = 0;               // device time of the last good clock read
    double DateProgrammationCourante = 0; // last programming, as read from 20..23
};

// The controller's clock as the maintenance frame shows it: the calibration
// number at 33..36 (ValeurHorloge_0), the drift ratio (ValeurHorloge_1), the
// frequency in kHz that the number stands for (ValeurHorloge_2), the fast
// clock switch (CheckClockSpeed), and the programming date stamp at 20..23.
//
// None of the operations clears or tests TimeOut: a failed exchange has
// shown its box, and the caller decides whether to go on.
class ClockCalibration {
public:
    // `now` gives the PC's present local time.
    ClockCalibration(ConsoleView& view, Device& device, ClockState& state,
                     const QLocale& locale = QLocale::system(),
                     std::function<QDateTime()> now = &QDateTime::currentDateTime);

    ClockState& state() { return state_; }

    // Command 0xF3. Reading (`ecriture` false) asks for the fast clock state;
    // writing sends the state of CheckClockSpeed. Returns byte 1 of the
    // reply: 1 when the fast clock runs, 0 otherwise and after a failure.
    int MesureHorloge(bool ecriture);

    // The read cycle's step: CheckClockSpeed takes the state that the device
    // reports. A change made this way counts as a click, so the state read
    // is sent straight back (CheckClockSpeed_Click). Returns true when the
    // box changed and the state was sent back. A reply other than 0, 1 or 2
    // is no check box state and leaves the box alone; 2 (grayed) shows as
    // unchecked.
    bool LitVitesseHorloge();

    // The operator's click on CheckClockSpeed: sends the box's state.
    void CheckClockSpeed_Click();

    // The calibration number at 33..36 into ValeurHorloge_0, in decimal.
    void LitValeurTimer();

    // The device's clock into txtCurrentTime and HeureDevice. A failed read
    // changes nothing; a date that does not convert changes only the caption.
    void LitDateEtHeure();

    // HeurePC from the PC's clock; the drift ratio into ValeurHorloge_1 and
    // the frequency of the calibration number into ValeurHorloge_2, both
    // only while ValeurHorloge_0 is numeric.
    void CalculeDeriveTemps();

    // Turns the frequency in ValeurHorloge_2 into a calibration number and
    // writes it to 33..36. Empty or 0: nothing is written. A text that is
    // not a number (but reads as something else than 0, like "31.9" where
    // the separator is a comma) writes 0, which removes the correction.
    void CommandCalibrationCLK_Click();

    // Stamps 20..23 with the present time, low byte first.
    void EcritDateProgrammation();

    static constexpr double kNominalKHz = 32.0;

    // The frequency in kHz that the firmware makes of the nominal one with
    // calibration number `n`: a positive number slows the clock, a negative
    // one speeds it up, 0 leaves it. nullopt for -1, which has none.
    static std::optional<double> frequencyOf(double n);

    // The calibration number for a measured frequency `a` in kHz (not 0),
    // rounded half to even. The two are not exact inverses: a positive
    // number comes back from its own frequency as one less, a negative one
    // as itself. nullopt when the number does not fit 32 bits (a frequency a
    // hair off nominal).
    static std::optional<std::int32_t> calibrationNumber(double a);

private:
    ConsoleView& view_;
    Device& device_;
    ClockState& state_;
    QLocale locale_;
    std::function<QDateTime()> now_;
};

} // namespace qv
