#include <gtest/gtest.h>

#include <locale>
#include <map>
#include <new>
#include <string>

#include "source/tPluginManager.h"
#include "tests/support/allocations.h"
#include "tests/support/fakeClock.h"
#include "tests/support/loader.h"

namespace {

/// Every path leads to a library, with an entry for every name: each takes as long as the test specifies and succeeds.
class AnyLibrary : public support::tLoader {
public:
    explicit AnyLibrary(support::tFakeClock& timeOfTheTest) : clock(timeOfTheTest) { current_ = this; }

    nLibrary::tHandle load(const char* /*path*/, std::uint32_t& /*osError*/) override { return this; }
    bool unload(nLibrary::tHandle /*library*/, std::uint32_t& /*osError*/) override { return true; }
    void* symbol(nLibrary::tHandle /*library*/, const char* name, std::uint32_t& /*osError*/) override {
        const std::string_view entry = name;
        if (entry.ends_with("Init")) return reinterpret_cast<void*>(&initialize);
        if (entry.ends_with("Stop")) return reinterpret_cast<void*>(&stop);
        return reinterpret_cast<void*>(&cleanup);
    }

    std::uint64_t initMs = 0;
    std::uint64_t stopMs = 0;
    std::uint64_t cleanupMs = 0;
    std::int32_t initCode = 0;
    support::tFakeClock& clock;

private:
    static std::int32_t initialize() {
        current_->clock.advance(current_->initMs);
        return current_->initCode;
    }
    static void stop() { current_->clock.advance(current_->stopMs); }
    static void cleanup() { current_->clock.advance(current_->cleanupMs); }

    inline static AnyLibrary* current_ = nullptr;
};

class tPluginManagerStatus : public testing::Test {
protected:
    static tPluginDescription alpha() {
        tPluginDescription description;
        description.name = "Alpha";
        description.path = R"(C:\plugins\alpha.dll)";
        description.initialize = "AlphaInit";
        description.stop = "AlphaStop";
        description.cleanup = "AlphaCleanup";
        return description;
    }

    static tPluginDescription named(const char* name) {
        tPluginDescription description;
        description.name = name;
        return description;
    }

    std::string textAfterStart(const tPluginDescription& description) {
        manager_.startAll({description}, 0xFFFFFFFF);
        return manager_.statusText();
    }

    support::tFakeClock clock_;
    AnyLibrary library_{clock_};
    tPluginManager manager_;
};

TEST_F(tPluginManagerStatus, IsEmptyWithoutEntries) { EXPECT_EQ(manager_.statusText(), ""); }

TEST_F(tPluginManagerStatus, ShowsEachCallWithItsTimeAndCode) {
    library_.initMs = 15;
    library_.initCode = 3;
    library_.stopMs = 2;
    library_.cleanupMs = 70'000;
    manager_.startAll({alpha()}, 1);
    manager_.stopAll();
    manager_.cleanupAll();
    EXPECT_EQ(manager_.statusText(),
              "Alpha (depends on )\n"
              "Loaded From: C:\\plugins\\alpha.dll\n"
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
    library_.initMs = 15;
    library_.stopMs = 2;
    tPluginDescription description = alpha();
    description.dependencies = {"Base", "Core"};
    description.cleanup = "";
    manager_.startAll({named("Base"), named("Core"), description}, 1);
    manager_.stopAll();
    manager_.cleanupAll();
    const std::string text = manager_.statusText();
    EXPECT_EQ(text.substr(text.find("Alpha")),
              "Alpha (depends on Base, Core)\n"
              "Loaded From: C:\\plugins\\alpha.dll\n"
              "Requires: 1\n"
              "AlphaInit Time: 15 ms\n"
              "AlphaInit Code: 0\n"
              "AlphaStop Time: 2 ms\n"
              "AlphaStop Code: 0\n"
              "\n");
}

TEST_F(tPluginManagerStatus, ShowsThreeLinesAndAnEmptyOneWhenAllCallsWereQuickAndSucceeded) {
    manager_.startAll({alpha()}, 1);
    manager_.stopAll();
    manager_.cleanupAll();
    EXPECT_EQ(manager_.statusText(),
              "Alpha (depends on )\n"
              "Loaded From: C:\\plugins\\alpha.dll\n"
              "Requires: 1\n"
              "\n");
}

TEST_F(tPluginManagerStatus, ShowsNoStopAndCleanUpLinesBeforeTheStop) {
    library_.initMs = library_.stopMs = library_.cleanupMs = 1;
    EXPECT_EQ(textAfterStart(alpha()),
              "Alpha (depends on )\n"
              "Loaded From: C:\\plugins\\alpha.dll\n"
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
              "Loaded From: \n"
              "Requires: 1\n"
              "Init Time: 0 ms\n"
              "Init Code: -52006\n"
              "\n");
}

TEST_F(tPluginManagerStatus, LabelsTheCallsOfEntriesWithoutANameByTheirKind) {
    // A built-in entry takes no time, unless the clock happens to tick during the call.
    clock_.msPerReading = 1;
    manager_.startAll({named("Alpha")}, 1);
    manager_.stopAll();
    manager_.cleanupAll();
    EXPECT_EQ(manager_.statusText(),
              "Alpha (depends on )\n"
              "Loaded From: \n"
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
    manager_.startAll({named("B"), named("A")}, 1);
    EXPECT_EQ(manager_.statusText(),
              "B (depends on )\nLoaded From: \nRequires: 1\n\n"
              "A (depends on )\nLoaded From: \nRequires: 1\n\n");
}

TEST_F(tPluginManagerStatus, PrintsTheMaskUnsigned) {
    tPluginDescription description = named("Alpha");
    description.requiresMask = 0xFFFFFFFF;
    EXPECT_EQ(textAfterStart(description), "Alpha (depends on )\nLoaded From: \nRequires: 4294967295\n\n");
}

TEST_F(tPluginManagerStatus, PrintsTheLow32BitsOfATimeButTestsAll64ForZero) {
    library_.initMs = 0x1'0000'0000;
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Time: 0 ms\nAlphaInit Code: 0\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, PrintsTheLargestTimeUnsigned) {
    library_.initMs = 0xFFFFFFFF;
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Time: 4294967295 ms\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, PrintsTheSmallestCodeSigned) {
    library_.initCode = INT32_MIN;
    EXPECT_NE(textAfterStart(alpha()).find("AlphaInit Code: -2147483648\n"), std::string::npos);
}

TEST_F(tPluginManagerStatus, DoesNotGroupDigitsInAnyGlobalLocale) {
    class Grouping : public std::numpunct<char> {
        [[nodiscard]] char do_thousands_sep() const override { return '.'; }
        [[nodiscard]] std::string do_grouping() const override { return "\3"; }
    };
    library_.initMs = 1'234'567;
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    const std::string text = textAfterStart(alpha());
    std::locale::global(before);
    EXPECT_NE(text.find("AlphaInit Time: 1234567 ms\n"), std::string::npos) << text;
}

TEST_F(tPluginManagerStatus, CopiesTextsUnchanged) {
    tPluginDescription description = named("%s \"Bl\xC3\xBCte\"");
    description.path = "\xE6\x8F\x92\xE4\xBB\xB6/a b.dll";
    EXPECT_EQ(textAfterStart(description),
              "%s \"Bl\xC3\xBCte\" (depends on )\nLoaded From: \xE6\x8F\x92\xE4\xBB\xB6/a b.dll\nRequires: 1\n\n");
}

TEST_F(tPluginManagerStatus, IsCompleteOrThrowsWhereverMemoryRunsOut) {
    const std::string whole = textAfterStart(alpha());
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
        std::string text = "not at all";
        allocations::startFailingNew(nth, allocations::tHowLong::once);
        try {
            text = manager_.statusText();
        } catch (const std::bad_alloc&) {
            // There is no text then.
        }
        failed = allocations::stopFailingNew();
        EXPECT_EQ(text, failed ? "not at all" : whole) << nth;
    }
}

TEST_F(tPluginManagerStatus, ChangesNothing) {
    library_.initMs = 15;
    const std::string text = textAfterStart(alpha());
    EXPECT_EQ(manager_.statusText(), text);
}

}  // namespace
