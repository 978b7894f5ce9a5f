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

TEST(Packing, OctetFaibleFortAreSixteenBitTwosComplementBytes) {
    struct Case {
        double valeur;
        int faible, fort;
    };
    const Case cases[] = {
        {300, 44, 1},     {65535.4, 255, 255}, {2.5, 2, 0},      {255.5, 0, 1},    {-0.4, 0, 0},
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

TEST(Packing, WordsAndLongsSplitLowestFirstAndJoinSigned) {
    EXPECT_EQ(DecoupeMot(-1), (std::array<long long, 2>{255, 255}));
    EXPECT_EQ(DecoupeMot(300), (std::array<long long, 2>{44, 1}));
    EXPECT_EQ(DecoupeLong(-1), (std::array<long long, 4>{255, 255, 255, 255}));
    EXPECT_EQ(DecoupeLong(2147483647), (std::array<long long, 4>{255, 255, 255, 127}));
    const std::pair<Bytes, std::int32_t> joined[] = {
        {{255, 255, 255, 255}, -1},
        {{0, 0, 0, 128}, std::numeric_limits<std::int32_t>::min()},
        {{4, 3, 2, 1}, 16909060},
        {{255, 255, 255}, 0}};
    for (const auto& [octets, valeur] : joined)
        EXPECT_EQ(AssembleLong(octets), valeur) << octets.size();
    for (double bad : {kNaN, HUGE_VAL})
        EXPECT_THROW(DecoupeLong(bad), OverflowError) << bad;
}

TEST(Packing, ScaleTextsSplitAtTheCommaWhenThereAreTwoParts) {
    EXPECT_EQ(ComposanteZero(QStringLiteral("12"), kUs), 0);
    EXPECT_EQ(ComposanteCent(QStringLiteral("12"), kUs), 12);
    EXPECT_EQ(ComposanteZero(QStringLiteral("a,12"), kUs), 0);
    EXPECT_EQ(ComposanteCent(QStringLiteral("a,12"), kUs), 12);
    EXPECT_EQ(ComposanteZero(QStringLiteral(" 4 , 20 "), kUs), 4);
    EXPECT_EQ(ComposanteCent(QStringLiteral("2,5"), kFr), 5); // a decimal comma splits too
}

} // namespace
} // namespace qv
