#include "time/stopwatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

TEST(Stopwatch, InitialisesTheClock) {
    nTime::gClockSettings = {};
    const nTime::tStopwatch stopwatch;
    EXPECT_TRUE(nTime::gClockSettings.initialised);
}

TEST(Stopwatch, RunsOnAndNeverBack) {
    const nTime::tStopwatch stopwatch;
    std::uint64_t last = stopwatch.elapsedMs();
    // Two of the longest ticks, so that one has ended whatever the clock.
    std::this_thread::sleep_for(std::chrono::milliseconds(32));
    const std::uint64_t now = stopwatch.elapsedMs();
    EXPECT_GT(now, last);
    last = now;
    EXPECT_GE(stopwatch.elapsedMs(), last);
}

}  // namespace
