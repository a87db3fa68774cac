#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include "tool/systemReason.h"

namespace {

TEST(nSystemReason, IsTheSystemsTextWithoutItsEnd) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    const std::string reason = nSystemReason::last();
    EXPECT_GT(reason.size(), 5U);
    EXPECT_EQ(reason.find_first_of("\r\n"), std::string::npos);
    EXPECT_NE(reason.back(), '.');
}

TEST(nSystemReason, IsTheNumberIfTheSystemHasNoText) {
    SetLastError(0x2FFFFFFF);
    EXPECT_EQ(nSystemReason::last(), "error 805306367");
}

}  // namespace
