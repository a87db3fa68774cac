#include "tool/rules.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/support/folder.h"

namespace {

TEST(nRules, HaveIdsThatOccurOnceAndConsistOfSmallLettersAndHyphens) {
    std::set<std::string_view> ids;
    for (const tRule& rule : nRules::all()) {
        EXPECT_TRUE(ids.insert(rule.id).second) << rule.id;
        EXPECT_EQ(rule.id.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"), std::string_view::npos)
            << rule.id;
    }
    EXPECT_GT(ids.size(), 40U);
}

TEST(nRules, SayCauseAndRemedyInSentencesAndTheTitleInAFewWords) {
    for (const tRule& rule : nRules::all()) {
        EXPECT_FALSE(rule.title.empty() || rule.title.ends_with('.')) << rule.id;
        EXPECT_TRUE(rule.cause.ends_with('.')) << rule.id;
        EXPECT_TRUE(rule.remedy.ends_with('.')) << rule.id;
    }
}

TEST(nRules, AreFoundByTheirIds) {
    for (const tRule& rule : nRules::all()) EXPECT_EQ(nRules::find(rule.id), &rule);
    EXPECT_EQ(nRules::find("no-such-rule"), nullptr);
    EXPECT_EQ(nRules::find(""), nullptr);
}

TEST(nRules, GiveTheirSeverityAndRemedyToAFinding) {
    const tFinding finding = nRules::finding("blank-line", "a.ini", 7, "A", "a message");
    EXPECT_EQ(finding.id, "blank-line");
    EXPECT_EQ(finding.severity, tSeverity::error);
    EXPECT_EQ(finding.file, "a.ini");
    EXPECT_EQ(finding.line, 7);
    EXPECT_EQ(finding.plugin, "A");
    EXPECT_EQ(finding.message, "a message");
    EXPECT_EQ(finding.remedy, nRules::find("blank-line")->remedy);
    EXPECT_EQ(nRules::finding("duplicate-name", "", {}, {}, "").severity, tSeverity::warning);
    EXPECT_EQ(nRules::finding("byte-order-mark", "", {}, {}, "").severity, tSeverity::note);
}

/// The source folder: the working folder or one above it.
std::filesystem::path sources() {
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / "tool.md") && folder.has_relative_path()) folder = folder.parent_path();
    return folder;
}

TEST(nRules, AreAllUsed) {
    std::string code;
    for (const char* const folder : {"check", "audit"}) {
        for (const auto& file : std::filesystem::directory_iterator(sources() / "tool" / folder)) {
            code += support::read(file.path());
        }
    }
    for (const tRule& rule : nRules::all()) {
        EXPECT_NE(code.find('"' + std::string(rule.id) + '"'), std::string::npos) << rule.id;
    }
}

TEST(nRules, AreTheTableInTheDocument) {
    std::string document = support::read(sources() / "docs" / "tool.md");
    std::erase(document, '\r');
    std::string rows;
    for (const tRule& rule : nRules::all()) {
        rows.append("| `").append(rule.id).append("` | ").append(nFinding::severityName(rule.severity)).append(" | ");
        rows.append(rule.title).append(" | ").append(rule.cause).append(" |\n");
    }
    EXPECT_NE(document.find("|---|---|---|---|\n" + rows + "\n"), std::string::npos) << rows;
}

}  // namespace
