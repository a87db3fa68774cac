#include "time/clock.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/fakeClock.h"

namespace {

using nTime::gClockSettings;
using nTime::NowInTickLengthUnit;
using nTime::NowTicks;
using nTime::ticksFromMilliseconds;
using nTime::Unit;

constexpr std::uint32_t usualIncrement = 156'250;  // 15.625 ms

TEST(Ticks, CountAPartTickWhole) {
    EXPECT_EQ(ticksFromMilliseconds(0, usualIncrement), 0U);
    EXPECT_EQ(ticksFromMilliseconds(1, usualIncrement), 1U);
    EXPECT_EQ(ticksFromMilliseconds(15, usualIncrement), 1U);
    EXPECT_EQ(ticksFromMilliseconds(16, usualIncrement), 2U);
}

TEST(Ticks, CountWholeTicksExactly) {
    EXPECT_EQ(ticksFromMilliseconds(125, usualIncrement), 8U);
    EXPECT_EQ(ticksFromMilliseconds(1000, usualIncrement), 64U);
    EXPECT_EQ(ticksFromMilliseconds(1001, usualIncrement), 65U);
    EXPECT_EQ(ticksFromMilliseconds(7, 10'000), 7U);
}

TEST(Ticks, WrapTheNanosecondsIn64Bits) {
    constexpr std::uint64_t nanosecondsPerMillisecond = 1'000'000;
    constexpr std::uint64_t wrapping = std::numeric_limits<std::uint64_t>::max() / nanosecondsPerMillisecond + 1;
    EXPECT_EQ(ticksFromMilliseconds(wrapping, 10'000), 1U);
}

TEST(Ticks, ComputeTheTickLengthIn32Bits) {
    // 42,949,673 * 100 is 4 more than 32 bits hold, which leaves a tick of 4 nanoseconds.
    EXPECT_EQ(ticksFromMilliseconds(1, 42'949'673), 250'000U);
}

TEST(Clock, KnowsItsUnitsOnceInitialised) {
    gClockSettings = {};
    nTime::InitialiseClock();
    EXPECT_TRUE(gClockSettings.initialised);
    EXPECT_EQ(gClockSettings.tickLength, std::uint64_t{nTime::readTimeIncrement()} * 100);
    EXPECT_EQ(gClockSettings.tickLengthUnit, Unit::nanoseconds);
    EXPECT_EQ(gClockSettings.counterPeriod, 1'000'000'000'000 / nTime::readCounterFrequency());
    EXPECT_EQ(gClockSettings.counterPeriodUnit, Unit::picoseconds);
}

TEST(Clock, GivesTheCounterPeriodInWholePicoseconds) {
    support::tFakeClock clock;
    clock.counterFrequency = 1;
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.counterPeriod, 1'000'000'000'000U);
    clock.counterFrequency = 3'579'545;
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.counterPeriod, 279'365U);
}

TEST(Clock, InitialisesItselfWhenItIsFirstRead) {
    gClockSettings = {};
    EXPECT_GT(NowInTickLengthUnit(), 0U);
    EXPECT_TRUE(gClockSettings.initialised);
}

TEST(Clock, DoesNotInitialiseItselfAgain) {
    static_cast<void>(NowInTickLengthUnit());
    const std::uint64_t before = gClockSettings.tickLength;
    gClockSettings.tickLength = 0;
    EXPECT_EQ(NowInTickLengthUnit(), 0U);
    gClockSettings.tickLength = before;
}

TEST(Clock, NeverGoesBack) {
    std::uint64_t last = NowTicks();
    for (int i = 0; i < 1000; ++i) {
        const std::uint64_t now = NowTicks();
        EXPECT_GE(now, last);
        last = now;
    }
}

TEST(Clock, ReadsWholeTicks) {
    const std::uint64_t now = NowInTickLengthUnit();
    EXPECT_EQ(now % gClockSettings.tickLength, 0U);
}

}  // namespace
