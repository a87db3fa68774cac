// Whole lives of the host, from its main function on and with real libraries, when memory runs out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/text.h"
#include "tests/sweep/figures.h"
#include "tests/sweep/life_win32.h"

namespace {

using allocations::tHowLong;
using sweep::tDeployment;
using sweep::tOutcome;
using sweep::tPlugin;

constexpr sweep::tScenario scenarios[] = {
    {"service without a shared directory", true, sweep::noSharedDirectory, false, tDeployment::allowed},
    {"service, 3 plug-ins and bad files, deployment forbidden", true, 3, true, tDeployment::forbidden},
    {"service, 20 plug-ins, deployment failing", true, 20, false, tDeployment::failing},
    {"foreground, 3 plug-ins, no framework", false, 3, false, tDeployment::missing},
};

/// Compares a life with the one that had all its memory.
class tComparison {
public:
    tComparison(const sweep::tScenario& scenario, const tOutcome& usual, const tOutcome& seen, tHowLong howLong)
        : scenario_(scenario), usual_(usual), seen_(seen), howLong_(howLong) {}

    void check() const {
        EXPECT_THAT(seen_.leaks, testing::IsEmpty());
        EXPECT_EQ(seen_.wrongClosings, 0);
        EXPECT_EQ(seen_.referencesHeld, 0U);
        EXPECT_TRUE(seen_.statusWhole);
        EXPECT_TRUE(seen_.statusPresent || seen_.temporaryWhole);
        EXPECT_LE(seen_.waits, 1) << "the run waits once";
        checkControl();
        checkPlugins();
    }

    [[nodiscard]] sweep::tFigures figures() const {
        const bool torn = !seen_.statusWhole || (!seen_.statusPresent && !seen_.temporaryWhole);
        return {.faults = seen_.injected,
                .leaks = seen_.leaks.size(),
                .hangs = seen_.waits > 1 ? 1 : 0,
                .torn = torn ? 1 : 0};
    }

private:
    void checkControl() const {
        if (!scenario_.service) {
            EXPECT_EQ(seen_.exitCode, seen_.startedService ? static_cast<int>(seen_.lastError) : -1);
            return;
        }
        EXPECT_EQ(seen_.exitCode, 0);
        EXPECT_EQ(seen_.reports, sweep::reportsOf(seen_));
    }

    /// Whether memory was lacking, which may also result in an empty description without a library.
    [[nodiscard]] static bool lacksMemory(const tPlugin& plugin) {
        return plugin.initCode == -52000 || (plugin.name.empty() && plugin.initCode == -52005);
    }

    void checkPlugins() const {
        if (seen_.waits == 0) {
            EXPECT_THAT(seen_.plugins, testing::IsEmpty()) << "a run that ends early has started no plug-in";
            return;
        }
        constexpr const char* badFile = "Failed to parse service description file: ";
        int lost = support::occurrences(seen_.messages, badFile) - support::occurrences(usual_.messages, badFile);
        EXPECT_EQ(usual_.plugins.size(), seen_.plugins.size() + static_cast<std::size_t>(lost)) << "an entry or a line";
        for (const tPlugin& plugin : seen_.plugins) {
            EXPECT_EQ(plugin.stopCode, 0) << plugin.name;
            EXPECT_EQ(plugin.cleanupCode, 0) << plugin.name;
            const tPlugin* const before = sweep::find(usual_.plugins, plugin.name);
            if (before != nullptr && plugin.initCode == before->initCode) continue;
            if (lacksMemory(plugin)) {
                ++lost;
            } else if (before != nullptr && before->initCode == -52002 && seen_.mask != usual_.mask) {
                EXPECT_EQ(plugin.initCode, 0) << plugin.name << " is allowed when the setting is not known";
            } else {
                EXPECT_EQ(plugin.initCode, -52006) << plugin.name;
                EXPECT_TRUE(sweep::lacksADependency(plugin, seen_)) << plugin.name;
            }
        }
        if (howLong_ == tHowLong::once) {
            EXPECT_LE(lost, 1) << "one refusal costs one plug-in";
        }
    }

    const sweep::tScenario& scenario_;
    const tOutcome& usual_;
    const tOutcome& seen_;
    tHowLong howLong_;
};

/// A short run leaves out most later requests, which are repeated for each plug-in and status file.
int stepAfter(int nth) { return std::getenv("SWEEP_ALL") != nullptr || nth < 24 ? 1 : 7; }

class LivesWithoutMemory : public testing::TestWithParam<sweep::tScenario> {};

TEST_P(LivesWithoutMemory, EndAsUsualWhicheverRequestIsRefused) {
    sweep::tLives lives(GetParam());
    lives.live();  // for what is set up only once
    const tOutcome usual = lives.liveWithoutMemory(0, tHowLong::once);
    EXPECT_THAT(usual.leaks, testing::IsEmpty());
    EXPECT_GT(usual.requests, 20);
    for (int nth = 1; nth <= usual.requests; nth += stepAfter(nth)) {
        for (const tHowLong howLong : {tHowLong::once, tHowLong::forEver}) {
            SCOPED_TRACE("request " + std::to_string(nth) + (howLong == tHowLong::forEver ? " and on" : ""));
            tOutcome seen = lives.liveWithoutMemory(nth, howLong);
            // A library may keep memory after its first failure, but not after the second.
            if (!seen.leaks.empty()) seen = lives.liveWithoutMemory(nth, howLong);
            EXPECT_GE(seen.injected, 1);
            const tComparison comparison(GetParam(), usual, seen, howLong);
            comparison.check();
            count(howLong == tHowLong::once ? "a whole life's allocation, once"
                                            : "a whole life's allocation, from then on",
                  comparison.figures());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Memory, LivesWithoutMemory, testing::ValuesIn(scenarios), sweep::testName);

}  // namespace
