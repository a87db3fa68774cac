#include "tool/graph/layers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/graphs.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::plugin;
using testing::ElementsAre;

TEST(nGraphLayers, PutEachPluginAfterAllItsDependencies) {
    const tLayers layers = assignLayers(
        graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"A", "B"}), plugin("D", {"A"}), plugin("E", {"C"})}));
    EXPECT_THAT(layers.layerOf, ElementsAre(0, 1, 2, 1, 3));
    EXPECT_EQ(layers.count, 4U);
}

TEST(nGraphLayers, KnowWhichPluginsHaveNoLinks) {
    const tLayers layers =
        assignLayers(graphOf({plugin("A"), plugin("B", {"A"}), plugin("Free"), plugin("S", {"S"}, -1)}));
    EXPECT_THAT(layers.alone, ElementsAre(false, false, true, true));
    EXPECT_EQ(assignLayers(graphOf({plugin("Free")})).count, 0U);
}

TEST(nGraphLayers, DirectALinkOfACircleAgainstTheStartOrderBackwards) {
    const tLayers layers =
        assignLayers(graphOf({plugin("A", {"C"}, -1), plugin("B", {"A"}, -1), plugin("C", {"B"}, -1)}));
    EXPECT_THAT(layers.layerOf, ElementsAre(0, 1, 2));
    ASSERT_EQ(layers.arcs.size(), 3U);
    EXPECT_TRUE(layers.arcs[0].backwards) << "A depends on C, which starts later";
    EXPECT_EQ(layers.arcs[0].left, 0U);
    EXPECT_EQ(layers.arcs[0].right, 2U);
    EXPECT_FALSE(layers.arcs[1].backwards);
    EXPECT_EQ(layers.arcs[1].left, 0U);
    EXPECT_EQ(layers.arcs[1].right, 1U);
}

TEST(nGraphLayers, KeepADependencyThatComesTooLateOnTheLeft) {
    const tLayers layers = assignLayers(graphOf({plugin("A", {"B"}, -1), plugin("B")}));
    EXPECT_THAT(layers.layerOf, ElementsAre(1, 0));
    EXPECT_FALSE(layers.arcs[0].backwards);
}

TEST(nGraphLayers, PutAnUnknownNameNextToItsFirstDependant) {
    const tLayers layers = assignLayers(
        graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"B", "X"}, -1), plugin("D", {"C", "X"}, -1)}));
    EXPECT_THAT(layers.layerOf, ElementsAre(0, 1, 2, 3, 1));
}

TEST(nGraphLayers, AlwaysLeadArcsToTheRight) {
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        const tGraph graph = support::randomGraph(30, seed);
        const tLayers layers = assignLayers(graph);
        std::size_t loops = 0;
        for (const tLink& link : graph.links) loops += link.dependant == link.dependency ? 1 : 0;
        EXPECT_EQ(layers.arcs.size() + loops, graph.links.size());
        for (const tArc& arc : layers.arcs) {
            EXPECT_LT(layers.layerOf[arc.left], layers.layerOf[arc.right]) << "seed " << seed;
            const tLink& link = graph.links[arc.link];
            EXPECT_EQ(arc.left, arc.backwards ? link.dependant : link.dependency);
            EXPECT_EQ(arc.right, arc.backwards ? link.dependency : link.dependant);
        }
    }
}

}  // namespace
}  // namespace nGraph
