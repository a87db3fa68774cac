// Whole lives of the host, from its main function on and with real libraries, when memory runs out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

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

const tPlugin* find(const std::vector<tPlugin>& plugins, const std::string& name) {
    const auto found = std::find_if(plugins.begin(), plugins.end(), [&](auto& one) { return one.name == name; });
    return found == plugins.end() ? nullptr : &*found;
}

int occurrences(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

/// One life beside the one in which there was memory.
class Comparison {
public:
    Comparison(const sweep::tScenario& scenario, const tOutcome& usual, const tOutcome& seen, tHowLong howLong)
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
        if (!seen_.startedService) {
            EXPECT_THAT(seen_.reports, testing::ElementsAre("16 2 0 0 0 0 0", "16 1 0 1066 -1 0 0"));
            return;
        }
        std::vector<std::string> reports = {"16 2 0 0 0 0 0", "16 4 5 0 0 0 0"};
        if (seen_.waits > 0) reports.emplace_back("16 3 0 0 0 1 5000");
        reports.insert(reports.end(), {"16 3 0 0 0 2 5000", "16 1 0 0 0 0 0"});
        EXPECT_EQ(seen_.reports, reports);
    }

    [[nodiscard]] bool lacksADependency(const tPlugin& plugin) const {
        return std::any_of(plugin.dependencies.begin(), plugin.dependencies.end(), [this](const std::string& name) {
            const tPlugin* const dependency = find(seen_.plugins, name);
            return dependency == nullptr || dependency->initCode < 0;
        });
    }

    /// Whether the code is that of a lack of memory, which may also show as an empty description that names no library.
    [[nodiscard]] static bool lacksMemory(const tPlugin& plugin) {
        return plugin.initCode == -52000 || (plugin.name.empty() && plugin.initCode == -52005);
    }

    void checkPlugins() const {
        if (seen_.waits == 0) {
            EXPECT_THAT(seen_.plugins, testing::IsEmpty()) << "a run that ends early has started nobody";
            return;
        }
        constexpr const char* badFile = "Failed to parse service description file: ";
        int lost = occurrences(seen_.messages, badFile) - occurrences(usual_.messages, badFile);
        EXPECT_EQ(usual_.plugins.size(), seen_.plugins.size() + static_cast<std::size_t>(lost)) << "an entry or a line";
        for (const tPlugin& plugin : seen_.plugins) {
            EXPECT_EQ(plugin.stopCode, 0) << plugin.name;
            EXPECT_EQ(plugin.cleanupCode, 0) << plugin.name;
            const tPlugin* const before = find(usual_.plugins, plugin.name);
            if (before != nullptr && plugin.initCode == before->initCode) continue;
            if (lacksMemory(plugin)) {
                ++lost;
            } else if (before != nullptr && before->initCode == -52002 && seen_.mask != usual_.mask) {
                EXPECT_EQ(plugin.initCode, 0) << plugin.name << " is allowed when the setting is not known";
            } else {
                EXPECT_EQ(plugin.initCode, -52006) << plugin.name;
                EXPECT_TRUE(lacksADependency(plugin)) << plugin.name;
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

/// A short run takes a few of the requests from each part of a life, as they come again for each plug-in and writing.
int stepAfter(int nth) { return std::getenv("SWEEP_ALL") != nullptr || nth < 24 ? 1 : 7; }

class LivesWithoutMemory : public testing::TestWithParam<sweep::tScenario> {};

TEST_P(LivesWithoutMemory, EndAsTheyShouldWhicheverRequestIsRefused) {
    sweep::tLives lives(GetParam());
    lives.live();  // what is set up once is set up now
    const tOutcome usual = lives.liveWithoutMemory(0, tHowLong::once);
    EXPECT_THAT(usual.leaks, testing::IsEmpty());
    EXPECT_GT(usual.requests, 20);
    for (int nth = 1; nth <= usual.requests; nth += stepAfter(nth)) {
        for (const tHowLong howLong : {tHowLong::once, tHowLong::forEver}) {
            SCOPED_TRACE("request " + std::to_string(nth) + (howLong == tHowLong::forEver ? " and on" : ""));
            tOutcome seen = lives.liveWithoutMemory(nth, howLong);
            // What a library keeps from its first failure on is not kept twice.
            if (!seen.leaks.empty()) seen = lives.liveWithoutMemory(nth, howLong);
            EXPECT_GE(seen.injected, 1);
            const Comparison comparison(GetParam(), usual, seen, howLong);
            comparison.check();
            count(howLong == tHowLong::once ? "a whole life's allocation, once"
                                            : "a whole life's allocation, from then on",
                  comparison.figures());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Memory, LivesWithoutMemory, testing::ValuesIn(scenarios), [](const auto& scenario) {
    std::string name = scenario.param.name;
    std::erase_if(name, [](unsigned char character) { return std::isalnum(character) == 0; });
    return name;
});

}  // namespace
