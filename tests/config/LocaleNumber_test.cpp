#include "config/LocaleNumber.h"

#include <gtest/gtest.h>

#include <vector>

namespace qv {
namespace {

TEST(ParseLocaleNumber, FollowsTheLocaleSeparatorOnly) {
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const QLocale fr(QLocale::French, QLocale::France);
    struct Case {
        QString text;
        QLocale locale;
        std::optional<double> value;
    };
    for (const Case& c : std::vector<Case>{
             {"12.5", us, 12.5},
             {"12,5", fr, 12.5},
             {"12.5", fr, std::nullopt},
             {"12,50", us, std::nullopt}, // not a valid grouping either
             {"1,000.5", us, 1000.5},
             {"  -3 ", us, -3},
             {"\t7\n", fr, 7},
             {"+4", us, 4},
             {"1e3", us, 1000},
             {",5", fr, 0.5},
             {"", us, std::nullopt},
             {"   ", us, std::nullopt},
             {"12abc", us, std::nullopt},
             {"inf", us, std::nullopt},
             {"nan", us, std::nullopt},
             {"1e400", us, std::nullopt},
             {"&H10", us, std::nullopt},
         })
        EXPECT_EQ(parseLocaleNumber(c.text, c.locale), c.value)
            << qPrintable(c.text) << " in " << qPrintable(c.locale.name());
}

TEST(ParseLocaleNumber, HonoursTheLocaleNumberOptions) {
    QLocale strict(QLocale::English, QLocale::UnitedStates);
    strict.setNumberOptions(QLocale::RejectGroupSeparator);
    EXPECT_EQ(parseLocaleNumber("1,000", strict), std::nullopt);
    EXPECT_EQ(parseLocaleNumber("1000", strict), 1000.0);
}

} // namespace
} // namespace qv
