#include "tool/graph/columns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/unit/tool/graphs.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::plugin;
using testing::SizeIs;

constexpr tSpacing spacing{40, 10, 4};

tColumns arranged(const tGraph& graph) { return arrangeColumns(graph, assignLayers(graph), spacing); }

void expectNoOverlap(const tColumns& columns) {
    for (const auto& layer : columns.layers) {
        for (std::size_t i = 1; i < layer.size(); ++i) {
            const tItem& upper = columns.items[layer[i - 1]];
            const tItem& lower = columns.items[layer[i]];
            const double distance = (upper.height + lower.height) / 2 + spacing.gap;
            EXPECT_GE(lower.middle - upper.middle, distance - 1e-6);
        }
    }
}

/// Returns how many pairs of connections between neighbouring columns cross.
std::size_t crossings(const tColumns& columns) {
    std::size_t count = 0;
    for (const tSegment& a : columns.segments) {
        for (const tSegment& b : columns.segments) {
            const auto& from = columns.items;
            if (from[a.from].layer != from[b.from].layer) continue;
            if (from[a.from].middle < from[b.from].middle && from[a.to].middle > from[b.to].middle) ++count;
        }
    }
    return count;
}

TEST(nGraphColumns, ContainEveryNodeThatIsNotAloneOnceInItsLayer) {
    const tGraph graph = support::randomGraph(60, 3);
    const tLayers layers = assignLayers(graph);
    const tColumns columns = arrangeColumns(graph, layers, spacing);
    std::set<std::size_t> nodes;
    for (std::size_t layer = 0; layer < columns.layers.size(); ++layer) {
        for (const std::size_t index : columns.layers[layer]) {
            const tItem& item = columns.items[index];
            EXPECT_EQ(item.layer, layer);
            if (item.node == noIndex) continue;
            EXPECT_EQ(item.layer, layers.layerOf[item.node]);
            EXPECT_FALSE(layers.alone[item.node]);
            EXPECT_TRUE(nodes.insert(item.node).second);
        }
    }
    EXPECT_EQ(nodes.size(), static_cast<std::size_t>(std::count(layers.alone.begin(), layers.alone.end(), false)));
}

TEST(nGraphColumns, NeverLetItemsOverlap) {
    for (std::uint32_t seed = 1; seed <= 30; ++seed) expectNoOverlap(arranged(support::randomGraph(50, seed)));
}

TEST(nGraphColumns, LeadLinksOnlyBetweenNeighbouringColumns) {
    const tColumns columns = arranged(support::randomGraph(60, 5));
    for (const tSegment& segment : columns.segments) {
        EXPECT_EQ(columns.items[segment.from].layer + 1, columns.items[segment.to].layer);
    }
}

TEST(nGraphColumns, LetLinksFromOnePluginShareTheirWay) {
    const tColumns columns = arranged(graphOf(
        {plugin("A"), plugin("B", {"A"}), plugin("C", {"B"}), plugin("D", {"A", "C"}), plugin("E", {"A", "C"})}));
    // A to D and to E pass the columns of B and C together.
    EXPECT_THAT(columns.items, SizeIs(5 + 2));
    EXPECT_THAT(columns.segments, SizeIs(4 + 2 + 2)) << "four short links, two parts of the way, two ends";
}

TEST(nGraphColumns, NameTheLinkOfAWayThatOnlyOneUses) {
    const tColumns columns = arranged(graphOf({plugin("A"), plugin("X"), plugin("B", {"X"}), plugin("C", {"A", "B"})}));
    ASSERT_THAT(columns.segments, SizeIs(4));
    for (const tSegment& segment : columns.segments) EXPECT_NE(segment.arc, noIndex);
}

TEST(nGraphColumns, KeepLinksOfDifferentKindsApart) {
    const tColumns columns = arranged(graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"B"}),
                                               plugin("D", {"A", "C"}), plugin("E", {"A", "A", "C"}, -52006)}));
    EXPECT_THAT(columns.items, SizeIs(5 + 4));
}

TEST(nGraphColumns, KeepLinksThatRunBackwardsApart) {
    const tColumns columns =
        arranged(graphOf({plugin("A", {"C"}, -1), plugin("B", {"A"}, -1), plugin("C", {"B"}, -1)}));
    EXPECT_THAT(columns.items, SizeIs(3 + 1));
    const auto backwards = std::count_if(columns.segments.begin(), columns.segments.end(),
                                         [](const tSegment& segment) { return segment.backwards; });
    EXPECT_EQ(backwards, 2);
}

TEST(nGraphColumns, OrderItemsSoThatNoLinksCrossWhereThatIsPossible) {
    // Two trees whose members alternate in the start order.
    const tColumns columns = arranged(graphOf({plugin("A"), plugin("B"), plugin("A1", {"A"}), plugin("B1", {"B"}),
                                               plugin("A2", {"A"}), plugin("B2", {"B"}), plugin("A3", {"A1"}),
                                               plugin("B3", {"B1"}), plugin("A4", {"A2"}), plugin("B4", {"B2"})}));
    EXPECT_EQ(crossings(columns), 0U);
}

TEST(nGraphColumns, PutAPluginAtTheHeightOfItsOnlyNeighbour) {
    const tColumns columns = arranged(graphOf({plugin("A"), plugin("B"), plugin("C", {"A"}), plugin("D", {"B"})}));
    EXPECT_DOUBLE_EQ(columns.items[0].middle, columns.items[2].middle);
    EXPECT_DOUBLE_EQ(columns.items[1].middle, columns.items[3].middle);
}

TEST(nGraphColumns, PutAPluginInTheMiddleOfItsDependants) {
    const tColumns columns =
        arranged(graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"A"}), plugin("D", {"A"})}));
    EXPECT_DOUBLE_EQ(columns.items[0].middle, columns.items[2].middle);
}

TEST(nGraphColumns, GiveUpThePlacesOfLongLinksWhenThereAreTooMany) {
    // Each plug-in but the last third depends on one at the end of a chain, so that a place in each column would be
    // quadratic.
    constexpr std::size_t count = 3000;
    std::vector<tNode> plugins;
    for (std::size_t i = 0; i < count; ++i) {
        plugins.push_back(plugin("C" + std::to_string(i),
                                 i > 0 ? std::vector{"C" + std::to_string(i - 1)} : std::vector<std::string>()));
    }
    for (std::size_t i = 0; i < count; ++i) {
        plugins.push_back(plugin("D" + std::to_string(i), {"C" + std::to_string(i), "C" + std::to_string(count - 1)}));
    }
    const tColumns columns = arranged(graphOf(std::move(plugins)));
    EXPECT_LE(columns.items.size(), 34 * count + 1000);
    const auto isDirect = [&](const tSegment& segment) {
        return columns.items[segment.from].layer + 1 < columns.items[segment.to].layer;
    };
    EXPECT_GT(std::count_if(columns.segments.begin(), columns.segments.end(), isDirect), 0);
}

}  // namespace
}  // namespace nGraph
