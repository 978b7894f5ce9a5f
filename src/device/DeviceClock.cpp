#include "DeviceClock.h"

#include "MemoryMap.h"
#include "config/DateHelpers.h"

namespace qv {

Bytes clockFrame(const QDate& madate, const QDateTime& now, int option) {
    Bytes request(kFrameLength, 0);
    request[0] = Command::SetDateTime;
    request[1] = madate.dayOfWeek(); // Monday 1 .. Sunday 7
    request[2] = now.time().hour();
    request[3] = now.time().minute();
    request[4] = now.time().second();
    request[5] = now.date().day();
    request[6] = now.date().month();
    request[7] = now.date().year() % 100;
    request[8] = option;
    return request;
}

void MAH(Device& device, int option, const QDate& madate, const QDateTime& now) {
    device.transact(clockFrame(madate, now, option), ReplyLength::SetDateTime);
}

std::optional<QDate> parseDeviceDate(int day, int month, int year, const QLocale& locale) {
    return dateFromText(day, month, year, locale);
}

std::optional<DeviceTimeReading> LitDateEtHeure(Device& device, const QLocale& locale) {
    Bytes request(kFrameLength, 0);
    request[0] = Command::ReadDateTime;
    const Bytes r = device.transact(request, ReplyLength::ReadDateTime);
    if (device.state().TimeOut)
        return std::nullopt;
    auto two = [&](size_t i) {
        return QStringLiteral("%1").arg(i < r.size() ? r[i] : 0, 2, 10, QLatin1Char('0'));
    };
    DeviceTimeReading reading;
    reading.caption = two(1) + '/' + two(2) + '/' + two(3) + QStringLiteral(" - ") + two(4) + ':' +
                      two(5) + ':' + two(6);
    const auto date = parseDeviceDate(static_cast<int>(r[1]), static_cast<int>(r[2]),
                                      static_cast<int>(r[3]), locale);
    const QTime time(static_cast<int>(r[4]), static_cast<int>(r[5]), static_cast<int>(r[6]));
    if (date && time.isValid()) {
        try {
            reading.heureDevice =
                DateEnSecondes(oleDateFromDateTime(QDateTime(*date, QTime(0, 0))),
                               oleDateFromDateTime(QDateTime(QDate(1899, 12, 30), time)));
        } catch (const OverflowError&) {
            // An impossible date from the device changes nothing.
        }
    }
    return reading;
}

double driftRatio(double heurePC, double heureDevice, double dateProgrammationCourante) {
    if (heurePC - heureDevice == 0)
        return 0;
    return (heurePC - dateProgrammationCourante) / (heurePC - heureDevice);
}

} // namespace qv
