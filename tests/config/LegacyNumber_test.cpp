#include "config/LegacyNumber.h"
#include "link/Bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qv {
namespace {

struct TextCase {
    double value;
    const char* text;
};

class LegacyNumberText : public ::testing::TestWithParam<TextCase> {};

TEST_P(LegacyNumberText, MatchesTheRuntimeForm) {
    EXPECT_EQ(legacyNumberText(GetParam().value), QString::fromLatin1(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Values, LegacyNumberText,
    ::testing::Values(TextCase{5, " 5"}, TextCase{0, " 0"}, TextCase{-0.0, " 0"}, TextCase{1, " 1"},
                      TextCase{-3, "-3"}, TextCase{100, " 100"}, TextCase{0.5, " .5"},
                      TextCase{-0.5, "-.5"}, TextCase{2.5, " 2.5"},
                      TextCase{1234.5678, " 1234.5678"}, TextCase{0.1 + 0.2, " .3"},
                      TextCase{1.0 / 3, " .333333333333333"},
                      TextCase{2.0 / 3, " .666666666666667"}, TextCase{0.0001, " .0001"},
                      TextCase{-0.00012, "-.00012"}, TextCase{0.00001, " 1E-05"},
                      TextCase{1.5e-7, " 1.5E-07"}, TextCase{-1e-10, "-1E-10"},
                      TextCase{123456789012345, " 123456789012345"}, TextCase{1e15, " 1E+15"},
                      TextCase{1234567890123456, " 1.23456789012346E+15"},
                      TextCase{1e100, " 1E+100"}, TextCase{99999.999999999999, " 100000"}));

TEST(LegacyNumberTextLimits, NonFiniteValuesHaveNoForm) {
    EXPECT_THROW(legacyNumberText(std::numeric_limits<double>::quiet_NaN()), OverflowError);
    EXPECT_THROW(legacyNumberText(std::numeric_limits<double>::infinity()), OverflowError);
}

TEST(LegacyNumberTextLimits, EveryTextReadsBackAsItsValueWhateverTheLocale) {
    const QLocale french(QLocale::French, QLocale::France);
    for (double v : {5.0, -0.5, 0.5, 2.5, 1234.5678, 1e-7, -1e20, 3600.0, 0.0}) {
        const QString text = legacyNumberText(v);
        for (const QLocale& locale : {QLocale::c(), french}) {
            const auto back = parseLegacyNumber(text, locale);
            ASSERT_TRUE(back.has_value()) << text.toStdString();
            EXPECT_DOUBLE_EQ(*back, v) << text.toStdString();
        }
        EXPECT_DOUBLE_EQ(legacyLeadingNumber(text), v) << text.toStdString();
    }
}

struct ParseCase {
    const char* text;
    std::optional<double> english;
    std::optional<double> french;
};

class ParseLegacyNumber : public ::testing::TestWithParam<ParseCase> {};

TEST_P(ParseLegacyNumber, ReadsWholeNumbersOnly) {
    const auto& c = GetParam();
    const QString text = QString::fromUtf8(c.text);
    EXPECT_EQ(parseLegacyNumber(text, QLocale(QLocale::English, QLocale::UnitedStates)), c.english);
    EXPECT_EQ(parseLegacyNumber(text, QLocale(QLocale::French, QLocale::France)), c.french);
}

const std::optional<double> none;

INSTANTIATE_TEST_SUITE_P(
    Texts, ParseLegacyNumber,
    ::testing::Values(ParseCase{" 5", 5, 5}, ParseCase{"5 ", 5, 5}, ParseCase{"\t-.5 ", -0.5, -0.5},
                      ParseCase{"2.5", 2.5, 2.5}, ParseCase{"2,5", none, 2.5},
                      ParseCase{"+4", 4, 4}, ParseCase{"5.", 5, 5}, ParseCase{"1e3", 1000, 1000},
                      ParseCase{"1.5E-07", 1.5e-7, 1.5e-7}, ParseCase{"", none, none},
                      ParseCase{"   ", none, none}, ParseCase{".", none, none},
                      ParseCase{"-", none, none}, ParseCase{"abc", none, none},
                      ParseCase{"5abc", none, none}, ParseCase{"1 2", none, none},
                      ParseCase{"1e", none, none}, ParseCase{"1e999", none, none},
                      ParseCase{"1.2.3", none, none}, ParseCase{"True", none, none}));

struct LeadingCase {
    const char* text;
    double value;
};

class LegacyLeadingNumber : public ::testing::TestWithParam<LeadingCase> {};

TEST_P(LegacyLeadingNumber, ReadsTheFrontOfTheText) {
    EXPECT_DOUBLE_EQ(legacyLeadingNumber(QString::fromUtf8(GetParam().text)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Texts, LegacyLeadingNumber,
                         ::testing::Values(LeadingCase{" 2.5", 2.5}, LeadingCase{"12abc", 12},
                                           LeadingCase{"abc", 0}, LeadingCase{"", 0},
                                           LeadingCase{"-.5x", -0.5}, LeadingCase{"1 2 3", 123},
                                           LeadingCase{"\t7\n", 7}, LeadingCase{"2,5", 2},
                                           LeadingCase{"1e3x", 1000}, LeadingCase{"1ex", 1},
                                           LeadingCase{"--5", 0}, LeadingCase{".", 0},
                                           LeadingCase{"3.25.7", 3.25}));

TEST(LegacyLeadingNumberLimits, ANumberBeyondTheRangeIsAnOverflow) {
    EXPECT_THROW(legacyLeadingNumber(QStringLiteral("1e999")), OverflowError);
}

struct BooleanCase {
    const char* text;
    std::optional<bool> value;
};

class ParseLegacyBoolean : public ::testing::TestWithParam<BooleanCase> {};

TEST_P(ParseLegacyBoolean, TakesWordsAndNumbers) {
    EXPECT_EQ(parseLegacyBoolean(QString::fromUtf8(GetParam().text),
                                 QLocale(QLocale::French, QLocale::France)),
              GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Texts, ParseLegacyBoolean,
                         ::testing::Values(BooleanCase{"True", true}, BooleanCase{"FALSE", false},
                                           BooleanCase{" true ", true}, BooleanCase{"0", false},
                                           BooleanCase{"-1", true}, BooleanCase{"0,0", false},
                                           BooleanCase{"0.5", true},
                                           BooleanCase{"yes", std::nullopt},
                                           BooleanCase{"", std::nullopt},
                                           BooleanCase{"Truee", std::nullopt}));

} // namespace
} // namespace qv
