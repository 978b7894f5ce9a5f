#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <cstdint>
#include <optional>

// Calendar dates and the device's time value.
//
// A calendar date is a double day count, day 0 being 30 December 1899 and
// the fraction the time of day (the OLE automation date): 25569.5 is
// 1 January 1970 at noon. Before day 0 the fraction still counts forward
// from midnight: -1.25 is 29 December 1899 at 06:00.
//
// The device time value is a 32-bit count of seconds since 1 January 1970
// 00:00:00 local wall-clock time, no time zone, and it is one day high from
// 29 February to 31 December of every year divisible by four. The firmware
// and every date already stored in a device rely on that, so both
// conversions keep it; they are each other's inverse except that 31 December
// of such a year comes back as 1 January of the next.

namespace qv {

inline constexpr double kOleDateOf1970 = 25569.0;

// The wall-clock fields of `dateTime`, whatever its time zone. An invalid
// date gives 0.
double oleDateFromDateTime(const QDateTime& dateTime);

// The date and time of day of a day count, rounded to the nearest second the
// way the old date functions split a date. Local time; a time that does not
// exist locally (a daylight-saving gap) is moved by Qt, so code that only
// needs the fields should take date() and time(). Throws qv::OverflowError
// outside 1 January 100 to 31 December 9999, and for NaN.
QDateTime dateTimeFromOleDate(double date);

// The device time value of `date`, with the time of day taken from `heure`,
// or from `date` when `heure` is -1.0 (only the time of day of `heure`
// counts). A date below 1.0 gives 0 without looking further. Throws
// qv::OverflowError for a date out of range or a result beyond 32 bits
// (before 13 December 1901 20:45:52, after 19 January 2038 03:14:07).
std::int32_t DateEnSecondes(double date, double heure);

// A device time value as "<short date> HH:mm:ss" in `locale`. Never throws:
// a value that gives no date or time (a negative part of a day, a count
// beyond year 9999, NaN) gives an empty text.
QString SecondesEnDate(double secondes, const QLocale& locale = QLocale::system());

// The time in the locale's own time format, forced to 24 hours and without
// an AM/PM marker or time zone. Empty when the fields do not make a time.
QString FormatHeure(int heure, int minute, int seconde, const QLocale& locale = QLocale::system());

// The locale's short date picture, in letters d, M and y ("dd/MM/yyyy").
QString FormatDateCourte(const QLocale& locale = QLocale::system());

// The order of day, month and year in the locale's short date picture.
enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };
DateOrder dateOrder(const QLocale& locale);

// A date text of three numbers ("21/11/26"), given as the numbers in the
// order they are written, read the way the regional settings read it: in
// the locale's order first, then in the other orders until one makes a
// date. Two-digit years fall in 1930..2029. nullopt when no order does.
std::optional<QDate> dateFromText(int first, int second, int third, const QLocale& locale);

} // namespace qv
