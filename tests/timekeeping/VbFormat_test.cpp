#include "config/VbFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qv {
namespace {

const QLocale kC = QLocale::c();
const QLocale kFrench(QLocale::French, QLocale::France);

TEST(TimekeepingVbFormat, Pictures) {
    struct Case {
        double value;
        const char* picture;
        QLocale locale;
        const char* text;
    };
    const Case cases[] = {
        {31.899686520376175, "#.0000", kC, "31.8997"},
        {32, "#.0000", kFrench, "32,0000"},
        {0.5, "#.0000", kC, ".5000"},
        {0, "#.0000", kC, ".0000"},
        {7.2, "##.##", kFrench, "7,2"},
        {0.75, "##.##", kFrench, ",75"},
        {0, "##.##", kFrench, ","},
        {7, "##.##", kC, "7."},
        {12.345, "##.##", kC, "12.35"}, // half away from zero on the decimal form
        {2.675, "0.00", kC, "2.68"},    // binary value below the tie
        {1234567.891, "##.##", kC, "1234567.89"},
        {0.004, "##.##", kC, "."},
        {0.996, "##.##", kC, "1."},
        {8.98, "0.0", kC, "9.0"},
        {99.96, "0.0", kC, "100.0"},
        {0.04, "0.0", kC, "0.0"},
        {0.05, "0.0", kC, "0.1"},
        {-1.25, "0.0", kC, "-1.3"},
        {-0.01, "0.0", kC, "-0.0"},
        {5, "00", kC, "05"},
        {123, "00", kC, "123"},
        {2.5, "00", kC, "03"},
        {0, "00", kC, "00"},
        {1e20, "0", kC, "100000000000000000000"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(formatVb(c.value, c.picture, c.locale), QString::fromUtf8(c.text))
            << c.value << " " << c.picture;
    EXPECT_EQ(formatVb(std::nan(""), "0.0", kC), QString());
    EXPECT_EQ(formatVb(std::numeric_limits<double>::infinity(), "0.0", kC), QString());
}

TEST(TimekeepingVbFormat, PlainNumberText) {
    struct Case {
        double value;
        QLocale locale;
        const char* text;
    };
    const Case cases[] = {
        {0, kC, "0"},
        {60, kC, "60"},
        {0.5, kC, "0.5"},
        {-0.25, kC, "-0.25"},
        {1.5, kFrench, "1,5"},
        {1000.0 / 3, kC, "333.333333333333"},
        {0.1 + 0.2, kC, "0.3"},
        {1e14, kC, "100000000000000"},
        {1e15, kC, "1E+15"},
        {-2.5e20, kC, "-2.5E+20"},
        {0.0001, kC, "0.0001"},
        {0.00001, kC, "1E-05"},
        {1.5e-7, kFrench, "1,5E-07"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(vbNumberText(c.value, c.locale), QString::fromUtf8(c.text)) << c.value;
    EXPECT_EQ(vbNumberText(std::nan(""), kC), QString());
}

} // namespace
} // namespace qv
