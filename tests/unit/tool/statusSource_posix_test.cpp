#include <gtest/gtest.h>

#include "tool/status/statusSource.h"

namespace {

TEST(nStatusSource, KnowsNoFileOfTheHostOnOtherSystems) {
    EXPECT_THROW(static_cast<void>(nStatus::hostsFile()), nStatus::tCannotRead);
}

TEST(nStatusSource, ReadsWhatHasNoSize) { EXPECT_GT(nStatus::readFile("/proc/self/maps").size(), 1000U); }

TEST(nStatusSource, DoesNotReadAnEndlessDevice) {
    EXPECT_THROW(static_cast<void>(nStatus::readFile("/dev/zero")), nStatus::tCannotRead);
}

}  // namespace
