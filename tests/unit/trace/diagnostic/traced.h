#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "tests/support/debugger.h"
#include "trace/trace.h"

/// Returns what the action traces with only this category in the mask. Expects nothing with all others in it, so that a
/// wrong category fails the test.
inline std::string traced(std::uint32_t category, const std::function<void()>& action) {
    const std::uint32_t before = nTrace::gMask;
    nTrace::gMask = ~category;
    EXPECT_EQ(debuggerOutput(action), "") << "of another category";
    nTrace::gMask = category;
    std::string output = debuggerOutput(action);
    nTrace::gMask = before;
    return output;
}
