// The serial numbers a bench run hands out.
#include "production/ProductionRun.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

TEST(SerialNumbers, CountUpInListOrderAndNeverOverflow) {
    EXPECT_EQ(serialNumbersFor(3, 7), (std::vector<std::optional<std::int32_t>>{7, 8, 9}));
    EXPECT_EQ(serialNumbersFor(2, std::nullopt),
              (std::vector<std::optional<std::int32_t>>{std::nullopt, std::nullopt}));
    EXPECT_EQ(serialNumbersFor(1, 2147483647).front(), 2147483647);
    EXPECT_THROW(serialNumbersFor(2, 2147483647), std::range_error);
    EXPECT_THROW(serialNumbersFor(1, -1), std::range_error);
}

} // namespace
} // namespace qv
