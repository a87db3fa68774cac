#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "trace/debugger.h"

namespace {

TEST(debuggerPosix, IsStandardError) {
    testing::internal::CaptureStderr();
    nTrace::writeToDebugger("one\n");
    nTrace::writeToDebugger("%s");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\n%s");
}

TEST(debuggerPosix, NumbersThreadsDifferently) {
    const std::uint32_t own = nTrace::currentThreadId();
    std::uint32_t other = own;
    std::thread([&other] { other = nTrace::currentThreadId(); }).join();
    EXPECT_EQ(nTrace::currentThreadId(), own);
    EXPECT_NE(other, own);
}

}  // namespace
