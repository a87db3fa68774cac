#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <vector>

#include "source/nPluginData.h"
#include "tests/support/allocations.h"
#include "tests/support/callingPlugin.h"
#include "tests/support/framework.h"
#include "tests/support/plugins.h"
#include "tests/support/runTest.h"
#include "time/clock.h"

namespace {

using support::noFramework;
using testing::ElementsAre;
using testing::IsEmpty;

/// The status file's paragraph about a plug-in of callingPlugin.
std::string paragraph(const std::string& name, const std::string& dependencies, const std::string& calls) {
    return name + " (depends on " + dependencies + ")\nLoaded From: " + support::pluginPath("calling") +
           "\nRequires: 1\n" + calls + "\n";
}

constexpr const char* begun = "Begin Time: T ms\nBegin Code: 3\n";
constexpr const char* ended =
    "Begin Time: T ms\nBegin Code: 3\nHalt Time: T ms\nHalt Code: -52003\nEnd Time: T ms\nEnd Code: -52003\n";

/// Makes the timed step take at least one tick.
void waitForNextTick() {
    const std::uint64_t now = nTime::NowTicks();
    while (nTime::NowTicks() == now) {
    }
}

class tServiceRun : public support::tRunTest {};

// The listing.

TEST_F(tServiceRun, ReturnsAtOnceWithAMessageIfThereIsNoPluginDirectory) {
    std::filesystem::remove_all(world.plugins);
    world.removeStatus();
    runService();  // would wait forever otherwise
    EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n");
    EXPECT_EQ(world.status(), "no status file");
    EXPECT_EQ(gService->initTimeMs, 0U);
    EXPECT_THAT(world.deployment.pauses, IsEmpty()) << "the deployment setting was queried";
    stopService();
    EXPECT_EQ(world.status(), "Allowed: 0xffffffff\n\nFailed to open plugins directory.\n");
}

TEST_F(tServiceRun, ReturnsAtOnceWithAMessageIfTheSharedDirectoryIsUnknown) {
    world.places.sharedDirectory.reset();
    world.removeStatus();
    runService();
    EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n");
    EXPECT_EQ(world.status(), "no status file");
}

TEST_F(tServiceRun, RunningOutOfMemoryDuringTheListingEndsTheRunWithoutAMessage) {
    world.removeStatus();
    signalServiceStop();  // a run that has enough memory ends as well, but not before it has written its status
    allocations::startFailingNew(1, allocations::tHowLong::once);
    runService();
    EXPECT_TRUE(allocations::stopFailingNew());
    EXPECT_EQ(gService->messages, "");
    EXPECT_EQ(gService->initTimeMs, 0U);
    EXPECT_EQ(world.status(), "no status file");
}

TEST_F(tServiceRun, RunsWithoutPlugins) {
    runWithoutWaiting();
    EXPECT_THAT(outcome(), IsEmpty());
    EXPECT_THAT(world.status(), testing::StartsWith("Allowed: 0xffffffff\n"));
    EXPECT_EQ(gService->messages, noFramework);
}

TEST_F(tServiceRun, WaitsForTheStopEventWithoutPlugins) {
    const std::future<void> run = std::async(std::launch::async, runService);
    EXPECT_EQ(run.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    signalServiceStop();
    run.wait();
}

// Reading.

TEST_F(tServiceRun, SkipsABadFileWithAMessageThatNamesItAndReadsAllOthers) {
    world.describe("a.ini", world.calling("A"));
    const std::string bad = world.describe("b.ini", "[Service]\nthis line has no equals sign\n");
    world.describe("c.ini", world.calling("C"));
    runWithoutWaiting();
    EXPECT_THAT(outcome(), ElementsAre("A 3", "C 3"));
    EXPECT_EQ(gService->messages, rejection(bad) + noFramework);
}

/// Returns how many of its allocations make reading the file fail if they fail.
int placesToFailIn(const std::string& file) {
    int places = 0;
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
        tPluginDescription description;
        allocations::startFailingNew(nth, allocations::tHowLong::once);
        try {
            nPluginData::readDescription(file, description);
            failed = allocations::stopFailingNew();
        } catch (const std::exception&) {
            failed = allocations::stopFailingNew();
            ++places;
        }
    }
    return places;
}

TEST_F(tServiceRun, RunningOutOfMemoryWhileReadingAFileSkipsOnlyThatFile) {
    const std::string file = world.describe("a.ini", world.calling("A"));
    const std::string messages = rejection(file) + noFramework;
    bool failed = true;
    int filesLost = 0;
    for (int nth = 1; failed; ++nth) {
        startService();
        signalServiceStop();
        allocations::startFailingNew(nth, allocations::tHowLong::once);
        runService();
        failed = allocations::stopFailingNew();
        if (gService->messages != messages) continue;
        EXPECT_THAT(outcome(), IsEmpty());
        ++filesLost;
    }
    EXPECT_GE(filesLost, placesToFailIn(file)) << "some of them ended the run";
    EXPECT_GT(filesLost, 0);
}

// The order.

TEST_F(tServiceRun, StartsADependencyBeforeItsDependantWhateverTheirNames) {
    world.describe("a.ini", world.calling("A", "Dependencies=B\n"));
    world.describe("b.ini", world.calling("B"));
    runWithoutWaiting();
    EXPECT_THAT(outcome(), ElementsAre("B 3", "A 3"));
}

// The deployment setting.

TEST_F(tServiceRun, ClearsTheDeploymentBitBeforeThePluginsStartWhenDeploymentIsNotAllowed) {
    support::tScriptedFramework framework;
    framework.setting = 0;
    world.deployment.entry = support::tScriptedFramework::instantiate;
    world.describe("deployment.ini", world.calling("Deployment", "Requires=2\n"));
    runWithoutWaiting();
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFDU);
    EXPECT_THAT(outcome(), ElementsAre("Deployment -52002"));
    EXPECT_EQ(gService->messages, "");
    EXPECT_THAT(world.status(), testing::StartsWith("Allowed: 0xfffffffd\n"));
}

// The status file after each write, and the order of the steps in between.

TEST_F(tServiceRun, WritesTheStatusFileBeforeThePluginsStartAfterTheyStartedAndAfterTheyAreCleanedUp) {
    std::vector<std::string> seen;
    const support::tCallingPlugin plugin(
        [&](const std::string& entry) { seen.push_back(entry + "\n" + world.status()); });
    const std::string bad = world.describe("0.ini", "[Service]\nbad\n");
    world.describe("a.ini", world.calling("A", "Dependencies=B\n"));
    world.describe("b.ini", world.calling("B"));
    world.deployment.onPause = [&] {
        if (world.deployment.pauses.size() > 1) return;
        seen.push_back("query\n" + world.status());
        waitForNextTick();
    };
    runWithoutWaiting();

    const std::string fresh = "Allowed: 0xffffffff\n\n";
    const std::string head = "Allowed: 0xffffffff\nInit Time T ms\n\n" + rejection(bad) + noFramework;
    const std::string started = head + paragraph("B", "", begun) + paragraph("A", "B", begun);
    EXPECT_THAT(seen, ElementsAre("query\n" + fresh,                       // as written by the constructor
                                  "Begin\n" + head, "Begin\n" + head,      // before the first plug-in
                                  "Halt\n" + started, "Halt\n" + started,  // after all have started
                                  "End\n" + started, "End\n" + started));  // and not again until
    EXPECT_EQ(world.status(), head + paragraph("B", "", ended) + paragraph("A", "B", ended));  // all is done
}

TEST_F(tServiceRun, StopsNothingBeforeTheStopEventIsSetAndThenEverything) {
    std::vector<std::string> entries;
    std::promise<void> bothBegun;
    const support::tCallingPlugin plugin([&](const std::string& entry) {
        entries.push_back(entry);
        if (entries.size() == 2) bothBegun.set_value();
    });
    world.describe("a.ini", world.calling("A"));
    world.describe("b.ini", world.calling("B"));
    const std::future<void> run = std::async(std::launch::async, runService);
    bothBegun.get_future().wait();
    EXPECT_EQ(run.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    signalServiceStop();
    run.wait();
    EXPECT_THAT(entries, ElementsAre("Begin", "Begin", "Halt", "Halt", "End", "End"));
}

TEST_F(tServiceRun, StopsRightAfterTheStartWhenTheStopEventIsSetDuringTheStart) {
    std::vector<std::string> entries;
    const support::tCallingPlugin plugin([&](const std::string& entry) {
        entries.push_back(entry);
        if (entry == "Begin") signalServiceStop();
    });
    world.describe("a.ini", world.calling("A"));
    world.describe("b.ini", world.calling("B"));
    runService();
    // The start of the others completes first.
    EXPECT_THAT(entries, ElementsAre("Begin", "Begin", "Halt", "Halt", "End", "End"));
}

TEST_F(tServiceRun, LeavesThePluginsEntriesInPlaceUntilTheServiceIsDestroyed) {
    world.describe("a.ini", world.calling("A"));
    runWithoutWaiting();
    const std::string atTheEnd = world.status();
    world.removeStatus();
    stopService();
    EXPECT_EQ(world.status(), atTheEnd);
}

}  // namespace
