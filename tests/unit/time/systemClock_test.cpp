#include "time/systemClock.h"

#include <gtest/gtest.h>

namespace {

TEST(systemClock, CountsMillisecondsThatNeverGoBack) {
    std::uint64_t last = nTime::uptimeMs();
    for (int i = 0; i < 1000; ++i) {
        const std::uint64_t now = nTime::uptimeMs();
        EXPECT_GE(now, last);
        last = now;
    }
}

TEST(systemClock, ReportsItsTickLengthAndTheCountersFrequency) {
    EXPECT_GT(nTime::timeIncrement100ns(), 0U);
    EXPECT_GT(nTime::counterFrequencyHz(), 0U);
}

}  // namespace
