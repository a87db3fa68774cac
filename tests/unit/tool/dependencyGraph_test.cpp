#include "tool/graph/dependencyGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/graphs.h"
#include "tool/check/prediction.h"
#include "tool/status/statusReport.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::graphOfAllKinds;
using support::plugin;
using testing::ElementsAre;
using testing::IsEmpty;

/// Returns "DEPENDANT DEPENDENCY" for each link of the kind.
std::vector<std::string> linksOfKind(const tGraph& graph, tLinkKind kind) {
    std::vector<std::string> found;
    for (const tLink& link : graph.links) {
        if (link.kind != kind) continue;
        found.push_back(graph.nodes[link.dependant].name + " " + graph.nodes[link.dependency].name);
    }
    return found;
}

TEST(nGraph, FindsOutWhyADependencyIsNotThere) {
    const tGraph graph = graphOfAllKinds();
    EXPECT_THAT(linksOfKind(graph, tLinkKind::fulfilled), ElementsAre("User Settings"));
    EXPECT_THAT(linksOfKind(graph, tLinkKind::repeated), ElementsAre("Twice Settings"));
    EXPECT_THAT(linksOfKind(graph, tLinkKind::failed), ElementsAre("Victim Broken"));
    EXPECT_THAT(linksOfKind(graph, tLinkKind::late), ElementsAre("Early Late"));
    EXPECT_THAT(linksOfKind(graph, tLinkKind::circular), ElementsAre("CircleA CircleB", "CircleB CircleA"));
    EXPECT_THAT(linksOfKind(graph, tLinkKind::missing), ElementsAre("Lost Gone"));
}

TEST(nGraph, AddsEachNameThatNoPluginHasOnceAfterThePlugins) {
    const tGraph graph = graphOf({plugin("A", {"X", "Y"}, -52006), plugin("B", {"X"}, -52006)});
    ASSERT_EQ(graph.nodes.size(), 4U);
    EXPECT_EQ(graph.pluginCount, 2U);
    EXPECT_EQ(graph.nodes[2].name, "X");
    EXPECT_FALSE(graph.nodes[2].described);
    EXPECT_TRUE(graph.nodes[2].fails());
    EXPECT_EQ(graph.nodes[3].name, "Y");
    EXPECT_EQ(graph.links.size(), 3U);
}

TEST(nGraph, LinksARepeatedNameOnceWhateverItsPluginDoes) {
    EXPECT_EQ(graphOf({plugin("A", {"X", "X", "X"}, -52006)}).links.size(), 1U);
    const tGraph failing = graphOf({plugin("A", {}, -1), plugin("B", {"A", "A"}, -52006)});
    EXPECT_THAT(linksOfKind(failing, tLinkKind::failed), ElementsAre("B A"));
}

TEST(nGraph, TakesThePluginOfANameThatCanStart) {
    const tGraph graph = graphOf({plugin("A", {}, -1), plugin("A", {}, 3), plugin("A"), plugin("B", {"A"})});
    ASSERT_EQ(graph.links.size(), 1U);
    EXPECT_EQ(graph.links[0].dependency, 1U);
    EXPECT_EQ(graph.links[0].kind, tLinkKind::fulfilled);
}

TEST(nGraph, TakesTheFirstPluginOfANameIfNoneCanStart) {
    const tGraph graph = graphOf({plugin("A", {}, -1), plugin("A", {}, -2), plugin("B", {"A"}, -52006)});
    EXPECT_EQ(graph.links[0].dependency, 0U);
}

TEST(nGraph, CountsOnAPluginWhoseOwnCodeDecides) {
    const tGraph graph = graphOf({plugin("A", {}, std::nullopt), plugin("B", {"A"}, std::nullopt)});
    EXPECT_EQ(graph.links[0].kind, tLinkKind::fulfilled);
}

TEST(nGraph, CallsADependencyThatComesLaterAndFailsFailed) {
    const tGraph graph = graphOf({plugin("A", {"B"}, -52006), plugin("B", {}, -52005)});
    EXPECT_EQ(graph.links[0].kind, tLinkKind::failed);
}

TEST(nGraph, CallsADependencyOfACircleOnAnOutsiderWhatItIs) {
    const tGraph graph = graphOf({plugin("A", {"B"}, -52006), plugin("B", {"A", "C"}, -52006), plugin("C", {}, -1)});
    EXPECT_THAT(linksOfKind(graph, tLinkKind::failed), ElementsAre("B C"));
}

TEST(nGraph, ListsTheMembersOfEachCircleInStartOrder) {
    const tGraph graph = graphOf({plugin("Self", {"Self"}, -52006), plugin("A", {"C"}, -52006), plugin("Free"),
                                  plugin("B", {"A"}, -52006), plugin("C", {"B"}, -52006)});
    EXPECT_THAT(graph.circles, ElementsAre(ElementsAre(0), ElementsAre(1, 3, 4)));
    EXPECT_EQ(graph.nodes[0].circle, 1U);
    EXPECT_EQ(graph.nodes[2].circle, 0U);
    EXPECT_EQ(graph.nodes[4].circle, 2U);
}

TEST(nGraph, DoesNotJoinCirclesThatOnlyTouchOneWay) {
    const tGraph graph = graphOf({plugin("A", {"B"}, -52006), plugin("B", {"A"}, -52006),
                                  plugin("C", {"A", "D"}, -52006), plugin("D", {"C"}, -52006)});
    EXPECT_THAT(graph.circles, ElementsAre(ElementsAre(0, 1), ElementsAre(2, 3)));
    EXPECT_THAT(linksOfKind(graph, tLinkKind::failed), ElementsAre("C A"));
}

TEST(nGraph, ReturnsTheLinksOfOnePluginInTheOrderOfNames) {
    const tGraph graph = graphOf({plugin("A"), plugin("B"), plugin("C", {"B", "A"}), plugin("D", {"C"})});
    ASSERT_EQ(linksOf(graph, 2).size(), 2U);
    EXPECT_EQ(linksOf(graph, 2)[0].dependency, 0U);
    EXPECT_EQ(linksOf(graph, 2)[1].dependency, 1U);
    EXPECT_THAT(linksOf(graph, 0), IsEmpty());
    EXPECT_EQ(linksOf(graph, 3).size(), 1U);
}

TEST(nGraph, ShowsWhatTheHostWillDo) {
    nCheck::tPrediction prediction;
    prediction.allowedMask = 0xFFFFFFFD;
    prediction.messages = {"message"};
    tPluginDescription description;
    description.name = "A";
    description.dependencies = {"B"};
    description.requiresMask = 2;
    description.path = "a.dll";
    prediction.plugins.push_back({"a.ini", description, -52002, false});
    const tGraph graph = fromPrediction(prediction);
    ASSERT_EQ(graph.nodes.size(), 2U);
    EXPECT_FALSE(graph.nodes[0].mayStart);
    EXPECT_EQ(graph.nodes[0].name, "A");
    EXPECT_EQ(graph.nodes[0].file, "a.ini");
    EXPECT_EQ(graph.nodes[0].path, "a.dll");
    EXPECT_EQ(graph.nodes[0].requiresMask, 2U);
    EXPECT_EQ(graph.nodes[0].code, -52002);
    EXPECT_EQ(graph.nodes[1].name, "B");
    EXPECT_EQ(graph.allowedMask, 0xFFFFFFFDU);
    EXPECT_THAT(graph.messages, ElementsAre("message"));
}

TEST(nGraph, ShowsWhatTheHostDidFromTheCodesOfTheStarts) {
    nStatus::tReport report;
    report.allowedMask = 1;
    report.messages = {"message"};
    report.plugins.push_back({"A", {}, "a.dll", 1, {{"AStop", nStatus::tPhase::stop, 1, -52003}}, false});
    report.plugins.push_back({"B", {"A"}, "b.dll", 3, {{"BInit", nStatus::tPhase::initialize, 5, -7}}, false});
    const tGraph graph = fromReport(report);
    ASSERT_EQ(graph.nodes.size(), 2U);
    EXPECT_EQ(graph.nodes[0].code, 0) << "a start without lines succeeded";
    EXPECT_TRUE(graph.nodes[0].mayStart);
    EXPECT_EQ(graph.nodes[1].code, -7);
    EXPECT_FALSE(graph.nodes[1].mayStart);
    EXPECT_EQ(graph.nodes[1].requiresMask, 3U);
    EXPECT_EQ(graph.nodes[1].path, "b.dll");
    EXPECT_EQ(graph.links[0].kind, tLinkKind::fulfilled);
    EXPECT_EQ(graph.allowedMask, 1U);
    EXPECT_THAT(graph.messages, ElementsAre("message"));
}

TEST(nGraph, AcceptsNoPluginsAtAll) {
    const tGraph graph = graphOf({});
    EXPECT_THAT(graph.nodes, IsEmpty());
    EXPECT_THAT(graph.circles, IsEmpty());
}

}  // namespace
}  // namespace nGraph
