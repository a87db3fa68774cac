#include "time/stopwatch.h"

#include <gtest/gtest.h>

#include "tests/support/fakeClock.h"

namespace {

using nTime::tStopwatch;

constexpr std::uint32_t usualIncrement = 156'250;  // 15.625 ms

TEST(tStopwatch, InitialisesTheClock) {
    nTime::gClockSettings = {};
    const tStopwatch stopwatch;
    EXPECT_TRUE(nTime::gClockSettings.initialised);
}

TEST(tStopwatch, MeasuresWholeTicksTruncatedToMilliseconds) {
    support::tFakeClock clock(usualIncrement);
    const tStopwatch stopwatch;  // at 1000 ms, the end of a tick
    const std::pair<std::uint64_t, std::uint64_t> rows[] = {
        {1000, 0}, {1001, 15}, {1015, 15}, {1016, 31}, {2000, 1000}};
    for (const auto& [nowMs, elapsedMs] : rows) {
        clock.nowMs = nowMs;
        EXPECT_EQ(stopwatch.elapsedMs(), elapsedMs) << nowMs;
    }
}

TEST(tStopwatch, MeasuresZeroWithinOneTick) {
    support::tFakeClock clock(usualIncrement);
    clock.nowMs = 1001;
    const tStopwatch stopwatch;
    clock.nowMs = 1015;
    EXPECT_EQ(stopwatch.elapsedMs(), 0U);
}

TEST(tStopwatch, MeasuresMoreMillisecondsThanFit32Bits) {
    constexpr std::uint64_t sixtyDays = 60ULL * 24 * 60 * 60 * 1000;
    static_assert(sixtyDays > 0xFFFFFFFF);
    support::tFakeClock clock;
    clock.nowMs = 5;
    const tStopwatch stopwatch;
    clock.advance(sixtyDays);
    EXPECT_EQ(stopwatch.elapsedMs(), sixtyDays);
}

}  // namespace
