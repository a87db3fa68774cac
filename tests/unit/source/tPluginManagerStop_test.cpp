#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/managerTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class tPluginManagerStop : public support::tManagerTest {};

// Stopping and cleaning up.

TEST_F(tPluginManagerStop, StopsAndCleansUpTheLastStartedFirst) {
    start({describe("A"), describe("B"), describe("C")});
    plugins_.calls.clear();
    stopAndCleanUp();
    EXPECT_THAT(plugins_.calls, ElementsAre("call C Stop", "call B Stop", "call A Stop", "call C Cleanup", "unload C",
                                            "call B Cleanup", "unload B", "call A Cleanup", "unload A"));
    EXPECT_THAT(stopCodes(), ElementsAre(0, 0, 0));
    EXPECT_THAT(cleanupCodes(), ElementsAre(0, 0, 0));
}

TEST_F(tPluginManagerStop, AnUnloadThatFailsDuringCleanUpBecomesTheCleanUpCode) {
    plugins_.plugin("B").refusedUnloads = 1;
    start({describe("A"), describe("B"), describe("C")});
    stopAndCleanUp();
    EXPECT_THAT(cleanupCodes(), ElementsAre(0, -52005, 0));
    EXPECT_THAT(plugins_.callsOf("unload"), ElementsAre("C", "B", "A"));
    EXPECT_EQ(manager_.entries()[1].library.loaded, 1);
    EXPECT_THAT(reports_.texts, ElementsAre(R"({"file":"zukest/quarks/library","line":225,"component":"zuZiptraR"})"));
}

TEST_F(tPluginManagerStop, AfterTheUnloadAllCallsAreHarmless) {
    start({describe("A")});
    stopAndCleanUp();
    EXPECT_EQ(manager_.entries()[0].library.loaded, 0);
    plugins_.calls.clear();
    stopAndCleanUp();
    EXPECT_THAT(plugins_.calls, IsEmpty());
}

// Durations.

TEST_F(tPluginManagerStop, TheInitTimeCoversTheLoadTheCallAndTheUnloadAfterAFailure) {
    plugins_.plugin("A").onLoad = [&] { clock_.advance(10); };
    plugins_.plugin("A").initialize = [&] {
        clock_.advance(200);
        return -7;
    };
    plugins_.plugin("A").onUnload = [&] { clock_.advance(3'000); };
    start({describe("A")});
    EXPECT_EQ(manager_.entries()[0].initTimeMs, 3'210U);
}

TEST_F(tPluginManagerStop, TheInitTimeCoversTheUnloadAfterAnException) {
    plugins_.plugin("A").initialize = []() -> std::int32_t { throw std::runtime_error("A"); };
    plugins_.plugin("A").onUnload = [&] { clock_.advance(30); };
    start({describe("A")});
    EXPECT_EQ(manager_.entries()[0].initTimeMs, 30U);
}

TEST_F(tPluginManagerStop, EachCallHasItsOwnDuration) {
    plugins_.plugin("A").initialize = [&] {
        clock_.advance(1);
        return 0;
    };
    plugins_.plugin("A").stop = [&] { clock_.advance(20); };
    plugins_.plugin("A").cleanup = [&] { clock_.advance(300); };
    plugins_.plugin("A").onUnload = [&] { clock_.advance(4'000); };
    start({describe("A"), describe("B")});
    EXPECT_EQ(manager_.entries()[0].stopTimeMs, 0U);
    stopAndCleanUp();
    const tPluginEntry& entry = manager_.entries()[0];
    EXPECT_EQ(entry.initTimeMs, 1U);
    EXPECT_EQ(entry.stopTimeMs, 20U);
    EXPECT_EQ(entry.cleanupTimeMs, 4'300U) << "the unload is part of the clean-up";
    EXPECT_EQ(manager_.entries()[1].initTimeMs, 0U);
    EXPECT_EQ(manager_.entries()[1].stopTimeMs, 0U);
    EXPECT_EQ(manager_.entries()[1].cleanupTimeMs, 0U);
}

TEST_F(tPluginManagerStop, CallsThatThrowAreTimedToo) {
    plugins_.plugin("A").stop = [&] {
        clock_.advance(5);
        throw std::runtime_error("A");
    };
    plugins_.plugin("A").cleanup = [&] {
        clock_.advance(6);
        throw std::runtime_error("A");
    };
    start({describe("A")});
    stopAndCleanUp();
    EXPECT_EQ(manager_.entries()[0].stopTimeMs, 5U);
    EXPECT_EQ(manager_.entries()[0].cleanupTimeMs, 6U);
}

TEST(tPluginManagerClock, DurationsAreWholeTicksInTruncatedMilliseconds) {
    support::tFakeClock clock(156'250);
    support::tFakePlugins plugins;
    plugins.plugin("A").initialize = [&] {
        clock.advance(1);
        return 0;
    };
    tPluginManager manager;
    manager.startAll({support::tFakePlugins::description("A")}, 1);
    EXPECT_EQ(manager.entries()[0].initTimeMs, 15U) << "one tick of 15.625 ms";
}

}  // namespace
