#include <gtest/gtest.h>

#include "stdpath/stdpath.h"

namespace {

TEST(stdpathPosix, KnowsNoneOfTheVendorsFolders) {
    std::string folder = "unchanged";
    zuerr::StatusRecord status;
    nStdPath::getSharedDirectory(folder, status);
    EXPECT_EQ(status.code, -52006);
    EXPECT_EQ(folder, "unchanged");
    zuerr::Clear(status);
    nStdPath::getCommonAppDataDirectory(folder, status);
    EXPECT_EQ(status.code, -52006);
    zuerr::Clear(status);
}

}  // namespace
