#include "config/VbFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qv {
namespace {

const QLocale kC = QLocale::c();
const QLocale kFr(QLocale::French, QLocale::France);

// Rounding is half away from zero on the decimal form, so 2.675 (just below
// the tie in binary) still goes up; a carry can add a digit.
TEST(TimekeepingVbFormat, Pictures) {
    struct Case {
        double value;
        const char* picture;
        QLocale locale;
        const char* text;
    };
    const Case cases[] = {
        {32, "#.0000", kFr, "32,0000"}, {0.5, "#.0000", kC, ".5000"},   {0, "#.0000", kC, ".0000"},
        {7.2, "##.##", kFr, "7,2"},     {0, "##.##", kFr, ","},         {7, "##.##", kC, "7."},
        {0.004, "##.##", kC, "."},      {0.996, "##.##", kC, "1."},     {99.96, "0.0", kC, "100.0"},
        {0.05, "0.0", kC, "0.1"},       {12.345, "##.##", kC, "12.35"}, {2.675, "0.00", kC, "2.68"},
        {-1.25, "0.0", kC, "-1.3"},     {-0.01, "0.0", kC, "-0.0"},     {5, "00", kC, "05"},
        {123, "00", kC, "123"},         {2.5, "00", kC, "03"},          {1e3, "0", kC, "1000"}};
    for (const auto& c : cases)
        EXPECT_EQ(formatVb(c.value, c.picture, c.locale), QString::fromUtf8(c.text))
            << c.value << " " << c.picture;
    EXPECT_EQ(formatVb(10176.0 / 319, "#.0000", kC), "31.8997");
    EXPECT_EQ(formatVb(1e20, "0", kC), "100000000000000000000");
    EXPECT_EQ(formatVb(std::nan(""), "0.0", kC), QString());
    EXPECT_EQ(formatVb(std::numeric_limits<double>::infinity(), "0.0", kC), QString());
}

TEST(TimekeepingVbFormat, PlainNumberText) {
    struct Case {
        double value;
        QLocale locale;
        const char* text;
    };
    const Case cases[] = {{0, kC, "0"},           {60, kC, "60"},      {-0.25, kC, "-0.25"},
                          {1.5, kFr, "1,5"},      {1e15, kC, "1E+15"}, {-2.5e20, kC, "-2.5E+20"},
                          {0.0001, kC, "0.0001"}, {1e-5, kC, "1E-05"}, {1.5e-7, kFr, "1,5E-07"}};
    for (const auto& c : cases)
        EXPECT_EQ(vbNumberText(c.value, c.locale), QString::fromUtf8(c.text)) << c.value;
    EXPECT_EQ(vbNumberText(1000.0 / 3, kC), "333.333333333333");
    EXPECT_EQ(vbNumberText(1e14, kC), "100000000000000");
    EXPECT_EQ(vbNumberText(0.1 + 0.2, kC), "0.3");
    EXPECT_EQ(vbNumberText(std::nan(""), kC), QString());
}

} // namespace
} // namespace qv
