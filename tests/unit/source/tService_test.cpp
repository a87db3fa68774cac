#include "source/tService.h"

#include <gtest/gtest.h>

#include "tests/support/serviceWorld.h"

namespace {

constexpr const char* freshStatus = "Allowed: 0xffffffff\n\n";

class tServiceTest : public testing::Test {
protected:
    support::tServiceWorld world;
};

TEST_F(tServiceTest, StartsWithEverythingAllowedAndAllElseEmpty) {
    ASSERT_EQ(startService(), 0);
    ASSERT_NE(gService, nullptr);
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
    EXPECT_EQ(gService->initTimeMs, 0U);
    EXPECT_EQ(gService->messages, "");
    EXPECT_TRUE(gService->pluginManager.entries().empty());
}

TEST_F(tServiceTest, WritesAStatusFileOnConstruction) {
    EXPECT_EQ(world.status(), "no status file");
    startService();
    EXPECT_EQ(world.status(), freshStatus);
}

TEST_F(tServiceTest, WritesACompleteStatusFileOnDestruction) {
    startService();
    gService->allowedMask = 0xFFFFFFFD;
    gService->initTimeMs = 1250;
    gService->messages = "what went wrong\n";
    tPluginDescription plugin;
    plugin.name = "Alpha";
    plugin.path = "alpha.dll";
    gService->pluginManager.startAll({plugin}, 0);
    world.removeStatus();
    stopService();
    EXPECT_EQ(world.status(),
              "Allowed: 0xfffffffd\nInit Time T ms\n\nwhat went wrong\n"
              "Alpha (depends on )\nLoaded From: alpha.dll\nRequires: 1\nInit Time: T ms\nInit Code: -52002\n\n");
}

TEST_F(tServiceTest, StoppingDoesNothingWithoutAService) {
    stopService();
    stopService();
    EXPECT_EQ(gService, nullptr);
    EXPECT_EQ(world.status(), "no status file");
}

TEST_F(tServiceTest, ASecondStopAfterTheFirstWritesNothing) {
    startService();
    stopService();
    world.removeStatus();
    stopService();
    EXPECT_EQ(gService, nullptr);
    EXPECT_EQ(world.status(), "no status file");
}

TEST_F(tServiceTest, ASecondStartReplacesTheObjectWhoseLastStatusIsWrittenAfterTheNewOneIsBuilt) {
    startService();
    gService->messages = "the old one\n";
    EXPECT_EQ(startService(), 0);
    EXPECT_EQ(gService->messages, "");
    // The new one was built first, so it wrote first.
    EXPECT_EQ(world.status(), std::string(freshStatus) + "the old one\n");
}

TEST_F(tServiceTest, StartsAndStopsWithoutAFolderForTheStatusFile) {
    std::filesystem::remove_all(world.statusFolder);
    EXPECT_EQ(startService(), 0);
    stopService();
    EXPECT_EQ(gService, nullptr);
    EXPECT_FALSE(std::filesystem::exists(world.statusFolder));
}

TEST_F(tServiceTest, AStopRequestAppliesToEveryLaterRun) {
    startService();
    signalServiceStop();
    signalServiceStop();
    runService();
    runService();
}

}  // namespace
