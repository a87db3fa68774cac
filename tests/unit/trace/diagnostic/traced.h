#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "tests/support/debugger.h"
#include "trace/trace.h"

/// Returns the action's trace with only this category in the mask. Expects no trace with all other categories in the
/// mask, so that a wrong category fails the test.
inline std::string traced(std::uint32_t category, const std::function<void()>& action) {
    const std::uint32_t before = nTrace::gMask;
    nTrace::gMask = ~category;
    EXPECT_EQ(debuggerOutput(action), "") << "traced in another category";
    nTrace::gMask = category;
    std::string output = debuggerOutput(action);
    nTrace::gMask = before;
    return output;
}
