#include "tool/check/fileFindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tFileFindings;
using support::idsOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

TEST(tFileFindings, AreInTheOrderOfLinesAndThoseOfTheWholeFileFollow) {
    tFileFindings findings("a.ini");
    findings.add("blank-line", 3, "late");
    findings.add("repeated-key", 1, "early");
    findings.add("missing-path", std::nullopt, "whole");
    findings.add("unknown-key", 1, "also early, and added later");
    EXPECT_THAT(idsOf(findings.take("")),
                ElementsAre("1 repeated-key", "1 unknown-key", "3 blank-line", "missing-path"));
}

TEST(tFileFindings, NameTheFileAndThePluginUnlessItHasNoName) {
    tFileFindings findings("a.ini");
    EXPECT_EQ(findings.file(), "a.ini");
    findings.add("missing-path", 1, "text");
    const std::vector<tFinding> named = findings.take("A");
    ASSERT_EQ(named.size(), 1U);
    EXPECT_EQ(named[0].file, "a.ini");
    EXPECT_EQ(named[0].plugin, "A");
    findings.add("missing-path", 1, "text");
    EXPECT_EQ(findings.take("").at(0).plugin, std::nullopt);
}

TEST(tFileFindings, HaveTheRulesRemedyUnlessThereIsABetterOne) {
    tFileFindings findings("a.ini");
    findings.add("blank-line", 1, "text");
    findings.add("blank-line", 2, "text", "Do something else.");
    const std::vector<tFinding> taken = findings.take("");
    EXPECT_EQ(taken.at(0).remedy, nRules::find("blank-line")->remedy);
    EXPECT_EQ(taken.at(1).remedy, "Do something else.");
}

TEST(tFileFindings, KeepTwentyOfEachKindAndSayHowManyMoreThereAre) {
    tFileFindings findings("a.ini");
    for (int line = 1; line <= 20; ++line) findings.add("blank-line", line, "blank");
    findings.add("unknown-key", 5, "unknown");
    EXPECT_EQ(findings.take("").back().message, "blank") << "twenty are not too many";
    for (int line = 1; line <= 123; ++line) findings.add("blank-line", line, "blank");
    findings.add("unknown-key", 500, "unknown");
    const std::vector<tFinding> taken = findings.take("");
    ASSERT_EQ(taken.size(), 21U);
    EXPECT_EQ(taken[18].message, "blank");
    EXPECT_EQ(taken[19].line, 20);
    EXPECT_THAT(taken[19].message, EndsWith("(and 103 more of this kind in the file)"));
    EXPECT_EQ(taken[20].message, "unknown");
    EXPECT_THAT(findings.take(""), IsEmpty());
}

TEST(tFileFindings, AreDescribedOnlyIfTheyAreKept) {
    tFileFindings findings("a.ini");
    int described = 0;
    for (int line = 1; line <= 1000; ++line) {
        findings.add("blank-line", line, [&described] {
            ++described;
            return tFileFindings::tWords{"blank", "Fill it."};
        });
    }
    EXPECT_EQ(described, 20);
    const std::vector<tFinding> taken = findings.take("");
    ASSERT_EQ(taken.size(), 20U);
    EXPECT_EQ(taken[18].message, "blank");
    EXPECT_EQ(taken[19].message, "blank (and 980 more of this kind in the file)");
    EXPECT_EQ(taken[19].remedy, "Fill it.");
}

}  // namespace
