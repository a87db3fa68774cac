#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/groupingLocale.h"
#include "tests/support/managerTest.h"

namespace {

class tPluginManagerStatus : public support::tManagerTest {
protected:
    static tPluginDescription alpha() {
        tPluginDescription description = named("Alpha");
        description.initialize = "AlphaInit";
        description.stop = "AlphaStop";
        description.cleanup = "AlphaCleanup";
        return description;
    }

    static tPluginDescription named(const char* name) {
        tPluginDescription description;
        description.name = name;
        description.path = "A";
        return description;
    }

    /// Makes the calls last so long, and Initialize return this code.
    void script(std::uint64_t initMs, std::int32_t initCode = 0, std::uint64_t stopMs = 0,
                std::uint64_t cleanupMs = 0) {
        plugins_.plugin("A").initialize = [=, this] { return clock_.advance(initMs), initCode; };
        plugins_.plugin("A").stop = [=, this] { clock_.advance(stopMs); };
        plugins_.plugin("A").cleanup = [=, this] { clock_.advance(cleanupMs); };
    }

    std::string textAfterStart(const tPluginDescription& description) {
        start({description});
        return manager_.statusText();
    }
    std::string textAfterCleanUp(const std::vector<tPluginDescription>& descriptions) {
        start(descriptions);
        stopAndCleanUp();
        return manager_.statusText();
    }
};

TEST_F(tPluginManagerStatus, IsEmptyWithoutEntries) { EXPECT_EQ(manager_.statusText(), ""); }

TEST_F(tPluginManagerStatus, ShowsEachCallWithItsTimeAndCode) {
    script(15, 3, 2, 70'000);
    EXPECT_EQ(textAfterCleanUp({alpha()}),
              "Alpha (depends on )\n"
              "Loaded From: A\n"
              "Requires: 1\n"
              "AlphaInit Time: 15 ms\n"
              "AlphaInit Code: 3\n"
              "AlphaStop Time: 2 ms\n"
              "AlphaStop Code: 0\n"
              "AlphaCleanup Time: 70000 ms\n"
              "AlphaCleanup Code: 0\n"
              "\n");
}

TEST_F(tPluginManagerStatus, ListsDependenciesAndLeavesOutTheCallThatTookNoTimeAndSucceeded) {
    script(15, 0, 2);
    tPluginDescription description = alpha();
    description.dependencies = {"Base", "Core"};
    description.cleanup = "";
    const std::string text = textAfterCleanUp({named("Base"), named("Core"), description});
    EXPECT_EQ(text.substr(text.find("Alpha")),
              "Alpha (depends on Base, Core)\n"
              "Loaded From: A\n"
              "Requires: 1\n"
              "AlphaInit Time: 15 ms\n"
              "AlphaInit Code: 0\n"
              "AlphaStop Time: 2 ms\n"
              "AlphaStop Code: 0\n"
              "\n");
}

TEST_F(tPluginManagerStatus, ShowsThreeLinesAndAnEmptyOneWhenAllCallsWereQuickAndSucceeded) {
    EXPECT_EQ(textAfterCleanUp({alpha()}),
              "Alpha (depends on )\n"
              "Loaded From: A\n"
              "Requires: 1\n"
              "\n");
}

TEST_F(tPluginManagerStatus, ShowsNoStopAndCleanUpLinesBeforeTheStop) {
    script(1, 0, 1, 1);
    EXPECT_EQ(textAfterStart(alpha()),
              "Alpha (depends on )\n"
              "Loaded From: A\n"
              "Requires: 1\n"
              "AlphaInit Time: 1 ms\n"
              "AlphaInit Code: 0\n"
              "\n");
}

TEST_F(tPluginManagerStatus, ShowsTheCodeOfAFailureThatTookNoTime) {
    tPluginDescription description = named("Alpha");
    description.dependencies = {"nobody"};
    EXPECT_EQ(textAfterStart(description),
              "Alpha (depends on nobody)\n"
              "Loaded From: A\n"
              "Requires: 1\n"
              "Init Time: 0 ms\n"
              "Init Code: -52006\n"
              "\n");
}

TEST_F(tPluginManagerStatus, LabelsTheCallsOfEntriesWithoutANameByTheirKind) {
    // A built-in entry takes no time, unless the clock happens to tick during the call.
    clock_.msPerReading = 1;
    EXPECT_EQ(textAfterCleanUp({named("Alpha")}),
              "Alpha (depends on )\n"
              "Loaded From: A\n"
              "Requires: 1\n"
              "Init Time: 1 ms\n"
              "Init Code: 0\n"
              "Stop Time: 1 ms\n"
              "Stop Code: 0\n"
              "Cleanup Time: 1 ms\n"
              "Cleanup Code: 0\n"
              "\n");
}

TEST_F(tPluginManagerStatus, FollowsTheStartOrder) {
    start({named("B"), named("A")});
    EXPECT_EQ(manager_.statusText(),
              "B (depends on )\nLoaded From: A\nRequires: 1\n\n"
              "A (depends on )\nLoaded From: A\nRequires: 1\n\n");
}

TEST_F(tPluginManagerStatus, PrintsTheMaskUnsigned) {
    tPluginDescription description = named("Alpha");
    description.requiresMask = 0xFFFFFFFF;
    EXPECT_EQ(textAfterStart(description), "Alpha (depends on )\nLoaded From: A\nRequires: 4294967295\n\n");
}

TEST_F(tPluginManagerStatus, PrintsTheLow32BitsOfATimeButTestsAll64ForZero) {
    script(0x1'0000'0000);
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Time: 0 ms\nAlphaInit Code: 0\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, PrintsTheLargestTimeUnsigned) {
    script(0xFFFFFFFF);
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Time: 4294967295 ms\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, PrintsTheSmallestCodeSigned) {
    script(0, INT32_MIN);
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Code: -2147483648\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, DoesNotGroupDigitsInAnyGlobalLocale) {
    script(1'234'567);
    const support::tGroupingLocale locale;
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Time: 1234567 ms\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, CopiesTextsUnchanged) {
    tPluginDescription description = named("%s \"Bl\xC3\xBCte\"");
    description.path = "\xE6\x8F\x92\xE4\xBB\xB6/a b.dll";
    description.dependencies = {"\xFF, \n"};
    EXPECT_EQ(textAfterStart(description),
              "%s \"Bl\xC3\xBCte\" (depends on \xFF, \n)\nLoaded From: \xE6\x8F\x92\xE4\xBB\xB6/a b.dll\n"
              "Requires: 1\nInit Time: 0 ms\nInit Code: -52006\n\n");
}

TEST_F(tPluginManagerStatus, ChangesNothing) {
    script(15);
    const std::string text = textAfterStart(alpha());
    EXPECT_EQ(manager_.statusText(), text);
}

}  // namespace
