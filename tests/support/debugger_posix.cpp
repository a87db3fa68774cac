#include <gtest/gtest.h>

#include "tests/support/debugger.h"

// Natively, standard error replaces the debugger.
std::string debuggerOutput(const std::function<void()>& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}
