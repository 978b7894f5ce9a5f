#include "config/LegacyNumber.h"
#include "config/LocaleNumber.h"
#include "link/Bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace qv {
namespace {

const QLocale kUs(QLocale::English, QLocale::UnitedStates);
const QLocale kFr(QLocale::French, QLocale::France);
const std::optional<double> none;

TEST(LegacyNumberText, MatchesTheRuntimeFormAndReadsBackWhateverTheLocale) {
    const std::pair<double, const char*> cases[] = {
        {5, " 5"},        {-0.0, " 0"},          {-3, "-3"},          {0.5, " .5"},
        {-0.5, "-.5"},    {-0.00012, "-.00012"}, {0.00001, " 1E-05"}, {1.5e-7, " 1.5E-07"},
        {1e15, " 1E+15"}, {1e100, " 1E+100"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(legacyNumberText(value), QString::fromLatin1(text)) << value;
    // Fifteen significant digits, rounded.
    EXPECT_EQ(legacyNumberText(0.1 + 0.2), " .3");
    EXPECT_EQ(legacyNumberText(2.0 / 3), " .666666666666667");
    EXPECT_EQ(legacyNumberText(123456789012345), " 123456789012345");
    EXPECT_EQ(legacyNumberText(1234567890123456), " 1.23456789012346E+15");
    EXPECT_EQ(legacyNumberText(99999.999999999999), " 100000");
    EXPECT_THROW(legacyNumberText(std::numeric_limits<double>::quiet_NaN()), OverflowError);
    EXPECT_THROW(legacyNumberText(std::numeric_limits<double>::infinity()), OverflowError);

    for (double v : {-0.5, 1234.5678, 1e-7, -1e20}) {
        const QString text = legacyNumberText(v);
        for (const QLocale& locale : {QLocale::c(), kFr})
            EXPECT_DOUBLE_EQ(parseLegacyNumber(text, locale).value_or(-99), v) << v;
        EXPECT_DOUBLE_EQ(legacyLeadingNumber(text), v) << v;
    }
}

TEST(ParseLegacyNumber, ReadsWholeNumbersOnly) {
    struct Case {
        const char* text;
        std::optional<double> english;
        std::optional<double> french;
    };
    const Case cases[] = {
        {"5 ", 5, 5},         {"\t-.5 ", -0.5, -0.5},      {"2.5", 2.5, 2.5},
        {"2,5", none, 2.5},   {"1.5E-07", 1.5e-7, 1.5e-7}, {"   ", none, none},
        {"5abc", none, none}, {"1e", none, none},          {"1e999", none, none},
        {"True", none, none},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parseLegacyNumber(QString::fromUtf8(c.text), kUs), c.english) << c.text;
        EXPECT_EQ(parseLegacyNumber(QString::fromUtf8(c.text), kFr), c.french) << c.text;
    }
}

TEST(ParseLegacyBoolean, TakesWordsAndNumbers) {
    const std::pair<const char*, std::optional<bool>> cases[] = {
        {" true ", true},      {"FALSE", false},   {"0", false},
        {"-1", true},          {"0,0", false},     {"0.5", true},
        {"yes", std::nullopt}, {"", std::nullopt}, {"Truee", std::nullopt},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(parseLegacyBoolean(QString::fromUtf8(text), kFr), value) << text;
}

} // namespace
} // namespace qv
