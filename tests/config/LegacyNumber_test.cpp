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
        {"5 ", 5, 5},
        {"\t-.5 ", -0.5, -0.5},
        {"2.5", 2.5, 2.5},
        {"2,5", none, 2.5},
        {"+4", 4, 4},
        {"5.", 5, 5},
        {"1.5E-07", 1.5e-7, 1.5e-7},
        {"   ", none, none},
        {".", none, none},
        {"5abc", none, none},
        {"1 2", none, none},
        {"1e", none, none},
        {"1e999", none, none},
        {"1.2.3", none, none},
        {"True", none, none},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parseLegacyNumber(QString::fromUtf8(c.text), kUs), c.english) << c.text;
        EXPECT_EQ(parseLegacyNumber(QString::fromUtf8(c.text), kFr), c.french) << c.text;
    }
}

TEST(LegacyLeadingNumber, ReadsTheFrontOfTheText) {
    const std::pair<const char*, double> cases[] = {
        {"12abc", 12}, {"", 0},        {"-.5x", -0.5}, {"1 2 3", 123}, {"\t7\n", 7},
        {"2,5", 2},    {"1e3x", 1000}, {"1ex", 1},     {"--5", 0},     {"3.25.7", 3.25},
    };
    for (const auto& [text, value] : cases)
        EXPECT_DOUBLE_EQ(legacyLeadingNumber(QString::fromUtf8(text)), value) << text;
    EXPECT_THROW(legacyLeadingNumber(QStringLiteral("1e999")), OverflowError);
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

TEST(ParseLocaleNumber, FollowsTheLocaleSeparatorOnly) {
    struct Case {
        QString text;
        QLocale locale;
        std::optional<double> value;
    };
    for (const Case& c : std::vector<Case>{{"12,5", kFr, 12.5},
                                           {"12.5", kFr, none},
                                           {"12,50", kUs, none}, // not a valid grouping either
                                           {"1,000.5", kUs, 1000.5},
                                           {"\t7\n", kFr, 7},
                                           {"1e3", kUs, 1000},
                                           {",5", kFr, 0.5},
                                           {"   ", kUs, none},
                                           {"12abc", kUs, none},
                                           {"inf", kUs, none},
                                           {"nan", kUs, none},
                                           {"1e400", kUs, none},
                                           {"&H10", kUs, none}})
        EXPECT_EQ(parseLocaleNumber(c.text, c.locale), c.value)
            << qPrintable(c.text) << " in " << qPrintable(c.locale.name());
    QLocale strict = kUs;
    strict.setNumberOptions(QLocale::RejectGroupSeparator);
    EXPECT_EQ(parseLocaleNumber("1,000", strict), none);
    EXPECT_EQ(parseLocaleNumber("1000", strict), 1000.0);
}

} // namespace
} // namespace qv
