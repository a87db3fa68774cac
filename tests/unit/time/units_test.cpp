#include "time/units.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using nTime::Convert;
using nTime::Unit;

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

TEST(Convert, LeavesTheValueAloneBetweenEqualUnits) {
    EXPECT_EQ(Convert(5, Unit::milliseconds, Unit::milliseconds), 5U);
    for (int unit = 0; unit <= 6; ++unit) EXPECT_EQ(Convert(largest, Unit{unit}, Unit{unit}), largest);
}

TEST(Convert, KnowsTheUnitsByTheSystemsNumbers) {
    EXPECT_EQ(Unit{0}, Unit::picoseconds);
    EXPECT_EQ(Unit{1}, Unit::nanoseconds);
    EXPECT_EQ(Unit{2}, Unit::microseconds);
    EXPECT_EQ(Unit{3}, Unit::milliseconds);
    EXPECT_EQ(Unit{4}, Unit::seconds);
    EXPECT_EQ(Unit{5}, Unit::minutes);
    EXPECT_EQ(Unit{6}, Unit::hours);
}

TEST(Convert, StepsBy1000UpToSecondsAndBy60AboveThem) {
    const std::uint64_t factors[] = {1000, 1000, 1000, 1000, 60, 60};
    for (int unit = 0; unit < 6; ++unit) {
        EXPECT_EQ(Convert(7, Unit{unit + 1}, Unit{unit}), 7 * factors[unit]);
        EXPECT_EQ(Convert(7 * factors[unit], Unit{unit}, Unit{unit + 1}), 7U);
    }
}

TEST(Convert, StepsOverSeveralUnits) {
    EXPECT_EQ(Convert(1'500'000, Unit::nanoseconds, Unit::milliseconds), 1U);
    EXPECT_EQ(Convert(2, Unit::minutes, Unit::milliseconds), 120'000U);
    EXPECT_EQ(Convert(3, Unit::hours, Unit::seconds), 10'800U);
    EXPECT_EQ(Convert(1, Unit::hours, Unit::picoseconds), 3'600'000'000'000'000U);
    EXPECT_EQ(Convert(3'600'000'000'000'000, Unit::picoseconds, Unit::hours), 1U);
}

TEST(Convert, TruncatesDivisions) {
    EXPECT_EQ(Convert(999, Unit::milliseconds, Unit::seconds), 0U);
    EXPECT_EQ(Convert(1999, Unit::milliseconds, Unit::seconds), 1U);
    EXPECT_EQ(Convert(3599, Unit::seconds, Unit::hours), 0U);
    EXPECT_EQ(Convert(largest, Unit::picoseconds, Unit::nanoseconds), largest / 1000);
}

TEST(Convert, WrapsMultiplicationsIn64Bits) {
    EXPECT_EQ(Convert(largest, Unit::seconds, Unit::milliseconds), largest - 999);
    EXPECT_EQ(Convert(std::uint64_t{1} << 63, Unit::minutes, Unit::seconds), 0U);
}

}  // namespace
