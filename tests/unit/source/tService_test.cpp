#include "source/tService.h"

#include <gtest/gtest.h>

#include "tests/support/serviceWorld.h"

namespace {

constexpr const char* freshStatus = "Allowed: 0xffffffff\n\n";

class Service : public testing::Test {
protected:
    support::tServiceWorld world;
};

TEST_F(Service, StartsWithEverythingAllowedAndNothingElseInIt) {
    ASSERT_EQ(startService(), 0);
    ASSERT_NE(gService, nullptr);
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
    EXPECT_EQ(gService->initTimeMs, 0U);
    EXPECT_EQ(gService->messages, "");
    EXPECT_TRUE(gService->pluginManager.entries().empty());
}

TEST_F(Service, WritesAFirstStatusFileWhenItIsBuilt) {
    EXPECT_EQ(world.status(), "no status file");
    startService();
    EXPECT_EQ(world.status(), freshStatus);
}

TEST_F(Service, WritesALastStatusFileWithEverythingInItWhenItIsDestroyed) {
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

TEST_F(Service, IsGoneOnceItHasBeenStopped) {
    startService();
    stopService();
    EXPECT_EQ(gService, nullptr);
}

TEST_F(Service, StoppingDoesNothingWithoutAnObjectHoweverOften) {
    stopService();
    stopService();
    EXPECT_EQ(gService, nullptr);
    EXPECT_EQ(world.status(), "no status file");
}

TEST_F(Service, ASecondStopAfterTheFirstWritesNothing) {
    startService();
    stopService();
    world.removeStatus();
    stopService();
    EXPECT_EQ(gService, nullptr);
    EXPECT_EQ(world.status(), "no status file");
}

TEST_F(Service, ASecondStartReplacesTheObjectWhoseLastStatusIsWrittenAfterTheNewOneIsBuilt) {
    startService();
    gService->messages = "the old one\n";
    EXPECT_EQ(startService(), 0);
    EXPECT_EQ(gService->messages, "");
    // Built first, the new one wrote first.
    EXPECT_EQ(world.status(), std::string(freshStatus) + "the old one\n");
}

TEST_F(Service, StartsAndStopsWithoutAPlaceForTheStatusFile) {
    std::filesystem::remove_all(world.statusFolder);
    EXPECT_EQ(startService(), 0);
    stopService();
    EXPECT_EQ(gService, nullptr);
    EXPECT_FALSE(std::filesystem::exists(world.statusFolder));
}

TEST_F(Service, AStopRequestBeforeTheRunEndsTheRunAtOnce) {
    startService();
    signalServiceStop();
    runService();
    EXPECT_NE(gService, nullptr);
}

TEST_F(Service, AStopRequestStaysMadeForEveryLaterRun) {
    startService();
    signalServiceStop();
    signalServiceStop();
    runService();
    runService();
}

}  // namespace
