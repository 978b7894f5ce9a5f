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

} // namespace
} // namespace qv
