#include "time/clock.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <limits>
#include <utility>

#include "tests/support/fakeClock.h"
#include "time/stopwatch.h"

namespace {

using nTime::gClockSettings;
using nTime::NowTicks;
using nTime::ticksFromMs;
using nTime::tUnit;

constexpr std::uint32_t usualIncrement = 156'250;  // 15.625 ms

TEST(nTimeClock, RoundsUpToWholeTicks) {
    const std::pair<std::uint64_t, std::uint64_t> rows[] = {{0, 0},   {1, 1},     {15, 1},   {16, 2},
                                                            {125, 8}, {1000, 64}, {1001, 65}};
    for (const auto& [milliseconds, ticks] : rows) {
        EXPECT_EQ(ticksFromMs(milliseconds, usualIncrement), ticks);
        support::tFakeClock clock(usualIncrement);
        clock.nowMs = milliseconds;
        EXPECT_EQ(NowTicks(), ticks);
    }
}

TEST(nTimeClock, WrapsTheNanosecondsIn64Bits) {
    constexpr std::uint64_t nanosecondsPerMillisecond = 1'000'000;
    constexpr std::uint64_t wrapping = std::numeric_limits<std::uint64_t>::max() / nanosecondsPerMillisecond + 1;
    EXPECT_EQ(ticksFromMs(wrapping, 10'000), 1U);
}

TEST(nTimeClock, ComputesTheTickLengthOfAReadingIn32Bits) {
    // 42,949,673 * 100 exceeds 32 bits and wraps around to a tick of 4 nanoseconds.
    EXPECT_EQ(ticksFromMs(1, 42'949'673), 250'000U);
}

TEST(nTimeClock, FillsItsSettingsWhenItIsInitialised) {
    support::tFakeClock clock(usualIncrement);
    clock.counterFrequency = 3'579'545;
    nTime::InitialiseClock();
    EXPECT_TRUE(gClockSettings.initialised);
    EXPECT_EQ(gClockSettings.tickLength, 15'625'000U);
    EXPECT_EQ(gClockSettings.tickLengthUnit, tUnit::nanoseconds);
    EXPECT_EQ(gClockSettings.counterPeriod, 279'365U) << "whole picoseconds";
    EXPECT_EQ(gClockSettings.counterPeriodUnit, tUnit::picoseconds);

    clock.counterFrequency = 1;
    clock.timeIncrement = 0xFFFFFFFF;
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.counterPeriod, 1'000'000'000'000U);
    EXPECT_EQ(gClockSettings.tickLength, 429'496'729'500U) << "in 64 bits";
}

TEST(nTimeClock, InitialisesItselfOnlyWhenItIsFirstRead) {
    const support::tFakeClock clock;
    EXPECT_EQ(nTime::nowInTickLengthUnit(), 1'000'000'000U);
    EXPECT_TRUE(gClockSettings.initialised);
    gClockSettings.tickLength = 7;
    EXPECT_EQ(nTime::nowInTickLengthUnit(), 7000U);
}

TEST(nTimeClock, ReadsTheIncrementAgainAtEachReading) {
    support::tFakeClock clock(usualIncrement);
    EXPECT_EQ(NowTicks(), 64U);
    clock.timeIncrement = 10'000;
    EXPECT_EQ(NowTicks(), 1000U);
}

TEST(nTimeClock, UsesTheUsualIncrementOrTheLastOneIfTheSystemReportsNone) {
    support::tFakeClock clock(0);
    EXPECT_EQ(NowTicks(), 64U);
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.tickLength, 15'625'000U);

    clock.timeIncrement = 100'000;
    nTime::InitialiseClock();
    const nTime::tStopwatch stopwatch;
    clock.timeIncrement = 0;
    clock.advance(50);
    EXPECT_EQ(stopwatch.elapsedMs(), 50U) << "both readings of a duration count the same ticks";
}

TEST(nTimeClock, AbortsTheProcessForACounterFrequencyOfZero) {
    const auto initialise = [] {
        // Suppresses the system's crash report.
        std::signal(SIGABRT, [](int) { std::_Exit(42); });
        support::tFakeClock clock;
        clock.counterFrequency = 0;
        nTime::InitialiseClock();
    };
    EXPECT_EXIT(initialise(), testing::ExitedWithCode(42), "");
}

}  // namespace
