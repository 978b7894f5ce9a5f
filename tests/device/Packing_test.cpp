#include "device/Packing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace qv {
namespace {

const QLocale kUs(QLocale::English, QLocale::UnitedStates);
const QLocale kFr(QLocale::French, QLocale::France);
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(RoundHalfEven, TiesGoToTheEvenNeighbour) {
    struct Case {
        double in;
        double out;
    };
    for (const Case& c : std::vector<Case>{{2.5, 2},
                                           {3.5, 4},
                                           {0.5, 0},
                                           {1.5, 2},
                                           {-2.5, -2},
                                           {-3.5, -4},
                                           {2.4999, 2},
                                           {2.5001, 3},
                                           {-0.6, -1},
                                           {255.5, 256},
                                           {65535.5, 65536}})
        EXPECT_EQ(roundHalfEven(c.in), c.out) << c.in;
}

TEST(CheckedIntegers, RoundThenCheckTheRange) {
    EXPECT_EQ(toInt32Checked(2147483647.4), 2147483647);
    EXPECT_EQ(toInt32Checked(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(toInt32Checked(-7.5), -8);
    EXPECT_EQ(toInt16Checked(32767.4), 32767);
    EXPECT_EQ(toInt16Checked(-32768.5), -32768);
    for (double bad : {2147483647.5, -2147483649.0, 1e300, kNaN, HUGE_VAL})
        EXPECT_THROW(toInt32Checked(bad), OverflowError) << bad;
    for (double bad : {32767.5, -32769.0, 40000.0, kNaN})
        EXPECT_THROW(toInt16Checked(bad), OverflowError) << bad;
}

struct ByteCase {
    double valeur;
    int faible;
    int fort;
};

const std::vector<ByteCase> kByteCases = {
    {0, 0, 0},         {1, 1, 0},         {255, 255, 0},       {256, 0, 1},      {300, 44, 1},
    {32767, 255, 127}, {65535, 255, 255}, {65535.4, 255, 255}, {2.5, 2, 0},      {3.5, 4, 0},
    {255.5, 0, 1},     {-0.4, 0, 0},      {-0.5, 0, 0},        {-0.6, 255, 255}, {-1, 255, 255},
    {-1.5, 254, 255},  {-255, 1, 255},    {-256, 0, 255},      {-257, 255, 254}, {-32768, 0, 128},
    {-65535, 1, 0},    {-65536, 0, 0},
};

TEST(OctetFaibleFort, SixteenBitTwosComplementBytes) {
    for (const ByteCase& c : kByteCases) {
        EXPECT_EQ(OctetFaible(c.valeur), c.faible) << c.valeur;
        EXPECT_EQ(OctetFort(c.valeur), c.fort) << c.valeur;
    }
}

TEST(OctetFaibleFort, AddressVariantsAgreeOnTheWholeRange) {
    for (const ByteCase& c : kByteCases) {
        EXPECT_EQ(OctetFaibleAdresse(c.valeur), c.faible) << c.valeur;
        EXPECT_EQ(OctetFortAdresse(c.valeur), c.fort) << c.valeur;
    }
}

TEST(OctetFaibleFort, HighByteOverflowsOutsideSixteenBits) {
    for (double valeur : {65536.0, 65535.5, 1e6, -65537.0, -65536.6, -1e6}) {
        EXPECT_THROW(OctetFort(valeur), OverflowError) << valeur;
        EXPECT_THROW(OctetFortAdresse(valeur), OverflowError) << valeur;
    }
    // The low byte alone never overflows inside 32 bits.
    EXPECT_EQ(OctetFaible(65536), 0);
    EXPECT_EQ(OctetFaible(-65537), 255);
    EXPECT_EQ(OctetFaible(2147483647), 255);
    EXPECT_EQ(OctetFaible(-2147483648.0), 0);
}

TEST(OctetFaibleFort, BothOverflowBeyondThirtyTwoBits) {
    for (double valeur : {2147483647.5, -2147483649.0, kNaN}) {
        EXPECT_THROW(OctetFaible(valeur), OverflowError) << valeur;
        EXPECT_THROW(OctetFaibleAdresse(valeur), OverflowError) << valeur;
        EXPECT_THROW(OctetFort(valeur), OverflowError) << valeur;
    }
}

TEST(DecoupeMot, SplitsAndZeroesOnlyNonNegativeOverflow) {
    struct Case {
        double valeur;
        std::array<long long, 2> octets;
    };
    for (const Case& c : std::vector<Case>{
             {0, {0, 0}},
             {300, {44, 1}},
             {65535, {255, 255}},
             {65536, {0, 0}},
             {70000, {112, 0}},
             {2.5, {2, 0}},
             {255.5, {0, 0}}, // the low byte rounds, the high byte truncates
             {-1, {255, 255}},
             {-32768, {0, 128}},
             {-65536, {0, 0}},
             {-0.4, {0, 255}},
             // Below -65536 nothing is checked: the caller gets numbers that
             // cannot become bytes.
             {-65537, {-1, 0}},
             {-70000, {-112, -17}},
         })
        EXPECT_EQ(DecoupeMot(c.valeur), c.octets) << c.valeur;
}

TEST(DecoupeMot, ThrowsWhenTheLowByteConversionOverflows) {
    for (double valeur : {2147483647.5, -2147549185.0, 1e12, kNaN})
        EXPECT_THROW(DecoupeMot(valeur), OverflowError) << valeur;
}

TEST(DecoupeLong, SplitsLowestFirst) {
    struct Case {
        double valeur;
        std::array<long long, 4> octets;
    };
    for (const Case& c : std::vector<Case>{
             {0, {0, 0, 0, 0}},
             {1, {1, 0, 0, 0}},
             {16909060, {4, 3, 2, 1}},
             {2147483647, {255, 255, 255, 127}},
             {-1, {255, 255, 255, 255}},
             {-2147483648.0, {0, 0, 0, 128}},
             {-16909060, {252, 252, 253, 254}},
             {4294967295.0, {255, 255, 255, 255}},
             // Each element is checked alone: the 256 on top goes, the rest stays.
             {4294967296.0, {0, 0, 0, 0}},
             {4294967554.0, {2, 1, 0, 0}},
             {1e30, {0, 0, 0, 0}},
             {2.5, {2, 0, 0, 0}},
             {3.5, {4, 0, 0, 0}},
             {254.6, {255, 0, 0, 0}},
             // Checked before rounding: anything above 255 goes, 255.4 too.
             {255.4, {0, 0, 0, 0}},
             // Negative values skip the check: a fraction can round to 256.
             {-0.3, {256, 255, 255, 255}},
             {-4294967297.0, {-1, 0, 0, 0}},
         })
        EXPECT_EQ(DecoupeLong(c.valeur), c.octets) << c.valeur;
}

TEST(DecoupeLong, HugeNegativeElementsStayOutOfByteRange) {
    const auto octets = DecoupeLong(-1e30);
    EXPECT_LT(octets[3], 0);
    EXPECT_THROW(toByte(octets[3]), OverflowError);
    for (double valeur : {kNaN, HUGE_VAL, -HUGE_VAL})
        EXPECT_THROW(DecoupeLong(valeur), OverflowError) << valeur;
}

TEST(AssembleLong, JoinsExactlyFourBytes) {
    struct Case {
        Bytes octets;
        std::int32_t valeur;
    };
    for (const Case& c : std::vector<Case>{
             {{255, 255, 255, 255}, -1},
             {{0, 0, 0, 128}, std::numeric_limits<std::int32_t>::min()},
             {{255, 255, 255, 127}, 2147483647},
             {{4, 3, 2, 1}, 16909060},
             {{0, 0, 0, 0}, 0},
             {{255, 255, 255}, 0},
             {{1, 2, 3, 4, 5}, 0},
             {{}, 0},
             {{0, 0, 0, 256}, 0},
             {{-1, 0, 0, 0}, -1},
         })
        EXPECT_EQ(AssembleLong(c.octets), c.valeur) << c.octets.size();
    EXPECT_THROW(AssembleLong(Bytes{0, 0, 0, 512}), OverflowError);
    EXPECT_THROW(AssembleLong(Bytes{0, 0, 0, -129}), OverflowError);
}

TEST(AssembleLong, UndoesDecoupeLong) {
    for (double valeur : {0.0, 1.0, -1.0, 2147483647.0, -2147483648.0, 16909060.0, -16909060.0,
                          123456789.0, -987654321.0}) {
        const auto octets = DecoupeLong(valeur);
        EXPECT_EQ(AssembleLong(Bytes(octets.begin(), octets.end())), valeur) << valeur;
    }
}

TEST(AssembleWord, SignedSixteenBitWord) {
    struct Case {
        long long low;
        long long high;
        std::int32_t valeur;
    };
    for (const Case& c : std::vector<Case>{{0, 0, 0},
                                           {44, 1, 300},
                                           {255, 127, 32767},
                                           {0, 128, -32768},
                                           {255, 255, -1},
                                           {1000, 1000, 191464}})
        EXPECT_EQ(assembleWord(c.low, c.high), c.valeur) << c.low << "," << c.high;
    EXPECT_THROW(assembleWord(0, 10000000000LL), OverflowError);
    EXPECT_THROW(assembleWord(0, std::numeric_limits<long long>::max()), OverflowError);
}

TEST(SysSepDecM, OneCharacterOfTheLocale) {
    EXPECT_EQ(SysSepDecM(kUs), QStringLiteral("."));
    EXPECT_EQ(SysSepDecM(kFr), QStringLiteral(","));
}

TEST(ValeurVersion, DashIsTheSeparatorElseTheFallback) {
    struct Case {
        QString caption;
        QLocale locale;
        double valeur;
    };
    for (const Case& c : std::vector<Case>{
             {"2-70", kUs, 2.70},
             {"2-70", kFr, 2.70},
             {"2.70", kUs, 2.70},
             {"2.70", kFr, 3.13},
             {"(12) 2.70", kUs, 3.13},
             {"", kUs, 3.13},
             {"-5", kUs, 0.5}, // the sign is a dash too
         })
        EXPECT_DOUBLE_EQ(Valeur_Version(c.caption, c.locale), c.valeur) << qPrintable(c.caption);
}

TEST(Composantes, ZeroNeedsTwoPartsFullScaleFallsBackToTheWholeText) {
    struct Case {
        QString texte;
        QLocale locale;
        double zero;
        double cent;
    };
    for (const Case& c : std::vector<Case>{
             {"12", kUs, 0, 12},
             {"a,12", kUs, 0, 12},
             {"3,12", kUs, 3, 12},
             {"3,a", kUs, 3, 0},
             {" 4 , 20 ", kUs, 4, 20},
             {"0.5,100", kUs, 0.5, 100},
             {"0.5,100", kFr, 0, 100},
             {"1,2,3", kUs, 0, 0},
             {"", kUs, 0, 0},
             {"abc", kUs, 0, 0},
             // A decimal comma is still a split point.
             {"2,5", kFr, 2, 5},
             {"12", kFr, 0, 12},
         }) {
        EXPECT_DOUBLE_EQ(ComposanteZero(c.texte, c.locale), c.zero) << qPrintable(c.texte);
        EXPECT_DOUBLE_EQ(ComposanteCent(c.texte, c.locale), c.cent) << qPrintable(c.texte);
    }
}

} // namespace
} // namespace qv
