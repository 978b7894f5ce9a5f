#include "DateHelpers.h"

#include "link/Bytes.h"

#include <QTime>
#include <cmath>
#include <limits>
#include <string>

namespace qv {

namespace {

constexpr double kFirstOleDate = -657434.0; // 1 January 100
constexpr double kLastOleDate = 2958465.0;  // 31 December 9999
constexpr long long kSecondsPerDay = 86400;

QDate oleDay0() {
    return QDate(1899, 12, 30);
}

struct DateParts {
    QDate date;
    int secondsOfDay = 0;
};

// Hour, minute and second of a day count come from one split rounded to the
// nearest second, so 0.9999999 is the next day at midnight, not 23:59:59.
DateParts splitOleDate(double date) {
    if (!(date >= kFirstOleDate && date < kLastOleDate + 1.0))
        throw OverflowError("date " + std::to_string(date) + " out of range");
    const double days = std::trunc(date);
    const double fraction = std::fabs(date - days);
    auto seconds = static_cast<long long>(std::floor(fraction * kSecondsPerDay + 0.5));
    QDate day = oleDay0().addDays(static_cast<qint64>(days));
    if (seconds >= kSecondsPerDay) {
        day = day.addDays(1);
        seconds -= kSecondsPerDay;
    }
    return {day, static_cast<int>(seconds)};
}

void chopTrailingBlanks(QString& text) {
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
}

// The locale's long time picture without its AM/PM marker and time zone, on
// a 24-hour clock ("h:mm:ss AP t" -> "H:mm:ss"). Quoted literals stay as
// they are; the blank that separated a removed part goes with it.
QString timePicture24(const QLocale& locale) {
    const QString picture = locale.timeFormat(QLocale::LongFormat);
    QString result;
    qsizetype i = 0;
    while (i < picture.size()) {
        const QChar c = picture[i];
        if (c == QLatin1Char('\'')) {
            qsizetype end = i + 1;
            while (end < picture.size()) {
                if (picture[end] == QLatin1Char('\'')) {
                    if (end + 1 < picture.size() && picture[end + 1] == QLatin1Char('\'')) {
                        end += 2;
                        continue;
                    }
                    break;
                }
                ++end;
            }
            result += picture.mid(i, end - i + 1);
            i = end + 1;
            continue;
        }
        qsizetype end = i;
        while (end < picture.size() && picture[end] == c)
            ++end;
        if (c == QLatin1Char('A') || c == QLatin1Char('a') || c == QLatin1Char('t')) {
            if (c != QLatin1Char('t') && end < picture.size() &&
                (picture[end] == QLatin1Char('P') || picture[end] == QLatin1Char('p')))
                ++end;
            chopTrailingBlanks(result);
        } else if (c == QLatin1Char('h')) {
            result += QString(end - i, QLatin1Char('H'));
        } else {
            result += picture.mid(i, end - i);
        }
        i = end;
    }
    return result.trimmed();
}

} // namespace

double oleDateFromDateTime(const QDateTime& dateTime) {
    const QDate date = dateTime.date();
    if (!date.isValid())
        return 0.0;
    const auto days = static_cast<double>(oleDay0().daysTo(date));
    const QTime time = dateTime.time();
    const double fraction = time.isValid() ? time.msecsSinceStartOfDay() / 86400000.0 : 0.0;
    return days >= 0 ? days + fraction : days - fraction;
}

QDateTime dateTimeFromOleDate(double date) {
    const DateParts parts = splitOleDate(date);
    return QDateTime(parts.date, QTime(0, 0).addSecs(parts.secondsOfDay));
}

std::int32_t DateEnSecondes(double date, double heure) {
    if (date < 1.0)
        return 0;
    const DateParts jour = splitOleDate(date);
    const DateParts temps = heure == -1.0 ? jour : splitOleDate(heure);

    // Day of the year counted on from 1 January 1970, then moved to the
    // right year. 1970 has no 29 February, so from 29 February of a leap
    // year on, the day lands one further; the device's count depends on it.
    const QDate debut(1970, 1, 1);
    const QDate ramenee =
        debut.addDays(jour.date.dayOfYear() - 1).addYears(jour.date.year() - debut.year());
    const long long secondes = debut.daysTo(ramenee) * kSecondsPerDay + temps.secondsOfDay;
    if (secondes < std::numeric_limits<std::int32_t>::min() ||
        secondes > std::numeric_limits<std::int32_t>::max())
        throw OverflowError("date " + std::to_string(date) + " beyond the device's time range");
    return static_cast<std::int32_t>(secondes);
}

QString SecondesEnDate(double secondes, const QLocale& locale) {
    if (!std::isfinite(secondes))
        return {};
    const double minutesEntieres = std::floor(secondes / 60.0);
    // Far beyond year 9999 already; keeps the integer arithmetic below exact.
    if (std::fabs(minutesEntieres) > 1e15)
        return {};
    const auto m = static_cast<long long>(minutesEntieres);
    const double s = secondes - minutesEntieres * 60.0;

    // Divisions and remainders truncate toward zero, so a negative count
    // gives negative hours or minutes, which no time accepts, unless it is
    // a whole number of days.
    long long h = m / 60;
    const long long n = m % 60;
    const long long j = h / 24;
    h %= 24;

    const long long jour = static_cast<long long>(kOleDateOf1970) + j;
    if (jour < kFirstOleDate || jour > kLastOleDate)
        return {};
    QDate d = oleDay0().addDays(jour);
    // The count is a day high from 29 February on in these years; 2100 is
    // among them although it has no 29 February.
    if (d.year() % 4 == 0 && (d.month() > 2 || (d.month() == 2 && d.day() > 28)))
        d = d.addDays(-1);

    // The seconds reach the time call as a 16-bit integer, rounded half to
    // even: 59.6 becomes 60, which is no time.
    double secondeArrondie = std::round(s);
    if (std::fabs(secondeArrondie - s) == 0.5)
        secondeArrondie = 2.0 * std::round(s / 2.0);
    if (!(secondeArrondie >= 0.0 && secondeArrondie <= 60.0))
        return {};
    const int sec = static_cast<int>(secondeArrondie);
    if (FormatHeure(static_cast<int>(h), static_cast<int>(n), sec, locale).isEmpty())
        return {};
    return locale.toString(d, FormatDateCourte(locale)) + QLatin1Char(' ') +
           QTime(static_cast<int>(h), static_cast<int>(n), sec)
               .toString(QStringLiteral("HH:mm:ss"));
}

QString FormatHeure(int heure, int minute, int seconde, const QLocale& locale) {
    // The old platform call counted its terminating zero, so its text ended
    // in a NUL that later parsing stepped over. That was an artefact of the
    // C buffer, not part of the time; the text here ends with the time.
    if (!QTime::isValid(heure, minute, seconde))
        return {};
    return locale.toString(QTime(heure, minute, seconde), timePicture24(locale));
}

QString FormatDateCourte(const QLocale& locale) {
    return locale.dateFormat(QLocale::ShortFormat);
}

DateOrder dateOrder(const QLocale& locale) {
    const QString picture = FormatDateCourte(locale);
    const qsizetype day = picture.indexOf(QLatin1Char('d'));
    const qsizetype month = picture.indexOf(QLatin1Char('M'));
    const qsizetype year = picture.indexOf(QLatin1Char('y'));
    if (year >= 0 && (day < 0 || year < day) && (month < 0 || year < month))
        return DateOrder::YearMonthDay;
    return month >= 0 && day >= 0 && month < day ? DateOrder::MonthDayYear
                                                 : DateOrder::DayMonthYear;
}

std::optional<QDate> dateFromText(int first, int second, int third, const QLocale& locale) {
    const auto fullYear = [](int year) {
        if (year >= 100)
            return year;
        return year < 30 ? 2000 + year : 1900 + year;
    };
    const auto read = [&](DateOrder order) {
        switch (order) {
        case DateOrder::YearMonthDay:
            return QDate(fullYear(first), second, third);
        case DateOrder::MonthDayYear:
            return QDate(fullYear(third), first, second);
        case DateOrder::DayMonthYear:
            break;
        }
        return QDate(fullYear(third), second, first);
    };
    const DateOrder preferred = dateOrder(locale);
    QDate date = read(preferred);
    for (const DateOrder other :
         {DateOrder::DayMonthYear, DateOrder::MonthDayYear, DateOrder::YearMonthDay}) {
        if (date.isValid())
            break;
        if (other != preferred)
            date = read(other);
    }
    if (!date.isValid())
        return std::nullopt;
    return date;
}

} // namespace qv
