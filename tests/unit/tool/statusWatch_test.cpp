#include "tool/status/statusWatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/support/statusReports.h"
#include "tests/support/text.h"

namespace {

using nStatus::firstLines;
using nStatus::redraw;
using support::occurrences;
using support::statusHead;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string alpha = "Alpha (depends on )\nLoaded From: \nRequires: 1\n\n";
const std::string beta = "Beta (depends on )\nLoaded From: \nRequires: 1\n\n";

/// A status file that is watched, and what happens to it between two looks.
class nStatusWatch : public testing::Test {
protected:
    /// Returns what is written while these actions happen, one after each look.
    std::string watched(std::vector<std::function<void()>> actions) {
        std::ostringstream out;
        std::ostringstream error;
        tContext context{out, error};
        std::size_t next = 0;
        display.waitForEnd = [&] {
            if (next == actions.size()) return true;
            actions[next++]();
            return false;
        };
        nStatus::watch(context, folder.utf8("s.status"), display);
        EXPECT_EQ(error.str(), "");
        EXPECT_EQ(context.exitCode, exitNothingFound);
        return out.str();
    }
    void write(const std::string& plugins) const { folder.write("s.status", statusHead + plugins); }

    support::tFolder folder;
    nStatus::tDisplay display{true, [] { return std::size_t{24}; }, {}};
};

TEST_F(nStatusWatch, DrawsAgainWhenTheFileHasChanged) {
    write(alpha);
    const std::string drawn = watched({[&] { write(alpha + beta); }});
    const std::size_t again = drawn.find("\x1B[5F");  // up to the first of five lines
    ASSERT_NE(again, std::string::npos) << drawn;
    EXPECT_THAT(drawn.substr(0, again), HasSubstr("1 plug-in: none failed"));
    EXPECT_THAT(drawn.substr(again), HasSubstr("2 plug-ins: none failed"));
}

TEST_F(nStatusWatch, DrawsNothingWhenTheFileHasNotChanged) {
    write(alpha);
    EXPECT_EQ(occurrences(watched({[] {}, [] {}, [&] { write(alpha); }}), "plug-in:"), 1);
}

TEST_F(nStatusWatch, NeverErasesTheScreen) {
    write(alpha);
    EXPECT_THAT(watched({[&] { write(beta); }}), Not(HasSubstr("\x1B[2J")));
}

TEST_F(nStatusWatch, HidesTheCursorAndShowsItAgain) {
    write(alpha);
    const std::string drawn = watched({});
    EXPECT_THAT(drawn, StartsWith("\x1B[?25l\x1B[?7l"));
    EXPECT_THAT(drawn, EndsWith("\x1B[?7h\x1B[?25h"));
}

TEST_F(nStatusWatch, KeepsTheLastContentWhileThereIsNoFile) {
    write(alpha);
    const std::string drawn = watched({[&] { remove(folder.path() / "s.status"); }, [&] { write(beta); }});
    const std::size_t missing = drawn.find("Cannot read");
    ASSERT_NE(missing, std::string::npos);
    EXPECT_GT(missing, drawn.find("Alpha"));
    EXPECT_LT(missing, drawn.find("Beta"));
    EXPECT_EQ(occurrences(drawn, "Alpha"), 2);
}

TEST_F(nStatusWatch, SaysThatThereIsNoFileEvenIfTheLastContentFillsTheScreen) {
    display.rows = [] { return std::size_t{4}; };
    write(alpha + beta);
    EXPECT_THAT(watched({[&] { remove(folder.path() / "s.status"); }}), HasSubstr("Cannot read"));
}

TEST_F(nStatusWatch, WaitsForAFileThatIsNotThereYet) {
    const std::string drawn = watched({[&] { write(alpha); }});
    EXPECT_LT(drawn.find("Cannot read"), drawn.find("Alpha"));
}

TEST_F(nStatusWatch, ShowsWhatFitsOnTheTerminal) {
    display.rows = [] { return std::size_t{4}; };
    write(alpha + beta);
    EXPECT_THAT(watched({}), HasSubstr("(4 more lines)\x1B[K\n\x1B[J"));
}

TEST_F(nStatusWatch, DrawsOnATerminalOfAnyHeight) {
    display.rows = [] { return std::size_t{0}; };
    write(alpha);
    EXPECT_THAT(watched({}), HasSubstr("(5 more lines)"));
}

TEST_F(nStatusWatch, WritesOneContentBelowTheOtherIfThereIsNoTerminal) {
    display.isTerminal = false;
    display.rows = [] { return std::size_t{2}; };
    write(alpha);
    const std::string drawn = watched({[&] { write(beta); }});
    EXPECT_THAT(drawn, Not(HasSubstr("\x1B")));
    EXPECT_LT(drawn.find("Alpha"), drawn.find("\n\nUpdated"));
    EXPECT_LT(drawn.find("\n\nUpdated"), drawn.find("Beta"));
}

TEST_F(nStatusWatch, EndsWhenNobodyReadsTheOutput) {
    write(alpha);
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    tContext context{out, out};
    int looks = 0;
    display.waitForEnd = [&] { return ++looks > 5; };
    nStatus::watch(context, folder.utf8("s.status"), display);
    EXPECT_EQ(looks, 1);
}

TEST(nStatusRedraw, ErasesTheRestOfEachLineAndWhatIsBelow) {
    EXPECT_EQ(redraw("a\nb\n", 0), "a\x1B[K\nb\x1B[K\n\x1B[J");
}

TEST(nStatusRedraw, BeginsAtTheFirstLineDrawnBefore) { EXPECT_EQ(redraw("a\n", 3), "\x1B[3Fa\x1B[K\n\x1B[J"); }

TEST(nStatusFirstLines, AreAllIfThereAreNoMore) {
    EXPECT_EQ(firstLines("a\nb\n", 2), "a\nb\n");
    EXPECT_EQ(firstLines("", 1), "");
}

TEST(nStatusFirstLines, LeaveALineToSayHowManyAreNotShown) {
    EXPECT_EQ(firstLines("a\nb\nc\n", 2), "a\n(2 more lines)\n");
    EXPECT_EQ(firstLines("a\nb\nc\n", 1), "(3 more lines)\n");
}

}  // namespace
