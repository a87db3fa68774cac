#include <gtest/gtest.h>

#include <chrono>

#include "tool/status/terminal.h"

namespace {

using std::chrono::milliseconds;

TEST(nTerminal, HasRowsEvenIfThereIsNone) { EXPECT_GT(nTerminal::rows(), 0U); }

TEST(nTerminalInterrupt, IsNotAwaitedLongerThanAsked) {
    nTerminal::tInterrupt interrupt;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(interrupt.wait(milliseconds(100)));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(90));
}

}  // namespace
