#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "tool/status/terminal.h"

namespace {

using std::chrono::milliseconds;

TEST(nTerminal, HasRowsEvenIfThereIsNone) { EXPECT_GT(nTerminal::rows(), 0U); }

TEST(nTerminalInterrupt, ComesWithEachSignalThatWouldEndTheProcess) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        nTerminal::tInterrupt interrupt;
        EXPECT_FALSE(interrupt.wait(milliseconds(0)));
        raise(signal);
        EXPECT_TRUE(interrupt.wait(milliseconds(10'000)));
        EXPECT_FALSE(interrupt.wait(milliseconds(0)));
    }
}

TEST(nTerminalInterrupt, IsNotAwaitedLongerThanAsked) {
    nTerminal::tInterrupt interrupt;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(interrupt.wait(milliseconds(1'010)));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(1'010));
}

TEST(nTerminalInterruptDeathTest, EndsTheProcessAgainAfterwards) {
    EXPECT_EXIT(
        {
            { nTerminal::tInterrupt interrupt; }
            raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

}  // namespace
