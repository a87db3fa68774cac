// Plug-in libraries, their manager and the deployment setting when memory runs out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "source/nDeployment.h"
#include "source/tPluginManager.h"
#include "source/tService.h"
#include "tests/support/fakePlugins.h"
#include "tests/support/framework.h"
#include "tests/support/serviceWorld.h"
#include "tests/sweep/memory.h"

namespace {

using sweep::eachAllocationFails;
using sweep::tAttempt;

constexpr const char* longPrefix = "a plug-in with a rather long name: ";

tPluginDescription describe(const std::string& path, const std::vector<std::string>& dependencies = {}) {
    tPluginDescription description = support::tFakePlugins::description(path);
    description.name = longPrefix + path;
    for (const std::string& name : dependencies) description.dependencies.push_back(longPrefix + name);
    return description;
}

/// Plug-ins of every kind, in their order: B needs A, C refuses to start, D needs C, E does not load, F lacks an entry,
/// G warns, H is for a feature that the machine does not allow.
class tMachine {
public:
    tMachine() {
        fakes.plugin("C").initialize = [] { return -7; };
        fakes.plugin("E").loads = false;
        fakes.plugin("F").missing = {"Cleanup"};
        fakes.plugin("G").initialize = [] { return 3; };
        descriptions = {describe("A"), describe("B", {"A"}), describe("C"), describe("D", {"C"}),
                        describe("E"), describe("F"),        describe("G"), describe("H")};
        descriptions.back().requiresMask = 2;
    }

    void start() { manager.startAll(descriptions, 0xFFFFFFFD); }

    support::tFakePlugins fakes;
    std::vector<tPluginDescription> descriptions;
    tPluginManager manager;
};

constexpr std::int32_t usualCodes[] = {0, 0, -7, -52006, -52005, -52005, 3, -52002};
constexpr std::size_t pluginCount = std::size(usualCodes);

/// Each plug-in has its usual code, the code for a lack of memory, or the code for a dependency that has not started.
void checkInitCodes(const tAttempt& attempt, const std::vector<tPluginEntry>& entries) {
    ASSERT_EQ(entries.size(), pluginCount);
    int lost = 0;
    for (std::size_t i = 0; i < pluginCount; ++i) {
        const std::int32_t code = entries[i].initCode;
        if (code == usualCodes[i]) continue;
        const bool lacksA = i == 1 && entries[0].initCode == -52000;
        EXPECT_TRUE(code == -52000 || (lacksA && code == -52006)) << i << " has " << code;
        if (code == -52000) ++lost;
    }
    if (attempt.once()) {
        EXPECT_LE(lost, 1) << "one refusal costs one plug-in";
    }
}

/// An initialised plug-in is started, stays loaded, and is stopped and cleaned up once; no other plug-in is.
void checkCalls(tMachine& machine) {
    std::vector<std::string> started;
    for (const tPluginEntry& entry : machine.manager.entries()) {
        if (entry.initCode >= 0) started.push_back(entry.description.path);
        EXPECT_EQ(entry.library.loaded, entry.initCode >= 0 ? 1 : 0) << entry.description.path;
    }
    std::vector<std::string> initialised = machine.fakes.callsOf("call");
    std::erase(initialised, "C Init");
    machine.fakes.calls.clear();
    machine.manager.stopAll();
    machine.manager.cleanupAll();
    std::vector<std::string> expected;
    for (const std::string& path : started) expected.push_back(path + " Init");
    EXPECT_EQ(initialised, expected);
    expected.clear();
    std::reverse(started.begin(), started.end());
    for (const char* entry : {" Stop", " Cleanup"}) {
        for (const std::string& path : started) expected.push_back(path + entry);
    }
    EXPECT_EQ(machine.fakes.callsOf("call"), expected);
    for (const char* path : {"A", "B", "C", "D", "E", "F", "G", "H"}) {
        EXPECT_EQ(machine.fakes.plugin(path).references, 0) << path << " stays loaded";
    }
}

TEST(MemoryOfPlugins, ALibraryIsOpenedOrMayBeClosed) {
    const auto opens = [](tAttempt& attempt) {
        support::tFakePlugins fakes;
        fakes.plugin("A").missing = {"Cleanup"};
        const tPluginDescription description = describe("A");
        tSharedLibrary library;
        attempt.operate([&] { library.open(description); });
        EXPECT_EQ(attempt.code(), -52005);
        EXPECT_EQ(library.stop, &tSharedLibrary::doNothing) << "all entries or none";
        library.close();
        EXPECT_EQ(fakes.plugin("A").references, 0);
    };
    EXPECT_GT(eachAllocationFails("open", opens), 0);
}

TEST(MemoryOfPlugins, OneThatFindsNoMemoryFailsAloneAndBeforeItIsInitialised) {
    const auto starts = [](tAttempt& attempt) {
        tMachine machine;
        attempt.operate([&] { machine.start(); });
        if (attempt.code() == 0) {
            checkInitCodes(attempt, machine.manager.entries());
        } else {
            EXPECT_EQ(attempt.code(), -52000);
            EXPECT_THAT(machine.fakes.calls, testing::IsEmpty())
                << "no plug-in has been started that will not be stopped";
        }
        checkCalls(machine);
    };
    EXPECT_GT(eachAllocationFails("startAll", starts), 15);
}

TEST(MemoryOfPlugins, AreStoppedAndCleanedUpWithoutMemory) {
    const auto stops = [](tAttempt& attempt) {
        tMachine machine;
        machine.start();
        machine.fakes.calls.clear();
        attempt.operate([&] {
            machine.manager.stopAll();
            machine.manager.cleanupAll();
        });
        EXPECT_EQ(attempt.code(), 0);
        EXPECT_THAT(machine.fakes.callsOf("call"),
                    testing::ElementsAre("G Stop", "B Stop", "A Stop", "G Cleanup", "B Cleanup", "A Cleanup"));
        for (const tPluginEntry& entry : machine.manager.entries()) {
            EXPECT_EQ(entry.stopCode, 0);
            EXPECT_EQ(entry.cleanupCode, 0);
        }
    };
    EXPECT_EQ(eachAllocationFails("stopAll and cleanupAll", stops), 0) << "there is nothing that could fail";
}

TEST(MemoryOfPlugins, ThatThrowOrStayHaveTheirCodesAllTheSame) {
    const auto stops = [](tAttempt& attempt) {
        tMachine machine;
        machine.fakes.plugin("A").stop = [] { throw std::bad_alloc(); };
        machine.fakes.plugin("B").refusedUnloads = 1;
        machine.start();
        attempt.operate([&] {
            machine.manager.stopAll();
            machine.manager.cleanupAll();
        });
        EXPECT_EQ(attempt.code(), 0);
        const std::vector<tPluginEntry>& entries = machine.manager.entries();
        EXPECT_EQ(entries[0].stopCode, -52000);
        EXPECT_EQ(entries[0].cleanupCode, 0);
        EXPECT_EQ(entries[1].cleanupCode, -52005);
        EXPECT_EQ(machine.fakes.plugin("B").references, 1);
    };
    EXPECT_GT(eachAllocationFails("stopAll and cleanupAll, failing", stops), 0);
}

TEST(MemoryOfPlugins, TheirStatusTextIsWholeOrThereIsMinus52000) {
    tMachine machine;
    machine.start();
    const std::string whole = machine.manager.statusText();
    const auto writes = [&](tAttempt& attempt) {
        std::string text;
        attempt.operate([&] { text = machine.manager.statusText(); });
        // A stream does not throw; its failure would show as a truncated text.
        if (attempt.code() == 0) {
            EXPECT_EQ(text, whole);
        } else {
            EXPECT_EQ(attempt.code(), -52000);
            EXPECT_EQ(text, "");
        }
    };
    EXPECT_GT(eachAllocationFails("statusText", writes), 2);
}

TEST(MemoryOfTheDeploymentQuery, EndsWithAnAnswerOrAMessage) {
    const support::tServiceWorld world;
    startService();
    const auto asks = [](tAttempt& attempt) {
        support::tScriptedFramework framework;
        framework.setting = 0;
        const support::tDeploymentPlatform platform(support::tScriptedFramework::instantiate);
        gService->allowedMask = 0xFFFFFFFF;
        std::string().swap(gService->messages);
        attempt.operate([] { ApplyDeploymentSetting(*gService); });
        EXPECT_EQ(attempt.code(), 0);
        EXPECT_EQ(gService->allowedMask, 0xFFFFFFFDU);
        EXPECT_EQ(gService->messages, "");
        EXPECT_EQ(framework.held(), 0U);
    };
    EXPECT_EQ(eachAllocationFails("ApplyDeploymentSetting", asks), 0) << "there is nothing that could fail";
}

TEST(MemoryOfTheDeploymentQuery, LeavesDeploymentAllowedWhenItFailsWithoutMemory) {
    const support::tServiceWorld world;
    startService();
    const auto asks = [](tAttempt& attempt) {
        support::tScriptedFramework framework;
        framework.outcome = [](int, int step) { return step == 4 ? 1 : 0; };
        const support::tDeploymentPlatform platform(support::tScriptedFramework::instantiate);
        std::string().swap(gService->messages);
        attempt.operate([] { ApplyDeploymentSetting(*gService); });
        EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
        EXPECT_EQ(framework.held(), 0U);
        EXPECT_TRUE(attempt.code() == 0 || (attempt.code() == -52000 && attempt.struck())) << attempt.code();
        if (!attempt.struck()) {
            EXPECT_EQ(gService->messages, "Cannot init system framework\n");
        }
        std::string().swap(gService->messages);
    };
    EXPECT_GT(eachAllocationFails("ApplyDeploymentSetting, failing", asks), 1);
}

}  // namespace
