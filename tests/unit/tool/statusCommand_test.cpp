#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/support/statusReports.h"
#include "tool/ziptra.h"

namespace {

using support::statusHead;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// A folder with a status file, and the results of a run of the command.
class nStatusCommand : public testing::Test {
protected:
    int run(std::vector<std::string> arguments) {
        out.str("");
        error.str("");
        tContext context{out, error};
        arguments.insert(arguments.begin(), "status");
        return runZiptra(arguments, context);
    }
    void writeFile(const std::string& content) const { folder.write("s.status", statusHead + content); }

    support::tFolder folder;
    std::string file = folder.utf8("s.status");
    std::ostringstream out;
    std::ostringstream error;
};

const std::string fine = "A (depends on )\nLoaded From: \nRequires: 1\n\n";
const std::string warned = "A (depends on )\nLoaded From: \nRequires: 1\nInit Time: 0 ms\nInit Code: 1\n\n";
const std::string failed = "A (depends on )\nLoaded From: \nRequires: 1\nInit Time: 0 ms\nInit Code: -1\n\n";

TEST_F(nStatusCommand, ReturnsZeroIfThereIsNothingToReport) {
    writeFile(fine);
    EXPECT_EQ(run({file}), 0);
    EXPECT_THAT(out.str(), HasSubstr("1 plug-in: none failed"));
    EXPECT_EQ(error.str(), "");
}

TEST_F(nStatusCommand, ReturnsOneForAFailureOrAMessage) {
    writeFile(failed);
    EXPECT_EQ(run({file}), 1);
    writeFile("message\n" + fine);
    EXPECT_EQ(run({file}), 1);
}

TEST_F(nStatusCommand, ReturnsOneForAWarningOnlyIfStrict) {
    writeFile(warned);
    EXPECT_EQ(run({file}), 0);
    EXPECT_EQ(run({file, "--strict"}), 1);
}

TEST_F(nStatusCommand, ReturnsTwoAndOneSentenceIfThereIsNoStatusFile) {
    EXPECT_EQ(run({file}), 2);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(error.str(), HasSubstr("Cannot read '" + file + "'"));
    EXPECT_THAT(error.str(), EndsWith("\n"));
    folder.write("s.status", "[Service]\n");
    EXPECT_EQ(run({file}), 2);
    EXPECT_THAT(error.str(), HasSubstr("line 1: "));
}

TEST_F(nStatusCommand, PrintsEachForm) {
    writeFile(failed);
    EXPECT_EQ(run({file, "--json"}), 1);
    EXPECT_THAT(out.str(), StartsWith("{\n  \"schema\": 1,"));
    EXPECT_EQ(run({file, "--prometheus"}), 1);
    EXPECT_THAT(out.str(), StartsWith("# HELP ziptra_up "));
    EXPECT_EQ(run({file, "--html"}), 1);
    EXPECT_THAT(out.str(), StartsWith("<!DOCTYPE html>"));
}

TEST_F(nStatusCommand, WritesTheResultToAFileInstead) {
    writeFile(failed);
    EXPECT_EQ(run({file, "--output", folder.utf8("table.txt")}), 1);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(folder.read("table.txt"), StartsWith("Updated "));
}

TEST_F(nStatusCommand, WritesAFileWithoutColours) {
    writeFile(failed);
    EXPECT_EQ(run({"--color", "always", file}), 1);
    EXPECT_THAT(out.str(), HasSubstr("\x1B[1;31m"));
    EXPECT_EQ(run({"--color", "always", file, "--output", folder.utf8("table.txt")}), 1);
    EXPECT_THAT(folder.read("table.txt"), testing::Not(HasSubstr("\x1B")));
}

TEST_F(nStatusCommand, ReturnsTwoIfTheOutputCannotBeWritten) {
    writeFile(fine);
    EXPECT_EQ(run({file, "--output", folder.utf8("missing/table.txt")}), 2);
    EXPECT_THAT(error.str(), HasSubstr("Cannot write"));
}

TEST_F(nStatusCommand, WritesMetricsOfAMachineWithoutAStatusFile) {
    EXPECT_EQ(run({file, "--prometheus", "--output", folder.utf8("ziptra.prom")}), 2);
    EXPECT_THAT(folder.read("ziptra.prom"), HasSubstr("\nziptra_up 0\n"));
    EXPECT_THAT(error.str(), HasSubstr("Cannot read"));
}

TEST_F(nStatusCommand, AcceptsOneFormOnly) {
    writeFile(fine);
    const std::vector<std::string> forms{"--json", "--prometheus", "--html", "--watch"};
    for (const std::string& first : forms) {
        for (const std::string& second : forms) {
            if (first != second) {
                EXPECT_EQ(run({file, first, second}), 2) << first << second;
            }
        }
    }
    EXPECT_EQ(run({file, "--watch", "--output", folder.utf8("table.txt")}), 2);
}

TEST_F(nStatusCommand, ShowsAnExampleInItsHelp) {
    EXPECT_EQ(run({"--help"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("Example: ziptra status --html --output status.html"));
    EXPECT_THAT(out.str(), testing::Not(HasSubstr("Excludes")));
    EXPECT_THAT(out.str(), HasSubstr("--output FILE "));
}

}  // namespace
