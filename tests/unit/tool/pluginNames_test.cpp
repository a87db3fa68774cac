#include "tool/check/pluginNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using support::idsOf;
using support::tPluginFolder;
using testing::ElementsAre;
using testing::IsEmpty;

/// Returns "FILE LINE ID" for each finding about the names of plug-ins in a.ini, b.ini, …
std::vector<tFinding> findingsFor(const std::vector<std::string>& nameLines) {
    std::vector<nCheck::tDescriptionFile> files;
    char file = 'a';
    const support::tFolder folder;
    for (const std::string& line : nameLines) {
        files.push_back(nCheck::readFile(folder.write(std::string(1, file++) + ".ini", "[Service]\n" + line + "\n")));
        static_cast<void>(files.back().findings.take(""));
    }
    nCheck::tCatalogue catalogue(std::move(files));
    nCheck::findInNames(catalogue);
    return catalogue.takeFindings();
}

TEST(pluginNames, ShouldNotBeMissing) {
    EXPECT_THAT(idsOf(findingsFor({"Path=x"})), ElementsAre("missing-name"));
    EXPECT_THAT(idsOf(findingsFor({"Name="})), ElementsAre("2 missing-name"));
    EXPECT_THAT(idsOf(findingsFor({"Path=x", "Path=x"})), ElementsAre("missing-name", "missing-name"))
        << "these are not two of one name";
}

TEST(pluginNames, WithACommaOrSurroundingBlanksCannotBeDependedOn) {
    const auto comma = findingsFor({"Name=A,B"});
    EXPECT_THAT(idsOf(comma), ElementsAre("2 unusable-name"));
    EXPECT_EQ(comma[0].message, "nothing can depend on \"A,B\", which contains a comma");
    EXPECT_EQ(findingsFor({"Name=\" A\""}).at(0).message,
              "nothing can depend on \" A\", which begins or ends with a blank");
    EXPECT_THAT(idsOf(findingsFor({"Name=,"})), ElementsAre("2 unusable-name"));
    EXPECT_THAT(findingsFor({"Name=A B"}), IsEmpty());
}

TEST(pluginNames, OfSeveralPluginsAreReportedForAllButTheFirstFile) {
    const auto findings = findingsFor({"Name=A", "Name=B", "Name=A", "Name=a", "Name=A"});
    EXPECT_THAT(idsOf(findings), ElementsAre("2 duplicate-name", "2 duplicate-name"));
    EXPECT_TRUE(findings[0].file.ends_with("c.ini"));
    EXPECT_TRUE(findings[1].file.ends_with("e.ini"));
    EXPECT_TRUE(findings[0].message.ends_with("a.ini")) << findings[0].message;
}

TEST(pluginNames, OfEntryPointsShouldNotAllBeMissingIfThereIsALibrary) {
    std::vector<nCheck::tDescriptionFile> files;
    for (const char* name : {"Initialize", "Stop", "Cleanup", "None", "NoLibrary"}) {
        nCheck::tDescriptionFile& file = files.emplace_back(std::string(name) + ".ini");
        file.description = support::described(name);
        file.description->path = "C:\\a.dll";
    }
    files[0].description->initialize = "I";
    files[1].description->stop = "S";
    files[2].description->cleanup = "C";
    files[4].description->path.clear();
    nCheck::tCatalogue catalogue(std::move(files));
    findWithoutEntries(catalogue);
    const auto findings = catalogue.takeFindings();
    EXPECT_THAT(idsOf(findings), ElementsAre("no-entries"));
    EXPECT_EQ(findings[0].plugin, "None");
}

}  // namespace
