#include "timekeeping/ClockCalibration.h"

#include "config/DateHelpers.h"
#include "config/LegacyNumber.h"
#include "config/LocaleNumber.h"
#include "config/VbFormat.h"
#include "device/DeviceClock.h"
#include "device/MemoryMap.h"
#include "device/Packing.h"

#include <cmath>

namespace qv {

namespace {

const QString kFastClock = QStringLiteral("CheckClockSpeed");
const QString kCalibration = QStringLiteral("ValeurHorloge_0");
const QString kRatio = QStringLiteral("ValeurHorloge_1");
const QString kFrequency = QStringLiteral("ValeurHorloge_2");
const QString kCurrentTime = QStringLiteral("txtCurrentTime");
const QString kFrequencyPicture = QStringLiteral("#.0000");

// Byte 1 of the 0xF3 frame: 1 asks the device to take byte 2.
constexpr int kClockSpeedWrite = 1;

// The four bytes of a 32-bit value from `address` on, low byte first.
void writeLong(Device& device, int address, double value) {
    const auto bytes = DecoupeLong(value);
    for (int i = 0; i < 4; ++i)
        device.EcritEEprom(address + i, static_cast<int>(bytes[static_cast<size_t>(i)]));
}

} // namespace

ClockCalibration::ClockCalibration(ConsoleView& view, Device& device, ClockState& state,
                                   const QLocale& locale, std::function<QDateTime()> now)
    : view_(view), device_(device), state_(state), locale_(locale), now_(std::move(now)) {}

int ClockCalibration::MesureHorloge(bool ecriture) {
    Bytes request(kFrameLength, 0);
    request[0] = Command::ClockSpeedCheck;
    if (ecriture) {
        request[1] = kClockSpeedWrite;
        request[2] = view_.isChecked(kFastClock) ? 1 : 0;
    }
    const Bytes reply = device_.transact(request, ReplyLength::ClockSpeedCheck);
    return reply.size() > 1 ? static_cast<int>(reply[1]) : 0;
}

bool ClockCalibration::LitVitesseHorloge() {
    // The answer is the box's state as it stands: 2 is its grey state, which
    // is not "checked", so the write back sends 0 for it.
    const int mesure = MesureHorloge(false);
    if (mesure < 0 || mesure > 2)
        return false;
    if (view_.checkState(kFastClock) == mesure)
        return false;
    view_.setCheckState(kFastClock, mesure);
    CheckClockSpeed_Click();
    return true;
}

void ClockCalibration::CheckClockSpeed_Click() {
    MesureHorloge(true);
}

void ClockCalibration::LitValeurTimer() {
    view_.setText(kCalibration, QString::number(device_.LitValeurTimer()));
}

void ClockCalibration::LitDateEtHeure() {
    const auto reading = ::qv::LitDateEtHeure(device_, locale_);
    if (!reading)
        return;
    view_.setText(kCurrentTime, reading->caption);
    if (reading->heureDevice)
        state_.HeureDevice = *reading->heureDevice;
}

void ClockCalibration::CalculeDeriveTemps() {
    try {
        state_.HeurePC = DateEnSecondes(oleDateFromDateTime(now_()), -1.0);
    } catch (const OverflowError&) {
        // A PC clock beyond what the device can count: the last time stands.
    }
    const double ratio =
        driftRatio(state_.HeurePC, state_.HeureDevice, state_.DateProgrammationCourante);

    // The rest works from the stored number, not from the ratio; a box the
    // operator has typed something else into shows neither.
    const auto n = parseLocaleNumber(view_.text(kCalibration), locale_);
    if (!n)
        return;
    view_.setText(kRatio, vbNumberText(ratio, locale_));
    if (const auto frequency = frequencyOf(*n))
        view_.setText(kFrequency, formatVb(*frequency, kFrequencyPicture, locale_));
}

std::optional<double> ClockCalibration::frequencyOf(double n) {
    const double x = n == 0 ? 0 : 1 / n;
    if (x > 0)
        return (1 - x) * kNominalKHz;
    if (x == -1)
        return std::nullopt;
    return kNominalKHz / (1 - std::fabs(x));
}

std::optional<std::int32_t> ClockCalibration::calibrationNumber(double a) {
    const double t = (1 / a - 1 / kNominalKHz) * kNominalKHz;
    if (t == 0)
        return 0;
    try {
        return toInt32Checked(roundHalfEven(1 / t));
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

void ClockCalibration::CommandCalibrationCLK_Click() {
    const QString text = view_.text(kFrequency);
    const auto numeric = parseLocaleNumber(text, locale_);
    // What is not a number in the box's locale is read from its front, as
    // far as it goes: only a reading of 0 (an empty box) stops here.
    double reading = 1;
    if (numeric) {
        reading = *numeric;
    } else {
        try {
            reading = legacyLeadingNumber(text);
        } catch (const OverflowError&) {
        }
    }
    if (reading == 0)
        return;

    std::int32_t number = 0;
    if (numeric) {
        const auto computed = calibrationNumber(*numeric);
        if (!computed)
            return;
        number = *computed;
    }
    writeLong(device_, Address::ClockCalibration, number);
}

void ClockCalibration::EcritDateProgrammation() {
    std::int32_t seconds = 0;
    try {
        seconds = DateEnSecondes(oleDateFromDateTime(now_()), -1.0);
    } catch (const OverflowError&) {
        // The device cannot count this date; its stamp stays as it was.
        return;
    }
    writeLong(device_, Address::ProgrammingDate, seconds);
}

} // namespace qv
