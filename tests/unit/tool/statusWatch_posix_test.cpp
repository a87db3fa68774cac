#include <gtest/gtest.h>

#include <csignal>

#include "tool/status/statusWatch.h"

namespace {

TEST(nStatusWatchDisplay, IsThatOfTheProcessUntilItIsInterrupted) {
    const nStatus::tDisplay display = nStatus::processDisplay();
    EXPECT_GT(display.rows(), 0U);
    raise(SIGINT);
    EXPECT_TRUE(display.waitForEnd());
}

}  // namespace
