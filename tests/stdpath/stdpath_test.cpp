#include "stdpath/stdpath.h"

#include <gtest/gtest.h>

#include "tests/support/stdpath.h"

namespace {

TEST(SharedDirectory, IsTheRegistryValueWithoutItsTerminatingZero) {
    support::tSharedPlaces places;
    places.sharedDirectory = std::string("D:\\Shared\0", 10);
    std::string result;
    zuerr::StatusRecord status;
    nStdPath::getSharedDirectory(result, status);
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(result, "D:\\Shared");
}

}  // namespace
