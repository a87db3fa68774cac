#include "tool/check/circles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tCatalogue;
using nCheck::tCircles;
using nCheck::tDescriptionFile;
using support::described;
using testing::ElementsAre;
using testing::IsEmpty;
using tDescriptions = std::vector<tPluginDescription>;

std::vector<tDescriptionFile> filesOf(const tDescriptions& descriptions) {
    std::vector<tDescriptionFile> files;
    for (const tPluginDescription& description : descriptions) {
        files.emplace_back(description.name + ".ini").description = description;
    }
    return files;
}

/// Returns the positions of the circle's members, none if the plug-in is in no circle.
std::vector<std::size_t> circleOf(const tDescriptions& descriptions, std::size_t plugin,
                                  std::vector<bool> mayStart = {}) {
    const tCatalogue catalogue(filesOf(descriptions));
    mayStart.resize(descriptions.size());
    const tCircles circles(catalogue, mayStart);
    return circles.of(plugin) == nullptr ? std::vector<std::size_t>() : *circles.of(plugin);
}

TEST(tCircles, BeginWithTheFirstNameAndFollowTheDependencies) {
    const tDescriptions ring{described("C", {"B"}), described("A", {"C"}), described("B", {"A"})};
    for (std::size_t plugin = 0; plugin < 3; ++plugin) EXPECT_THAT(circleOf(ring, plugin), ElementsAre(1, 0, 2));
}

TEST(tCircles, ContainNeitherThoseThatLeadIntoThemNorThoseToWhichTheyLead) {
    const tDescriptions descriptions{described("A", {"B", "X"}), described("B", {"A"}), described("C", {"A"}),
                                     described("X")};
    EXPECT_THAT(circleOf(descriptions, 0), ElementsAre(0, 1));
    EXPECT_THAT(circleOf(descriptions, 2), IsEmpty());
    EXPECT_THAT(circleOf(descriptions, 3), IsEmpty());
}

TEST(tCircles, AreSeveralIfTheyAreNotConnected) {
    const tDescriptions descriptions{described("A", {"B"}), described("B", {"A"}), described("C", {"D"}),
                                     described("D", {"A", "C"})};
    EXPECT_THAT(circleOf(descriptions, 1), ElementsAre(0, 1));
    EXPECT_THAT(circleOf(descriptions, 3), ElementsAre(2, 3));
}

TEST(tCircles, ThatShareAPluginAreOne) {
    const tDescriptions descriptions{described("A", {"B", "C"}), described("B", {"A"}), described("C", {"A"})};
    EXPECT_THAT(circleOf(descriptions, 2), ElementsAre(0, 1, 2));
}

TEST(tCircles, HaveAtLeastTwoPlugins) { EXPECT_THAT(circleOf({described("A", {"A"})}, 0), IsEmpty()); }

TEST(tCircles, AreHarmlessIfAPluginMayStart) {
    // The second A depends on nothing.
    const tDescriptions descriptions{described("A", {"B"}), described("B", {"A"}), described("A")};
    EXPECT_THAT(circleOf(descriptions, 0, {false, true, true}), IsEmpty());
    EXPECT_THAT(circleOf(descriptions, 0), ElementsAre(0, 1));
}

TEST(tCircles, ListANameOnce) {
    const tDescriptions descriptions{described("A", {"B"}), described("B", {"A"}), described("A", {"B"})};
    EXPECT_THAT(circleOf(descriptions, 2), ElementsAre(0, 1));
}

TEST(tCircles, IgnoreDependenciesWithoutADescription) {
    EXPECT_THAT(circleOf({described("A", {"B", "Nobody"}), described("B", {"A"})}, 0), ElementsAre(0, 1));
}

TEST(tCircles, MayBeLong) {
    tDescriptions ring;
    for (int i = 0; i < 20'000; ++i) ring.push_back(described(std::to_string(i), {std::to_string((i + 1) % 20'000)}));
    EXPECT_EQ(circleOf(ring, 7).size(), 20'000U);
}

TEST(tCircles, AreFoundAmongManyPluginsOfOneName) {
    tDescriptions descriptions(20'000, described("A", {"A"}));
    EXPECT_THAT(circleOf(descriptions, 0), ElementsAre(0));
}

}  // namespace
