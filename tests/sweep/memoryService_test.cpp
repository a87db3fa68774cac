// The status file, the service object and whole runs when memory runs out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>

#include "source/tService.h"
#include "tests/support/fakePlugins.h"
#include "tests/support/folder.h"
#include "tests/support/framework.h"
#include "tests/support/serviceWorld.h"
#include "tests/support/text.h"
#include "tests/sweep/figures.h"
#include "tests/sweep/memory.h"

namespace {

using support::occurrences;
using sweep::eachAllocationFails;
using sweep::tAttempt;
using sweep::tHowLong;

constexpr const char* statusName = "zuZiptraRemoteService.status";
constexpr const char* temporaryName = ".zuZiptraRemoteService.status.tmp";
constexpr const char* previousText = "what an earlier life has left\n";

class MemoryOfTheService : public testing::Test {
protected:
    /// With plain line ends; "none" when there is no such file.
    [[nodiscard]] std::string content(const char* name) const {
        if (!exists(world.statusFolder / name)) return "none";
        std::string text = support::read(world.statusFolder / name);
        std::erase(text, '\r');
        return text;
    }

    void leavePreviousStatus() const {
        std::filesystem::remove(world.statusFolder / temporaryName);
        std::ofstream(world.statusFolder / statusName) << previousText;
    }

    /// The file is the earlier one, or a whole new one, or a whole new one still has its temporary name.
    void expectWholeStatus(const std::string& whole) const {
        const std::string status = content(statusName);
        const bool renamed = status == whole;
        const bool stillThere = status == previousText;
        const bool lacksItsName = status == "none" && content(temporaryName) == whole;
        const bool torn = !renamed && !stillThere && !lacksItsName;
        EXPECT_FALSE(torn) << status << "\nand " << content(temporaryName);
        if (torn) sweep::count("an allocation, once", {.runs = 0, .torn = 1});
    }

    support::tServiceWorld world;
};

TEST_F(MemoryOfTheService, TheStatusFileIsReplacedAsAWholeOrNotAtAll) {
    const std::string directory = world.statusFolder.string();
    const std::string text(5000, 'x');
    const auto writes = [&](tAttempt& attempt) {
        leavePreviousStatus();
        attempt.operate([&] { WriteStatusFile(directory, statusName, text); });
        EXPECT_THAT(attempt.code(), testing::AnyOf(0, -52000));
        if (attempt.code() == 0) {
            EXPECT_EQ(content(statusName), text);
        }
        expectWholeStatus(text);
    };
    EXPECT_GT(eachAllocationFails("WriteStatusFile", writes), 4);
}

TEST_F(MemoryOfTheService, TheStatusIsWrittenWholeOrNotAtAll) {
    ASSERT_EQ(startService(), 0);
    gService->messages = "a message that is too long for the small buffer of a string\n";
    const auto withoutTime = [](std::string text) { return text.erase(0, text.find("Allowed:")); };
    WriteStatus(*gService);
    const std::string whole = withoutTime(content(statusName));
    const auto writes = [&](tAttempt& attempt) {
        leavePreviousStatus();
        attempt.operate([] { WriteStatus(*gService); });
        EXPECT_EQ(attempt.code(), 0) << "a failure stays inside";
        const bool renamed = withoutTime(content(statusName)) == whole;
        if (!renamed) expectWholeStatus(content(temporaryName));
        if (content(statusName) == "none") {
            EXPECT_EQ(withoutTime(content(temporaryName)), whole);
        }
    };
    EXPECT_GT(eachAllocationFails("WriteStatus", writes), 8);
}

TEST_F(MemoryOfTheService, AStartCreatesAServiceOrReturnsMinusOne) {
    const auto starts = [](tAttempt& attempt) {
        std::int32_t started = 7;
        attempt.operate([&] { started = startService(); });
        EXPECT_EQ(attempt.code(), 0);
        EXPECT_EQ(started, gService == nullptr ? -1 : 0);
        EXPECT_TRUE(gService != nullptr || attempt.struck());
        stopService();
    };
    EXPECT_GT(eachAllocationFails("startService", starts), 8);
}

TEST_F(MemoryOfTheService, ASecondStartKeepsTheEarlierServiceOrReplacesIt) {
    const auto starts = [](tAttempt& attempt) {
        startService();
        const tService* const earlier = gService;
        std::int32_t started = 7;
        attempt.operate([&] { started = startService(); });
        EXPECT_EQ(attempt.code(), 0);
        EXPECT_EQ(started, gService == earlier ? -1 : 0);
        stopService();
    };
    EXPECT_GT(eachAllocationFails("startService, the second", starts), 8);
}

TEST_F(MemoryOfTheService, AStopSucceeds) {
    const auto stops = [](tAttempt& attempt) {
        ASSERT_EQ(startService(), 0);
        attempt.operate([] {
            signalServiceStop();
            stopService();
        });
        EXPECT_EQ(attempt.code(), 0);
        EXPECT_EQ(gService, nullptr);
    };
    EXPECT_GT(eachAllocationFails("signalServiceStop and stopService", stops), 6);
}

/// What a whole run leaves behind.
struct tRun {
    std::int32_t started = -1;
    std::string messages;
    std::vector<tPluginEntry> entries;
};

class MemoryOfRuns : public MemoryOfTheService {
protected:
    void describe(const std::string& path, const std::string& more = "") const {
        world.describe(path + ".ini", "[Service]\nName=a plug-in with a rather long name: " + path + "\nPath=" + path +
                                          "\nInitialize=Init\nStop=Stop\nCleanup=Cleanup\n" + more);
    }

    /// Start, run, stop.
    static tRun live(tAttempt& attempt) {
        tRun run;
        attempt.operate([&] {
            run.started = startService();
            if (run.started != 0) return;
            signalServiceStop();
            runService();
            {
                const allocations::tPause pause;
                run.messages = gService->messages;
                run.entries = gService->pluginManager.entries();
            }
            stopService();
        });
        EXPECT_EQ(attempt.code(), 0);
        EXPECT_EQ(gService, nullptr);
        return run;
    }
};

/// Every entry has ended as it should; a plug-in without an entry has a message, or ended the whole run.
void checkRun(const tAttempt& attempt, const tRun& run, support::tFakePlugins& fakes) {
    int lost = 0;
    std::vector<std::string> ended;
    for (const tPluginEntry& entry : run.entries) {
        const std::string& path = entry.description.path;
        const std::int32_t code = entry.initCode;
        if (code >= 0) ended.push_back(path);
        if (code < 0 && code != -52006) ++lost;
        // A description for which there was no document is empty, and no library has an empty path.
        EXPECT_TRUE(code == 0 || code == -52000 || code == -52006 || (path.empty() && code == -52005)) << path << code;
        EXPECT_EQ(entry.stopCode, 0) << path;
        EXPECT_EQ(entry.cleanupCode, 0) << path;
    }
    std::reverse(ended.begin(), ended.end());
    std::vector<std::string> expected;
    for (const char* call : {" Stop", " Cleanup"}) {
        for (const std::string& path : ended) expected.push_back(path + call);
    }
    std::vector<std::string> calls = fakes.callsOf("call");
    std::erase_if(calls, [](const std::string& call) { return call.ends_with("Init"); });
    EXPECT_EQ(calls, expected);
    for (const char* path : {"A", "B", "C"}) EXPECT_EQ(fakes.plugin(path).references, 0) << path;
    if (attempt.once()) {
        const int badFiles = occurrences(run.messages, "Failed to parse service description file: ");
        EXPECT_TRUE(run.entries.empty() || run.entries.size() + static_cast<std::size_t>(badFiles) == 3U);
        EXPECT_LE(lost + badFiles, run.entries.empty() ? 3 : 1) << "one refusal costs one plug-in, or all before any";
    }
}

TEST_F(MemoryOfRuns, EndByThemselvesAndLoseOnePluginToOneRefusalUnlessNoneHasStarted) {
    describe("A");
    describe("B", "Dependencies=a plug-in with a rather long name: A\n");
    describe("C");
    const auto lives = [&](tAttempt& attempt) {
        support::tFakePlugins fakes;
        support::tScriptedFramework framework;
        world.deployment.entry = support::tScriptedFramework::instantiate;
        const tRun run = live(attempt);
        EXPECT_TRUE(run.started == 0 || attempt.struck());
        checkRun(attempt, run, fakes);
        EXPECT_EQ(framework.held(), 0U);
        if (!attempt.struck()) {
            EXPECT_EQ(run.entries.size(), 3U);
            EXPECT_EQ(run.messages, "");
        }
    };
    EXPECT_GT(eachAllocationFails("a whole run", lives), 150);
}

TEST_F(MemoryOfRuns, WithABadFileAndNoFrameworkEndByThemselves) {
    describe("A");
    world.describe("bad.ini", "[Service]\nno equals sign here\n");
    const auto lives = [&](tAttempt& attempt) {
        support::tFakePlugins fakes;
        const tRun run = live(attempt);
        EXPECT_EQ(fakes.plugin("A").references, 0U);
        EXPECT_EQ(fakes.callsOf("unload"), fakes.callsOf("load"));
        if (!attempt.struck()) {
            EXPECT_EQ(occurrences(run.messages, "\n"), 2);
        }
    };
    EXPECT_GT(eachAllocationFails("a run with a bad file", lives), 100);
}

TEST_F(MemoryOfRuns, OfAFreshThreadEndByThemselvesWithoutAnyMemory) {
    describe("A");
    allocations::startFailing(0, tHowLong::once);  // once on this thread first, for what the process sets up
    allocations::stopFailing();
    support::tFakePlugins fakes;
    int refused = 0;
    std::thread([&refused] {
        startService();
        signalServiceStop();
        allocations::startFailing(1, tHowLong::forEver);
        runService();
        stopService();
        refused = allocations::stopFailing().refused;
    }).join();
    EXPECT_GT(refused, 2);
    EXPECT_EQ(gService, nullptr);
    EXPECT_THAT(fakes.calls, testing::IsEmpty());
}

TEST_F(MemoryOfRuns, WithoutASharedDirectoryEndByThemselves) {
    world.places.sharedDirectory.reset();
    const auto lives = [&](tAttempt& attempt) {
        const tRun run = live(attempt);
        EXPECT_THAT(run.messages, testing::AnyOf("", "Failed to open plugins directory.\n"));
        EXPECT_TRUE(!run.messages.empty() || attempt.struck());
    };
    EXPECT_GT(eachAllocationFails("a run without a shared directory", lives), 20);
}

}  // namespace
