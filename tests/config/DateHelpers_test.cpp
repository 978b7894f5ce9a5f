#include "config/DateHelpers.h"
#include "link/Bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace qv {
namespace {

const QLocale kUs(QLocale::English, QLocale::UnitedStates);
const QLocale kFr(QLocale::French, QLocale::France);
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Day counts built by hand, so that the conversion under test is not also
// the oracle: 25569 is 1 January 1970.
double ole(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
    return static_cast<double>(QDate(1970, 1, 1).daysTo(QDate(y, m, d))) + 25569.0 +
           (h * 3600 + mi * 60 + s) / 86400.0;
}

// Plain seconds since 1970 with no fault and no zone.
long long trueCount(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
    return QDate(1970, 1, 1).daysTo(QDate(y, m, d)) * 86400LL + h * 3600 + mi * 60 + s;
}

TEST(OleDate, ConvertsBothWaysToTheNearestSecond) {
    for (const auto& [dateTime, date] : std::vector<std::pair<QDateTime, double>>{
             {QDateTime(QDate(1899, 12, 30), QTime(12, 0)), 0.5},
             {QDateTime(QDate(1899, 12, 29), QTime(6, 0)), -1.25},
             {QDateTime(QDate(2024, 2, 28), QTime(12, 0)), 45350.5},
             {QDateTime(QDate(9999, 12, 31), QTime(0, 0)), 2958465.0}}) {
        EXPECT_DOUBLE_EQ(oleDateFromDateTime(dateTime), date) << date;
        EXPECT_EQ(dateTimeFromOleDate(date), QDateTime(dateTime.date(), dateTime.time())) << date;
    }
    EXPECT_EQ(oleDateFromDateTime(QDateTime()), 0.0);
    EXPECT_EQ(dateTimeFromOleDate(25569.0 + 86399.6 / 86400.0),
              QDateTime(QDate(1970, 1, 2), QTime(0, 0)));
    EXPECT_EQ(dateTimeFromOleDate(25569.0 + 3.4 / 86400.0).time(), QTime(0, 0, 3));
    for (double bad : {2958466.0, -657435.0, kNaN})
        EXPECT_THROW(dateTimeFromOleDate(bad), OverflowError) << bad;
}

TEST(DateEnSecondes, LeapYearsAreOneDayHighFrom29February) {
    struct Case {
        double date;
        double heure;
        long long secondes;
    };
    const double soir = ole(2024, 3, 1, 18);
    for (const Case& c :
         std::vector<Case>{{0.999, -1.0, 0},
                           {ole(1970, 12, 31, 23, 59, 59), -1.0, 31535999},
                           {ole(2000, 2, 28), -1.0, trueCount(2000, 2, 28)},
                           {ole(2000, 3, 1), -1.0, trueCount(2000, 3, 1) + 86400},
                           {ole(2024, 2, 29), -1.0, trueCount(2024, 3, 1)},
                           {ole(2024, 12, 31, 23, 59, 59), -1.0, trueCount(2025, 1, 1, 23, 59, 59)},
                           {ole(2025, 3, 1), -1.0, trueCount(2025, 3, 1)},
                           {ole(2038, 1, 19, 3, 14, 7), -1.0, 2147483647},
                           {ole(1901, 12, 13, 20, 45, 52), -1.0, -2147483648LL},
                           // The time of day: from the date, midnight, or only the time
                           // part of `heure`.
                           {soir, 0.0, trueCount(2024, 3, 2)},
                           {soir, 0.25, trueCount(2024, 3, 2, 6)},
                           {soir, ole(1999, 5, 5, 6, 30), trueCount(2024, 3, 2, 6, 30)}})
        EXPECT_EQ(DateEnSecondes(c.date, c.heure), c.secondes) << c.date << " " << c.heure;
    for (double date : {ole(2038, 1, 19, 3, 14, 8), ole(1901, 12, 13, 20, 45, 51), 3e6, kNaN})
        EXPECT_THROW(DateEnSecondes(date, -1.0), OverflowError) << date;
    EXPECT_THROW(DateEnSecondes(ole(2024, 1, 1), 1e7), OverflowError);
}

TEST(SecondesEnDate, GoesBackADayInYearsDivisibleByFour) {
    for (const auto& [secondes, texte] : std::vector<std::pair<double, QString>>{
             {0, "01/01/1970 00:00:00"},
             {double(trueCount(2024, 2, 29)), "28/02/2024 00:00:00"},
             {double(trueCount(2024, 3, 1)), "29/02/2024 00:00:00"},
             {double(trueCount(2024, 3, 1) + 86400), "01/03/2024 00:00:00"},
             {double(trueCount(2025, 1, 1)), "01/01/2025 00:00:00"},
             {2147483647, "19/01/2038 03:14:07"},
             // 2100 has no 29 February but is divisible by four.
             {double(trueCount(2100, 3, 1)), "28/02/2100 00:00:00"},
             {double(trueCount(2100, 3, 2)), "01/03/2100 00:00:00"},
             // Fractions of a second round half to even.
             {2.5, "01/01/1970 00:00:02"},
             {3.5, "01/01/1970 00:00:04"},
             // A whole number of days before 1970 still makes a time.
             {-86400, "31/12/1969 00:00:00"}})
        EXPECT_EQ(SecondesEnDate(secondes, kFr), texte) << secondes;
    // No text when no time comes out.
    for (double secondes : {59.6, -1.0, 1e15, kNaN, HUGE_VAL})
        EXPECT_EQ(SecondesEnDate(secondes, kFr), QString()) << secondes;
    EXPECT_EQ(SecondesEnDate(45296, kUs), "1/1/70 12:34:56"); // the locale's short date
}

TEST(SecondesEnDate, UndoesDateEnSecondesExceptOn31DecemberOfLeapYears) {
    for (int year : {1970, 2000, 2023, 2024}) {
        for (QDate d(year, 1, 1); d.year() == year; d = d.addDays(1)) {
            const double secondes =
                DateEnSecondes(ole(d.year(), d.month(), d.day(), 12, 34, 56), -1.0);
            const QDate attendue =
                d.month() == 12 && d.day() == 31 && QDate::isLeapYear(year) ? d.addDays(1) : d;
            EXPECT_EQ(SecondesEnDate(secondes, kFr),
                      attendue.toString(QStringLiteral("dd/MM/yyyy")) + " 12:34:56")
                << qPrintable(d.toString(Qt::ISODate));
        }
    }
}

TEST(FormatHeure, TwentyFourHoursWithoutMarker) {
    struct Case {
        QLocale locale;
        int h, m, s;
        QString texte;
    };
    for (const Case& c : std::vector<Case>{
             {kUs, 14, 5, 9, "14:05:09"},
             {kUs, 9, 5, 3, "9:05:03"},
             {kFr, 0, 0, 0, "00:00:00"},
             {QLocale(QLocale::French, QLocale::Canada), 14, 5, 9, "14 h 05 min 09 s"},
             {QLocale(QLocale::Korean, QLocale::SouthKorea), 14, 5, 9,
              QString::fromUtf8("14시 5분 9초")},
             {kUs, 24, 0, 0, ""},
             {kUs, 0, 60, 0, ""},
             {kUs, 0, 0, 60, ""},
             {kUs, -1, 0, 0, ""}})
        EXPECT_EQ(FormatHeure(c.h, c.m, c.s, c.locale), c.texte)
            << qPrintable(c.locale.name()) << " " << c.h << ":" << c.m << ":" << c.s;
    EXPECT_EQ(FormatDateCourte(kFr), "dd/MM/yyyy");
    EXPECT_EQ(FormatDateCourte(kUs), "M/d/yy");
}

TEST(DateFromText, ReadInTheLocalesOrderThenInTheOthers) {
    const QLocale french(QLocale::French, QLocale::France);
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const QLocale japan(QLocale::Japanese, QLocale::Japan);  // yyyy/MM/dd
    const QLocale sweden(QLocale::Swedish, QLocale::Sweden); // yyyy-MM-dd
    const QLocale hungary(QLocale::Hungarian, QLocale::Hungary);
    EXPECT_EQ(dateOrder(french), DateOrder::DayMonthYear);
    EXPECT_EQ(dateOrder(us), DateOrder::MonthDayYear);
    EXPECT_EQ(dateOrder(japan), DateOrder::YearMonthDay);
    EXPECT_EQ(dateOrder(sweden), DateOrder::YearMonthDay);
    EXPECT_EQ(dateOrder(hungary), DateOrder::YearMonthDay);

    const struct {
        const char* text;
        int a, b, c;
        QLocale locale;
        std::optional<QDate> date;
    } cases[] = {
        {"05/11/26 day first", 5, 11, 26, french, QDate(2026, 11, 5)},
        {"05/11/26 month first", 5, 11, 26, us, QDate(2026, 5, 11)},
        {"05/11/26 year first", 5, 11, 26, japan, QDate(2005, 11, 26)},
        {"05/11/26 year first, dashes", 5, 11, 26, sweden, QDate(2005, 11, 26)},
        {"21/11/26 month first falls back", 21, 11, 26, us, QDate(2026, 11, 21)},
        {"05/13/26 year first falls back", 5, 13, 26, japan, QDate(2026, 5, 13)},
        {"29/02/24 year first", 29, 2, 24, japan, QDate(2029, 2, 24)},
        {"01/01/30 windowed", 1, 1, 30, french, QDate(1930, 1, 1)},
        {"29/12/31 windowed", 29, 12, 31, japan, QDate(2029, 12, 31)},
        {"00/00/00 no date", 0, 0, 0, japan, std::nullopt},
        {"31/31/31 no date", 31, 31, 31, french, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(dateFromText(c.a, c.b, c.c, c.locale), c.date);
    }
}

} // namespace
} // namespace qv
