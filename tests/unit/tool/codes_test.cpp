#include "tool/codes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <tuple>

#include "tests/support/folder.h"
#include "tool/explain/explainText.h"

namespace {

using testing::HasSubstr;

/// The source folder: the working folder or one above it.
std::filesystem::path sources() {
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / "codes.md") && folder.has_relative_path()) folder = folder.parent_path();
    return folder;
}

std::vector<int> linesOf(const std::vector<const tCode*>& entries) {
    std::vector<int> lines;
    for (const tCode* const entry : entries) lines.push_back(entry->line);
    return lines;
}

TEST(nCodes, AreDocumentedExactlyAsTheTableSays) {
    std::string document = support::read(sources() / "docs" / "codes.md");
    std::erase(document, '\r');
    const std::size_t table = document.find("| code |");
    ASSERT_NE(table, std::string::npos);
    EXPECT_EQ(document.substr(table), nExplain::codesAsMarkdown());
}

TEST(nCodes, AreSortedAndListEachPlaceOncePerCode) {
    const auto codes = nCodes::all();
    ASSERT_GT(codes.size(), 1U);
    for (std::size_t i = 1; i < codes.size(); ++i) {
        const tCode& a = codes[i - 1];
        const tCode& b = codes[i];
        if (b.code == 0) continue;
        EXPECT_LT(std::tuple(-a.code, a.file, a.line), std::tuple(-b.code, b.file, b.line));
    }
    EXPECT_EQ(codes.back().code, 0);
    for (const tCode& code : codes.first(codes.size() - 1)) EXPECT_LT(code.code, 0);
}

TEST(nCodes, HaveTextsThatFitIntoATable) {
    for (const tCode& code : nCodes::all()) {
        for (const std::string_view text : {code.meaning, code.shownAs, code.remedy}) {
            EXPECT_FALSE(text.empty());
            EXPECT_EQ(text.find_first_of("|\n"), std::string_view::npos) << text;
            EXPECT_FALSE(text.ends_with('.') || text.ends_with(' ')) << text;
        }
        EXPECT_EQ(code.file.empty(), code.line == 0);
    }
}

TEST(nCodes, MeanInAPluginsLineWhatThePluginManagerReports) {
    EXPECT_EQ(linesOf(nCodes::find(-52002)), std::vector<int>({41}));
    EXPECT_EQ(linesOf(nCodes::find(-52006)), std::vector<int>({48, 232, 256, 293}));
    EXPECT_EQ(linesOf(nCodes::find(-52008)), std::vector<int>({217, 1598}));
    EXPECT_EQ(linesOf(nCodes::find(-52026)), std::vector<int>({207, 225}));
}

TEST(nCodes, ListTheMeaningsOfAPluginsLineFirst) {
    EXPECT_EQ(linesOf(nCodes::find(-52005)), std::vector<int>({134, 225, 280, 299, 268}));
    EXPECT_EQ(linesOf(nCodes::find(-52003)), std::vector<int>({0, 138}));
    EXPECT_EQ(linesOf(nCodes::find(-52000)), std::vector<int>({0, 31}));
}

TEST(nCodes, LetAnyNegativeNumberOutsideTheHostsBeAPluginsOwn) {
    for (const std::int32_t code : {-1, -51999, -53000, -2147483647 - 1}) {
        EXPECT_EQ(linesOf(nCodes::find(code)), std::vector<int>({55})) << code;
    }
    EXPECT_EQ(linesOf(nCodes::find(-22)), std::vector<int>({55, 261})) << "or the parser's";
}

TEST(nCodes, AreNotFoundIfTheHostNeverRaisesThem) {
    for (const std::int32_t code : {0, 1, 52005, -52001, -52999}) {
        EXPECT_TRUE(nCodes::find(code).empty()) << code;
    }
}

}  // namespace
