#include "tool/finding.h"

#include <gtest/gtest.h>

namespace {

const tFinding blankLine{"blank-line", tSeverity::error, "C:\\插件\\a.ini", 7, "A", "blank line", "Delete it"};

tFinding ofSeverity(tSeverity severity) {
    tFinding finding = blankLine;
    finding.severity = severity;
    return finding;
}

TEST(nFinding, IsShownAsACompilerShowsIt) {
    EXPECT_EQ(nFinding::toText(blankLine, false), "C:\\插件\\a.ini:7: error: blank line [blank-line]");
    tFinding wholeFile = ofSeverity(tSeverity::warning);
    wholeFile.line.reset();
    EXPECT_EQ(nFinding::toText(wholeFile, false), "C:\\插件\\a.ini: warning: blank line [blank-line]");
    tFinding withoutFile = wholeFile;
    withoutFile.file.clear();
    EXPECT_EQ(nFinding::toText(withoutFile, false), "warning: blank line [blank-line]");
    EXPECT_EQ(nFinding::toText(withoutFile, true), "\x1B[1;35mwarning:\x1B[0m blank line [blank-line]");
}

TEST(nFinding, HasColoursOnlyIfAskedFor) {
    EXPECT_EQ(nFinding::toText(blankLine, true),
              "\x1B[1mC:\\插件\\a.ini:7:\x1B[0m \x1B[1;31merror:\x1B[0m blank line [blank-line]");
    EXPECT_EQ(nFinding::toText(ofSeverity(tSeverity::warning), true),
              "\x1B[1mC:\\插件\\a.ini:7:\x1B[0m \x1B[1;35mwarning:\x1B[0m blank line [blank-line]");
    EXPECT_EQ(nFinding::toText(ofSeverity(tSeverity::note), true),
              "\x1B[1mC:\\插件\\a.ini:7:\x1B[0m \x1B[1;36mnote:\x1B[0m blank line [blank-line]");
}

TEST(nFinding, NamesItsSeverity) {
    EXPECT_EQ(nFinding::severityName(tSeverity::error), "error");
    EXPECT_EQ(nFinding::severityName(tSeverity::warning), "warning");
    EXPECT_EQ(nFinding::severityName(tSeverity::note), "note");
}

TEST(nFinding, MattersIfItIsAnErrorOrAWarningThatCounts) {
    const tFinding error = ofSeverity(tSeverity::error);
    const tFinding warning = ofSeverity(tSeverity::warning);
    const tFinding note = ofSeverity(tSeverity::note);
    for (const bool strict : {false, true}) {
        EXPECT_FALSE(nFinding::matter({}, strict));
        EXPECT_FALSE(nFinding::matter({note}, strict));
        EXPECT_TRUE(nFinding::matter({note, warning, error}, strict));
        EXPECT_EQ(nFinding::matter({note, warning}, strict), strict);
    }
}

}  // namespace
