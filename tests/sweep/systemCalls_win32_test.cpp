#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>

#include "tests/support/plugins.h"
#include "tests/support/text.h"
#include "tests/sweep/figures.h"
#include "tests/sweep/importTable_win32.h"
#include "tests/sweep/life_win32.h"

namespace {

using sweep::tDeployment;
using sweep::tOutcome;
using sweep::tPlugin;
namespace cost = sweep::cost;

constexpr sweep::tScenario scenarios[] = {
    {"service without a shared directory", true, sweep::noSharedDirectory, false, tDeployment::allowed},
    {"service without plug-ins", true, 0, false, tDeployment::allowed},
    {"service, 3 plug-ins", true, 3, false, tDeployment::allowed},
    {"service, 3 plug-ins and bad files, deployment forbidden", true, 3, true, tDeployment::forbidden},
    {"service, 3 plug-ins, deployment failing", true, 3, false, tDeployment::failing},
    {"service, 20 plug-ins, no framework", true, 20, false, tDeployment::missing},
    {"foreground without plug-ins, no framework", false, 0, false, tDeployment::missing},
    {"foreground, 3 plug-ins and bad files", false, 3, true, tDeployment::allowed},
    {"foreground, 3 plug-ins, deployment failing", false, 3, false, tDeployment::failing},
    {"foreground, 20 plug-ins, deployment forbidden", false, 20, false, tDeployment::forbidden},
};

/// The faults that really happened, over all scenarios.
std::map<std::string, int> faultsByCall;

const char* kindOf(bool forEver) { return forEver ? "a system call, from then on" : "a system call, once"; }

constexpr const char* badFile = "Failed to parse service description file: ";
constexpr const char* noDirectory = "Failed to open plugins directory.\n";
constexpr const char* noFramework = "Cannot init system framework\n";

/// Compares a life with the one in which nothing failed.
class tComparison {
public:
    tComparison(const sweep::tScenario& scenario, const tOutcome& usual, const tOutcome& seen, const sweep::tCall& call,
                bool forEver)
        : scenario_(scenario), usual_(usual), seen_(seen), call_(call), forEver_(forEver) {}

    void check() const {
        checkResources();
        checkStatusFile();
        checkControl();
        if (!seen_.startedService || endedEarly()) return;
        checkMessages();
        checkPlugins();
    }

private:
    [[nodiscard]] bool may(unsigned what) const { return (call_.mayCost & what) != 0; }
    void count(sweep::tFigures figures) const {
        figures.runs = 0;  // this one is counted already
        sweep::count(kindOf(forEver_), figures);
    }
    /// The run ended before it had plug-ins, did not begin, or was ended by a library that cannot be unloaded.
    [[nodiscard]] bool endedEarly() const { return seen_.waits == 0; }

    void checkResources() const {
        const bool left =
            endedEarly() && may(cost::unloading);  // until the end of the process, as there is no clean-up
        if (!left) {
            EXPECT_THAT(seen_.leaks, testing::IsEmpty());
        }
        EXPECT_EQ(seen_.wrongClosings, 0);
        EXPECT_EQ(seen_.referencesHeld, 0U);
        if (!left) count({.leaks = seen_.leaks.size()});
    }

    void checkStatusFile() const {
        EXPECT_TRUE(seen_.statusWhole);
        EXPECT_TRUE(seen_.statusPresent || (may(cost::statusFile) && seen_.temporaryWhole));
        const bool torn = !seen_.statusWhole || (!seen_.statusPresent && !seen_.temporaryWhole);
        if (torn) count({.torn = 1});
        if (seen_.startedService && !may(cost::statusFile)) {
            EXPECT_TRUE(seen_.statusCurrent);
        }
    }

    void checkControl() const {
        if (may(cost::mode)) {
            EXPECT_FALSE(seen_.startedService);
            EXPECT_THAT(seen_.reports, testing::IsEmpty());
            EXPECT_EQ(seen_.exitCode, call_.name == "StartServiceCtrlDispatcherA" ? 13 : 0)
                << "the dispatcher's own error";
            return;
        }
        const bool mustStart = !may(cost::start) && !may(cost::run);
        if (mustStart) {
            EXPECT_TRUE(seen_.startedService);
        }
        if (may(cost::start)) {
            EXPECT_FALSE(seen_.startedService);
        }
        const bool mayEndEarly = usual_.waits == 0 || may(cost::listing | cost::unloading | cost::run | cost::start);
        if (!mayEndEarly) {
            EXPECT_GE(seen_.waits, 1);
        }
        EXPECT_LE(seen_.waits, 1) << "the run waits once";
        if (seen_.waits > 1) count({.hangs = 1});
        if (scenario_.service) {
            EXPECT_EQ(seen_.exitCode, 0);
            if (!may(cost::waiting)) {
                EXPECT_THAT(seen_.reports, testing::ElementsAreArray(sweep::reportsOf(seen_)));
            }
        } else {
            const bool refused = !seen_.startedService && may(cost::start);
            EXPECT_EQ(seen_.exitCode, refused ? -1 : static_cast<int>(seen_.lastError));
        }
    }

    void checkMessages() const {
        const auto count = [this](const char* line) {
            return support::occurrences(seen_.messages, line) - support::occurrences(usual_.messages, line);
        };
        EXPECT_EQ(count(noDirectory), 0) << "the run went on all the same";
        if (!may(cost::deployment)) {
            EXPECT_EQ(seen_.mask, usual_.mask);
            EXPECT_EQ(count(noFramework), 0);
        } else if (count(noFramework) > 0) {
            EXPECT_EQ(seen_.mask, 0xFFFFFFFFU) << "a query that fails leaves deployment allowed";
        }
        // A file becomes an entry or a line. One that no listing showed is neither.
        const auto lost = static_cast<int>(usual_.plugins.size()) - static_cast<int>(seen_.plugins.size());
        if (!may(cost::listing)) {
            EXPECT_EQ(count(badFile), lost);
        }
        if (!may(cost::descriptions | cost::listing)) {
            EXPECT_EQ(lost, 0);
        }
        if (may(cost::descriptions) && !forEver_) {
            EXPECT_LE(lost, 1) << "one bad file costs one plug-in";
        }
    }

    /// Checks an init code that may differ from the usual one.
    void checkInitCode(const tPlugin& plugin, const tPlugin& before, int& failed) const {
        if (sweep::lacksADependency(plugin, seen_)) {
            EXPECT_EQ(plugin.initCode, -52006) << plugin.name;
        } else if (plugin.initCode != before.initCode && before.initCode != -52002) {
            EXPECT_EQ(plugin.initCode, -52005) << plugin.name;
            EXPECT_TRUE(may(cost::plugins | cost::unloading)) << plugin.name << " was touched";
            ++failed;
        } else if (plugin.initCode != before.initCode) {
            EXPECT_NE(seen_.mask, usual_.mask) << plugin.name;
        }
    }

    void checkPlugins() const {
        int failed = 0;
        for (const tPlugin& plugin : seen_.plugins) {
            const tPlugin* const before = sweep::find(usual_.plugins, plugin.name);
            ASSERT_NE(before, nullptr) << plugin.name;
            checkInitCode(plugin, *before, failed);
            EXPECT_EQ(plugin.stopCode, before->stopCode) << plugin.name;
            if (plugin.cleanupCode == before->cleanupCode) continue;
            EXPECT_TRUE(may(cost::unloading)) << plugin.name;
            EXPECT_EQ(plugin.cleanupCode, -52005) << plugin.name;
            ++failed;
        }
        if (!forEver_) {
            EXPECT_LE(failed, 1) << "one failure costs one plug-in";
        }
    }

    const sweep::tScenario& scenario_;
    const tOutcome& usual_;
    const tOutcome& seen_;
    const sweep::tCall& call_;
    bool forEver_;
};

/// A short run leaves out most occurrences of a call that is made again for each plug-in or status file.
bool isInTheShortRun(int nth, int occurrences) { return nth <= 2 || nth == occurrences || nth % 16 == 0; }

const bool takesAll = std::getenv("SWEEP_ALL") != nullptr;

class SystemCalls : public testing::TestWithParam<sweep::tScenario> {
public:
    static void TearDownTestSuite() {
        std::printf("%-28s %8s\n", "system call", "faults");
        for (const auto& [call, faults] : faultsByCall) std::printf("%-28s %8d\n", call.c_str(), faults);
    }
};

TEST_P(SystemCalls, EachMayFailAtEachOccurrenceOnceAndFromThenOn) {
    sweep::tLives lives(GetParam());
    lives.live();  // what is set up once is set up now
    const tOutcome usual = lives.live();
    EXPECT_THAT(usual.leaks, testing::IsEmpty());
    EXPECT_TRUE(usual.startedService && usual.statusCurrent && usual.statusWhole);
    EXPECT_EQ(usual.waits, GetParam().plugins == sweep::noSharedDirectory ? 0 : 1);
    for (std::size_t i = 0; i < usual.calls.size(); ++i) {
        const sweep::tCall& call = usual.calls[i];
        for (int nth = 1; call.canFail && nth <= call.occurrences; ++nth) {
            if (!takesAll && !isInTheShortRun(nth, call.occurrences)) continue;
            for (const bool forEver : {false, true}) {
                SCOPED_TRACE(call.name + " fails at occurrence " + std::to_string(nth) + (forEver ? " and on" : ""));
                const tOutcome seen = lives.live(i, nth, forEver);
                EXPECT_GE(seen.injected, 1);
                tComparison(GetParam(), usual, seen, call, forEver).check();
                sweep::count(kindOf(forEver), {.faults = seen.injected});
                faultsByCall[call.name] += seen.injected;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Lives, SystemCalls, testing::ValuesIn(scenarios), sweep::testName);

TEST(SystemCallsReached, AreAllThatTheExecutableImports) {
    std::set<std::string> reached;
    for (const sweep::tScenario& scenario : scenarios) {
        sweep::tLives lives(scenario);
        for (const sweep::tCall& call : lives.live().calls) {
            if (call.occurrences > 0) reached.insert(call.name);
        }
    }
    const auto imported = sweep::importsIn(support::testProgramFolder() + "\\zuZiptraRemoteService.imports");
    ASSERT_GT(imported.size(), 50U);
    EXPECT_THAT(sweep::forgottenCalls(imported, reached), testing::IsEmpty());
    for (const std::string& name : reached) {
        EXPECT_FALSE(sweep::isOfTheRuntime(name)) << name << " is on the list of what the product does not call";
    }
}

TEST(SystemCallsReached, DoNotIncludeOneThatTheSweepHasForgotten) {
    EXPECT_THAT(sweep::forgottenCalls({"CreateEventA", "NewCallOfTheProduct", "malloc"}, {"CreateEventA"}),
                testing::ElementsAre("NewCallOfTheProduct"));
}

}  // namespace
