#include "time/units.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using nTime::Convert;
using nTime::tUnit;

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

TEST(units, ReturnsTheValueUnchangedForEqualUnits) {
    EXPECT_EQ(Convert(5, tUnit::milliseconds, tUnit::milliseconds), 5U);
    for (int unit = 0; unit <= 6; ++unit) EXPECT_EQ(Convert(largest, tUnit{unit}, tUnit{unit}), largest);
}

TEST(units, NumbersTheUnitsFromPicosecondsToHours) {
    EXPECT_EQ(tUnit{0}, tUnit::picoseconds);
    EXPECT_EQ(tUnit{1}, tUnit::nanoseconds);
    EXPECT_EQ(tUnit{2}, tUnit::microseconds);
    EXPECT_EQ(tUnit{3}, tUnit::milliseconds);
    EXPECT_EQ(tUnit{4}, tUnit::seconds);
    EXPECT_EQ(tUnit{5}, tUnit::minutes);
    EXPECT_EQ(tUnit{6}, tUnit::hours);
}

TEST(units, UsesAFactorOf1000UpToSecondsAnd60Above) {
    const std::uint64_t factors[] = {1000, 1000, 1000, 1000, 60, 60};
    for (int unit = 0; unit < 6; ++unit) {
        EXPECT_EQ(Convert(7, tUnit{unit + 1}, tUnit{unit}), 7 * factors[unit]);
        EXPECT_EQ(Convert(7 * factors[unit], tUnit{unit}, tUnit{unit + 1}), 7U);
    }
}

TEST(units, ConvertsAcrossSeveralUnitsAndTruncatesDivisions) {
    struct {
        std::uint64_t value;
        tUnit from;
        tUnit to;
        std::uint64_t result;
    } const rows[] = {{1'500'000, tUnit::nanoseconds, tUnit::milliseconds, 1},
                      {2, tUnit::minutes, tUnit::milliseconds, 120'000},
                      {3, tUnit::hours, tUnit::seconds, 10'800},
                      {1, tUnit::hours, tUnit::picoseconds, 3'600'000'000'000'000},
                      {3'600'000'000'000'000, tUnit::picoseconds, tUnit::hours, 1},
                      {999, tUnit::milliseconds, tUnit::seconds, 0},
                      {1999, tUnit::milliseconds, tUnit::seconds, 1},
                      {3599, tUnit::seconds, tUnit::hours, 0},
                      {largest, tUnit::picoseconds, tUnit::nanoseconds, largest / 1000}};
    for (const auto& row : rows) EXPECT_EQ(Convert(row.value, row.from, row.to), row.result);
}

TEST(units, WrapsMultiplicationsIn64Bits) {
    EXPECT_EQ(Convert(largest, tUnit::seconds, tUnit::milliseconds), largest - 999);
    EXPECT_EQ(Convert(std::uint64_t{1} << 63, tUnit::minutes, tUnit::seconds), 0U);
}

}  // namespace
