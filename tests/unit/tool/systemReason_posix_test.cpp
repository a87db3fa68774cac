#include <gtest/gtest.h>

#include <cerrno>

#include "tool/systemReason.h"

namespace {

TEST(nSystemReason, IsTheSystemsTextForErrno) {
    errno = ENOENT;
    EXPECT_EQ(nSystemReason::last(), "No such file or directory");
}

TEST(nSystemReason, ContainsTheNumberIfTheSystemHasNoText) { EXPECT_EQ(nSystemReason::of(5000), "Unknown error 5000"); }

}  // namespace
