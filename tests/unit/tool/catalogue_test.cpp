#include "tool/check/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tCatalogue;
using nCheck::tDescriptionFile;
using support::described;
using testing::ElementsAre;

tDescriptionFile file(const std::string& path, std::optional<tPluginDescription> description) {
    tDescriptionFile result(path);
    result.description = std::move(description);
    return result;
}

std::vector<tDescriptionFile> someFiles() {
    std::vector<tDescriptionFile> files;
    files.push_back(file("1.ini", described("B")));
    files.push_back(file("2.ini", std::nullopt));
    files.push_back(file("3.ini", described("A")));
    files.push_back(file("4.ini", described("0", {"A"})));
    files.push_back(file("5.ini", described("A")));
    return files;
}

TEST(tCatalogue, ContainsTheAcceptedDescriptionsInTheOrderOfTheFiles) {
    const tCatalogue catalogue(someFiles());
    EXPECT_EQ(catalogue.size(), 4U);
    EXPECT_EQ(catalogue.descriptions()[1].name, "A");
    EXPECT_EQ(catalogue.path(1), "3.ini");
    EXPECT_EQ(catalogue.files().size(), 5U);
}

TEST(tCatalogue, KnowsTheStartOrder) {
    const tCatalogue catalogue(someFiles());
    EXPECT_THAT(catalogue.order(), ElementsAre(1, 3, 2, 0)) << "A, 0, A, B by the host's order";
    for (std::size_t rank = 0; rank < catalogue.size(); ++rank) {
        EXPECT_EQ(catalogue.rank(catalogue.order()[rank]), rank);
    }
}

TEST(tCatalogue, FindsThePluginsOfANameInStartOrder) {
    const tCatalogue catalogue(someFiles());
    ASSERT_NE(catalogue.named("A"), nullptr);
    EXPECT_THAT(catalogue.named("A")->plugins, ElementsAre(1, 2 + 1));
    EXPECT_EQ(catalogue.named("A")->firstRank, 0U);
    EXPECT_EQ(catalogue.named("a"), nullptr);
    EXPECT_EQ(catalogue.names().size(), 3U);
}

TEST(tCatalogue, ReturnsTheFindingsInTheOrderOfTheFilesAndOfTheirLines) {
    std::vector<tDescriptionFile> files = someFiles();
    files[1].findings.add("blank-line", 2, "in a rejected file");
    files[1].rejectedName = "R";
    tCatalogue catalogue(std::move(files));
    catalogue.findings(3).add("missing-path", 1, "last");
    catalogue.findings(0).add("missing-path", 9, "second");
    catalogue.findings(0).add("missing-path", 1, "first");
    std::vector<std::string> texts;
    for (const tFinding& finding : catalogue.takeFindings()) {
        texts.push_back(finding.message + " " + finding.file + " " + finding.plugin.value_or(""));
    }
    EXPECT_THAT(texts, ElementsAre("first 1.ini B", "second 1.ini B", "in a rejected file 2.ini R", "last 5.ini A"));
}

}  // namespace
