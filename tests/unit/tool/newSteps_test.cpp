#include "tool/new/newSteps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using nNew::nextSteps;
using testing::ElementsAre;

/// Returns a system in which exactly this path exists.
nNew::tSystem systemWith(const std::string& path, const std::string& programFolder, bool isWindows) {
    nNew::tSystem system;
    system.exists = [path](const std::string& asked) { return asked == path; };
    system.programFolder = programFolder;
    system.isWindows = isWindows;
    return system;
}

TEST(nNewSteps, FindTheSdkAboveTheFolderOfTheProgram) {
    const std::string package = "/lib/cmake/ZiptraRemoteService/ZiptraRemoteServiceConfig.cmake";
    EXPECT_EQ(nNew::sdkOf(systemWith("/opt/my sdk" + package, "/opt/my sdk/bin", false)), "/opt/my sdk");
    EXPECT_EQ(nNew::sdkOf(systemWith("C:/sdk" + package, "C:\\sdk\\bin", true)), "C:/sdk");
    EXPECT_EQ(nNew::sdkOf(systemWith("/opt/sdk" + package, "/opt/other/bin", false)), "");
    EXPECT_EQ(nNew::sdkOf(systemWith("/opt/sdk" + package, "", false)), "");
}

TEST(nNewSteps, CrossBuildUnlessTheSystemIsWindows) {
    EXPECT_THAT(nextSteps("Heartbeat", "Heartbeat", "/opt/sdk", false),
                ElementsAre("cd Heartbeat", "cmake --preset cross -D ZiptraRemoteService_ROOT=/opt/sdk",
                            "cmake --build --preset cross", "ctest --preset cross",
                            "wine /opt/sdk/bin/ziptra.exe run build/cross/plugins/Heartbeat.ini"));
    EXPECT_THAT(nextSteps("Heartbeat", "Heartbeat", "C:/sdk", true),
                ElementsAre("cd Heartbeat", "cmake --preset windows -D ZiptraRemoteService_ROOT=C:/sdk",
                            "cmake --build --preset windows", "ctest --preset windows",
                            "C:\\sdk\\bin\\ziptra.exe run build\\windows\\plugins\\Heartbeat.ini"));
}

TEST(nNewSteps, LeaveItToCMakeToFindAnUnknownSdk) {
    EXPECT_THAT(
        nextSteps("Heartbeat", "Heartbeat", "", false),
        ElementsAre("cd Heartbeat", "cmake --preset cross", "cmake --build --preset cross", "ctest --preset cross",
                    "wine \"$(command -v ziptra.exe)\" run build/cross/plugins/Heartbeat.ini"));
    EXPECT_EQ(nextSteps("Heartbeat", "Heartbeat", "", true).back(),
              "ziptra.exe run build\\windows\\plugins\\Heartbeat.ini");
}

TEST(nNewSteps, QuotePathsForSh) {
    const auto steps = nextSteps("X", "/tmp/it's $x/X", "/opt/插件", false);
    EXPECT_THAT(steps,
                ElementsAre("cd '/tmp/it'\\''s $x/X'", "cmake --preset cross -D 'ZiptraRemoteService_ROOT=/opt/插件'",
                            testing::_, testing::_, "wine '/opt/插件/bin/ziptra.exe' run build/cross/plugins/X.ini"));
    EXPECT_EQ(nextSteps("X", "-a/X", "", false).front(), "cd ./-a/X");
}

TEST(nNewSteps, QuotePathsForBothShellsOfWindows) {
    const auto steps = nextSteps("X", "my projects\\X", "C:/Program Files/sdk", true);
    EXPECT_THAT(
        steps,
        ElementsAre("cd \"my projects\\X\"",
                    "cmake --preset windows -D \"ZiptraRemoteService_ROOT=C:/Program Files/sdk\"", testing::_,
                    testing::_,
                    "cmake -E env \"C:\\Program Files\\sdk\\bin\\ziptra.exe\" run build\\windows\\plugins\\X.ini"));
}

TEST(nNewSteps, ChangeTheDriveWhereCdWouldNot) {
    EXPECT_EQ(nextSteps("X", "D:\\X", "", true).front(), "pushd D:\\X");
    EXPECT_EQ(nextSteps("X", "D:X", "", true).front(), "pushd D:X");
}

}  // namespace
