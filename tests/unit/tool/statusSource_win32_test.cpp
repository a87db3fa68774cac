#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/status/statusSource.h"

namespace {

TEST(nStatusSource, KnowsTheHostsFileOfThisMachine) {
    EXPECT_THAT(nStatus::hostsFile(), testing::EndsWith("\\Corvell\\zuZiptraRemoteService.status"));
}

}  // namespace
