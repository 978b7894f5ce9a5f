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

TEST(Packing, RoundingIsHalfToEvenThenRangeChecked) {
    const std::pair<double, double> cases[] = {
        {2.5, 2}, {3.5, 4}, {-2.5, -2}, {2.5001, 3}, {-0.6, -1}, {65535.5, 65536},
    };
    for (const auto& [in, out] : cases)
        EXPECT_EQ(roundHalfEven(in), out) << in;
    EXPECT_EQ(toInt32Checked(2147483647.4), 2147483647);
    EXPECT_EQ(toInt32Checked(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(toInt16Checked(-32768.5), -32768);
    for (double bad : {2147483647.5, -2147483649.0, kNaN, HUGE_VAL})
        EXPECT_THROW(toInt32Checked(bad), OverflowError) << bad;
    for (double bad : {32767.5, -32769.0, kNaN})
        EXPECT_THROW(toInt16Checked(bad), OverflowError) << bad;
}

TEST(Packing, OctetFaibleFortAreSixteenBitTwosComplementBytes) {
    struct Case {
        double valeur;
        int faible, fort;
    };
    const Case cases[] = {
        {300, 44, 1},     {65535.4, 255, 255}, {2.5, 2, 0},      {255.5, 0, 1},    {-0.5, 0, 0},
        {-0.6, 255, 255}, {-1.5, 254, 255},    {-257, 255, 254}, {-32768, 0, 128}, {-65536, 0, 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(OctetFaible(c.valeur), c.faible) << c.valeur;
        EXPECT_EQ(OctetFort(c.valeur), c.fort) << c.valeur;
        EXPECT_EQ(OctetFaibleAdresse(c.valeur), c.faible) << c.valeur;
        EXPECT_EQ(OctetFortAdresse(c.valeur), c.fort) << c.valeur;
    }
    // The high byte overflows outside sixteen bits, the low byte only
    // outside thirty-two.
    for (double valeur : {65535.5, -65536.6}) {
        EXPECT_THROW(OctetFort(valeur), OverflowError) << valeur;
        EXPECT_THROW(OctetFortAdresse(valeur), OverflowError) << valeur;
    }
    EXPECT_EQ(OctetFaible(-65537), 255);
    EXPECT_EQ(OctetFaible(2147483647), 255);
    for (double valeur : {2147483647.5, -2147483649.0, kNaN}) {
        EXPECT_THROW(OctetFaible(valeur), OverflowError) << valeur;
        EXPECT_THROW(OctetFaibleAdresse(valeur), OverflowError) << valeur;
    }
}

TEST(Packing, DecoupeMotZeroesOnlyNonNegativeOverflow) {
    const std::pair<double, std::array<long long, 2>> cases[] = {
        {300, {44, 1}},
        {65535, {255, 255}},
        {65536, {0, 0}},
        {70000, {112, 0}},
        {255.5, {0, 0}}, // the low byte rounds, the high byte truncates
        {-1, {255, 255}},
        {-0.4, {0, 255}},
        // Below -65536 nothing is checked: the caller gets numbers that
        // cannot become bytes.
        {-70000, {-112, -17}},
    };
    for (const auto& [valeur, octets] : cases)
        EXPECT_EQ(DecoupeMot(valeur), octets) << valeur;
    for (double valeur : {2147483647.5, -2147549185.0, kNaN})
        EXPECT_THROW(DecoupeMot(valeur), OverflowError) << valeur;
}

TEST(Packing, DecoupeLongSplitsLowestFirstCheckingEachElementAlone) {
    const std::pair<double, std::array<long long, 4>> cases[] = {
        {16909060, {4, 3, 2, 1}},
        {-2147483648.0, {0, 0, 0, 128}},
        {4294967295.0, {255, 255, 255, 255}},
        // The 256 on top goes, the rest stays.
        {4294967554.0, {2, 1, 0, 0}},
        {3.5, {4, 0, 0, 0}},
        // Checked before rounding: anything above 255 goes, 255.4 too.
        {255.4, {0, 0, 0, 0}},
        // Negative values skip the check: a fraction can round to 256.
        {-0.3, {256, 255, 255, 255}},
        {-4294967297.0, {-1, 0, 0, 0}},
    };
    for (const auto& [valeur, octets] : cases)
        EXPECT_EQ(DecoupeLong(valeur), octets) << valeur;
    EXPECT_LT(DecoupeLong(-1e30)[3], 0);
    EXPECT_THROW(toByte(DecoupeLong(-1e30)[3]), OverflowError);
    for (double valeur : {kNaN, HUGE_VAL})
        EXPECT_THROW(DecoupeLong(valeur), OverflowError) << valeur;
}

TEST(Packing, AssembleJoinsSignedWordsAndExactlyFourBytes) {
    const std::pair<Bytes, std::int32_t> cases[] = {
        {{0, 0, 0, 128}, std::numeric_limits<std::int32_t>::min()},
        {{4, 3, 2, 1}, 16909060},
        {{255, 255, 255}, 0},
        {{1, 2, 3, 4, 5}, 0},
        {{0, 0, 0, 256}, 0},
        {{-1, 0, 0, 0}, -1},
    };
    for (const auto& [octets, valeur] : cases)
        EXPECT_EQ(AssembleLong(octets), valeur) << octets.size();
    EXPECT_THROW(AssembleLong(Bytes{0, 0, 0, 512}), OverflowError);
    EXPECT_THROW(AssembleLong(Bytes{0, 0, 0, -129}), OverflowError);
    for (double valeur : {-1.0, 2147483647.0, -987654321.0}) {
        const auto octets = DecoupeLong(valeur);
        EXPECT_EQ(AssembleLong(Bytes(octets.begin(), octets.end())), valeur) << valeur;
    }

    EXPECT_EQ(assembleWord(44, 1), 300);
    EXPECT_EQ(assembleWord(0, 128), -32768);
    EXPECT_EQ(assembleWord(255, 255), -1);
    EXPECT_EQ(assembleWord(1000, 1000), 191464);
    EXPECT_THROW(assembleWord(0, 10000000000LL), OverflowError);
}

TEST(Packing, VersionAndScaleTextsFollowTheLocale) {
    EXPECT_EQ(SysSepDecM(kUs), QStringLiteral("."));
    EXPECT_EQ(SysSepDecM(kFr), QStringLiteral(","));
    struct Case {
        QString caption;
        QLocale locale;
        double valeur;
    };
    for (const Case& c : std::vector<Case>{{"2-70", kFr, 2.70},
                                           {"2.70", kUs, 2.70},
                                           {"2.70", kFr, 3.13},
                                           {"(12) 2.70", kUs, 3.13},
                                           {"-5", kUs, 0.5}}) // the sign is a dash too
        EXPECT_DOUBLE_EQ(Valeur_Version(c.caption, c.locale), c.valeur) << qPrintable(c.caption);

    // The zero needs two parts; the full scale falls back to the whole text.
    struct Scale {
        QString texte;
        QLocale locale;
        double zero, cent;
    };
    for (const Scale& c : std::vector<Scale>{{"12", kUs, 0, 12},
                                             {"3,a", kUs, 3, 0},
                                             {" 4 , 20 ", kUs, 4, 20},
                                             {"0.5,100", kFr, 0, 100},
                                             {"1,2,3", kUs, 0, 0},
                                             {"2,5", kFr, 2, 5}}) { // a decimal comma splits too
        EXPECT_DOUBLE_EQ(ComposanteZero(c.texte, c.locale), c.zero) << qPrintable(c.texte);
        EXPECT_DOUBLE_EQ(ComposanteCent(c.texte, c.locale), c.cent) << qPrintable(c.texte);
    }
}

} // namespace
} // namespace qv
