#include "tool/check/dependencyFindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tDescriptionFile;
using nCheck::tOutcome;
using nCheck::tStart;
using support::described;
using support::idsOf;
using support::messageOf;
using support::remedyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tDescriptions = std::vector<tPluginDescription>;

std::vector<tDescriptionFile> filesOf(const tDescriptions& descriptions) {
    std::vector<tDescriptionFile> files;
    for (const tPluginDescription& description : descriptions) {
        files.emplace_back(description.name + ".ini").description = description;
        files.back().lines.set("Dependencies", 3);
    }
    return files;
}

/// Returns the findings. Every plug-in starts whose dependencies have started; those named in `failing` do not.
std::vector<tFinding> findingsFor(std::vector<tDescriptionFile> files, const std::vector<std::string>& failing = {}) {
    nCheck::tCatalogue catalogue(std::move(files));
    nCheck::tPredictedStarts starts(catalogue.descriptions(), 1);
    std::vector<tOutcome> outcomes(catalogue.size());
    for (const std::size_t plugin : catalogue.order()) {
        const tPluginDescription& description = catalogue.descriptions()[plugin];
        const bool fails = std::find(failing.begin(), failing.end(), description.name) != failing.end();
        outcomes[plugin] =
            starts.start(description, fails ? nCheck::tLoadVerdict::fails : nCheck::tLoadVerdict::succeeds);
    }
    nCheck::findInDependencies(catalogue, outcomes);
    return catalogue.takeFindings();
}

std::vector<tFinding> findingsFor(const tDescriptions& descriptions, const std::vector<std::string>& failing = {}) {
    return findingsFor(filesOf(descriptions), failing);
}

TEST(dependencyFindings, DoNotExistIfAllDependenciesStart) {
    EXPECT_THAT(findingsFor({described("A", {"B"}), described("B"), described("C", {"A", "B"})}), IsEmpty());
}

TEST(dependencyFindings, SayThatNoDescriptionHasTheName) {
    const auto findings = findingsFor({described("A", {"Transport"})});
    EXPECT_THAT(idsOf(findings), ElementsAre("3 unknown-dependency"));
    EXPECT_EQ(findings[0].message, "no description has the name \"Transport\"");
    EXPECT_EQ(findings[0].plugin, "A");
}

TEST(dependencyFindings, DoNotExistForAPluginThatIsAssumedToBeDescribedElsewhere) {
    nCheck::tCatalogue catalogue(filesOf({described("A", {"Far"})}));
    nCheck::findInDependencies(catalogue, std::vector<tOutcome>(1), {"Near", "Far"});
    EXPECT_THAT(catalogue.takeFindings(), IsEmpty());
}

TEST(dependencyFindings, NameASimilarPlugin) {
    EXPECT_EQ(messageOf(findingsFor({described("A", {"Setings"}), described("Settings")}), "unknown-dependency"),
              "no description has the name \"Setings\"; there is \"Settings\"");
}

TEST(dependencyFindings, NameThePluginThatDiffersOnlyInCase) {
    const auto findings = findingsFor({described("A", {"SETTINGS"}), described("Settings")});
    EXPECT_THAT(idsOf(findings), ElementsAre("3 dependency-case"));
    EXPECT_EQ(findings[0].remedy, "Write \"Settings\".");
}

TEST(dependencyFindings, SayThatCommasSeparateNames) {
    for (const char* name : {"B;C", "B|C", "B\uFF0CC", "B\u3001C", "B\uFF1BC"}) {
        EXPECT_EQ(remedyOf(findingsFor({described("A", {name})}), "unknown-dependency"),
                  "Separate the names by commas.")
            << name;
    }
}

TEST(dependencyFindings, NameTheFileThatTheHostRejects) {
    std::vector<tDescriptionFile> files = filesOf({described("A", {"B"})});
    files.emplace_back("broken.ini").rejectedName = "B";
    const auto findings = findingsFor(std::move(files));
    EXPECT_THAT(idsOf(findings), ElementsAre("3 unknown-dependency"));
    EXPECT_EQ(findings[0].message, "the host rejects the description of \"B\"");
    EXPECT_EQ(findings[0].remedy, "Correct broken.ini.");
}

TEST(dependencyFindings, SayThatAPluginDependsOnItself) {
    EXPECT_THAT(idsOf(findingsFor({described("A", {"A"})})), ElementsAre("3 self-dependency"));
}

TEST(dependencyFindings, DoNotExistIfAnotherPluginOfItsOwnNameHasStarted) {
    EXPECT_THAT(findingsFor({described("A"), described("A", {"A"})}), IsEmpty());
}

TEST(dependencyFindings, SayOnceThatADependencyIsRepeated) {
    const auto findings = findingsFor({described("A", {"B", "B", "B"}), described("B")});
    EXPECT_THAT(idsOf(findings), ElementsAre("3 repeated-dependency"));
    EXPECT_EQ(findings[0].message, "\"B\" is named twice: such a plug-in never starts");
    EXPECT_EQ(findingsFor({described("A", {"B", "B", "C", "C"}), described("B"), described("C")}).size(), 2U);
}

TEST(dependencyFindings, ListACircleForEachOfItsMembers) {
    const auto findings = findingsFor({described("A", {"C"}), described("B", {"A"}), described("C", {"B"})});
    ASSERT_THAT(idsOf(findings),
                ElementsAre("3 circular-dependency", "3 circular-dependency", "3 circular-dependency"));
    for (const tFinding& finding : findings) EXPECT_EQ(finding.message, "circular dependency: A -> C -> B -> A");
}

TEST(dependencyFindings, ShortenLongNamesInACircle) {
    const std::string longName(1000, 'n');
    const auto findings = findingsFor({described("A", {longName}), described(longName, {"A"})});
    EXPECT_EQ(findings[0].message, "circular dependency: A -> " + std::string(99, 'n') + "\u2026 -> A");
}

TEST(dependencyFindings, ListALargeCircleOnce) {
    tDescriptions ring;
    for (char c = 'A'; c <= 'U'; ++c) ring.push_back(described({c}, {{c == 'U' ? 'A' : static_cast<char>(c + 1)}}));
    const auto findings = findingsFor(ring);
    EXPECT_EQ(findings.size(), 21U);
    EXPECT_THAT(findings[0].message, HasSubstr("T -> U -> A"));
    EXPECT_EQ(findings[1].message, "circular dependency with \"A\", see A.ini");
}

TEST(dependencyFindings, OfACircleDoNotHideOtherMistakes) {
    const auto findings = findingsFor({described("A", {"B", "Nobody"}), described("B", {"A"})});
    EXPECT_THAT(idsOf(findings), ElementsAre("3 circular-dependency", "3 unknown-dependency", "3 circular-dependency"));
}

TEST(dependencyFindings, SayThatADependencyDoesNotStart) {
    const auto findings = findingsFor({described("A"), described("B", {"A"}), described("C", {"B"})}, {"A"});
    EXPECT_THAT(idsOf(findings), ElementsAre("3 dependency-fails", "3 dependency-fails"));
    EXPECT_EQ(findings[0].plugin, "B");
    EXPECT_EQ(findings[0].message, "its dependency \"A\" does not start");
}

TEST(dependencyFindings, SayThatAPluginComesBeforeItsDependency) {
    const auto findings = findingsFor({described("B"), described("D", {"B"}), described("C"), described("A", {"D"})});
    EXPECT_THAT(idsOf(findings), ElementsAre("3 chain-order"));
    EXPECT_EQ(findings[0].message, "the plug-in comes before its dependency \"D\" in the start order");
    EXPECT_THAT(findings[0].remedy, HasSubstr("\"Dependencies=B, D\" in A.ini"));
}

TEST(dependencyFindings, OfTheOrderAreNoneOfThePluginsIfACorrectedNameBringsItIntoOrder) {
    const auto findings = findingsFor({described("Deployment", {"Transport", "settings"}), described("Settings"),
                                       described("Transport", {"Settings"})});
    EXPECT_EQ(remedyOf(findings, "chain-order"),
              "Correct the names of dependencies that have findings of their own: this brings it into order, too.");
}

TEST(dependencyFindings, AreQuickForManyPluginsThatDependOnManyOfOneName) {
    const tDescriptions descriptions(5'000, described("A", {"A", "B"}));
    EXPECT_EQ(findingsFor(descriptions).size(), 5'000U * 2);
}

}  // namespace
