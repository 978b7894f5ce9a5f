#pragma once

#include "Device.h"

#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QString>
#include <optional>

namespace qv {

// The clock frame: day of week from the date picker (which may not show
// today: no check, both sources are kept), the rest from the PC's clock.
Bytes clockFrame(const QDate& madate, const QDateTime& now, int option);

// Sets the device's clock. `option` is 0 for a plain setting and 255 when a
// programme download follows.
void MAH(Device& device, int option, const QDate& madate,
         const QDateTime& now = QDateTime::currentDateTime());

struct DeviceTimeReading {
    QString caption;                   // "21/11/26 - 14:03:05"
    std::optional<double> heureDevice; // device seconds; none when the date does not convert
};

// nullopt when the device did not answer: the caption stays as it was.
std::optional<DeviceTimeReading> LitDateEtHeure(Device& device,
                                                const QLocale& locale = QLocale::system());

// The device's date reply as the PC's regional settings read "dd/MM/yy":
// in the locale's order of day, month and year first (on a year-first
// locale "21/11/26" is 26 November 2021), another order when that fails,
// two-digit years windowed to 1930..2029.
std::optional<QDate> parseDeviceDate(int day, int month, int year, const QLocale& locale);

// The ratio of the PC's time since the last programming to the device's lag
// behind the PC; 0 when the two agree exactly.
double driftRatio(double heurePC, double heureDevice, double dateProgrammationCourante);

} // namespace qv
