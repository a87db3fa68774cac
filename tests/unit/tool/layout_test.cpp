#include "tool/graph/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/graphs.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::plugin;
using testing::SizeIs;

constexpr tSizes sizes{100, 40};

bool overlap(const tPoint& a, const tPoint& b) {
    return a.x < b.x + sizes.boxWidth && b.x < a.x + sizes.boxWidth && a.y < b.y + sizes.boxHeight &&
           b.y < a.y + sizes.boxHeight;
}

TEST(nGraphLayout, NeverLetsBoxesOverlapOrLeaveThePicture) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        const tLayout layout = arrange(support::randomGraph(60, seed), sizes);
        for (std::size_t i = 0; i < layout.boxes.size(); ++i) {
            EXPECT_GE(layout.boxes[i].x, 0);
            EXPECT_GE(layout.boxes[i].y, -1e-6);
            EXPECT_LE(layout.boxes[i].x + sizes.boxWidth, layout.width + 1e-6);
            EXPECT_LE(layout.boxes[i].y + sizes.boxHeight, layout.height + 1e-6);
            for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(overlap(layout.boxes[i], layout.boxes[j])) << seed;
        }
    }
}

TEST(nGraphLayout, LeadsLinesFromTheRightSideOfOneBoxToTheLeftSideOfAnother) {
    const tLayout layout = arrange(graphOf({plugin("A"), plugin("B", {"A"})}), sizes);
    ASSERT_THAT(layout.routes, SizeIs(1));
    const tRoute& route = layout.routes[0];
    ASSERT_THAT(route.points, SizeIs(2));
    EXPECT_EQ(route.points[0].x, layout.boxes[0].x + sizes.boxWidth);
    EXPECT_EQ(route.points[1].x, layout.boxes[1].x);
    EXPECT_EQ(route.points[0].y, layout.boxes[0].y + sizes.boxHeight / 2);
    EXPECT_EQ(route.points[1].y, layout.boxes[1].y + sizes.boxHeight / 2);
    EXPECT_TRUE(route.headAtRight);
    EXPECT_FALSE(route.headAtLeft);
    EXPECT_EQ(route.link, 0U);
}

TEST(nGraphLayout, LeadsALongLineThroughTheColumnsBetween) {
    const tLayout layout = arrange(graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"A", "B"})}), sizes);
    ASSERT_THAT(layout.routes, SizeIs(4));
    std::size_t passing = 0;
    for (const tRoute& route : layout.routes) {
        if (route.points.size() != 3) continue;
        ++passing;
        EXPECT_EQ(route.points[1].x, layout.boxes[1].x);
        EXPECT_EQ(route.points[2].x, layout.boxes[1].x + sizes.boxWidth);
        EXPECT_EQ(route.points[1].y, route.points[2].y);
        EXPECT_FALSE(route.headAtRight);
        const bool above = route.points[1].y < layout.boxes[1].y;
        const bool below = route.points[1].y > layout.boxes[1].y + sizes.boxHeight;
        EXPECT_TRUE(above || below) << "the line must not cross the box";
    }
    EXPECT_EQ(passing, 1U);
}

TEST(nGraphLayout, PointsALineThatRunsBackwardsAtTheDependant) {
    const tLayout layout = arrange(graphOf({plugin("A", {"B"}, -1), plugin("B", {"A"}, -1)}), sizes);
    ASSERT_THAT(layout.routes, SizeIs(2));
    EXPECT_TRUE(layout.routes[0].headAtLeft != layout.routes[1].headAtLeft);
    EXPECT_NE(layout.routes[0].points[0].y, layout.routes[1].points[0].y) << "each has its own port";
    for (const tRoute& route : layout.routes) EXPECT_NE(route.headAtLeft, route.headAtRight);
}

TEST(nGraphLayout, SharesOnlyTheWayOfALineNotItsName) {
    const tGraph graph = graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"A", "B"}), plugin("D", {"A", "B"})});
    for (const tRoute& route : arrange(graph, sizes).routes) EXPECT_EQ(route.link.has_value(), route.headAtRight);
}

TEST(nGraphLayout, OrdersTheLinesAtABoxAsTheirOtherEnds) {
    const tLayout layout = arrange(graphOf({plugin("A"), plugin("B", {"A"}), plugin("C", {"A"})}), sizes);
    ASSERT_THAT(layout.routes, SizeIs(2));
    const bool firstIsUpper = layout.routes[0].points[1].y < layout.routes[1].points[1].y;
    EXPECT_EQ(layout.routes[0].points[0].y < layout.routes[1].points[0].y, firstIsUpper);
}

TEST(nGraphLayout, DrawsALoopForAPluginThatDependsOnItself) {
    const tLayout layout = arrange(graphOf({plugin("A", {"A"}, -1)}), sizes);
    ASSERT_THAT(layout.routes, SizeIs(1));
    EXPECT_TRUE(layout.routes[0].loop);
    EXPECT_TRUE(layout.routes[0].headAtRight);
    EXPECT_GT(layout.width, sizes.boxWidth) << "there is room for the loop";
}

TEST(nGraphLayout, PutsPluginsWithoutLinksInRowsBelowTheOthers) {
    const tLayout layout = arrange(graphOf({plugin("A"), plugin("B", {"A"}), plugin("Free"), plugin("Other")}), sizes);
    EXPECT_GT(layout.boxes[2].y, layout.boxes[0].y + sizes.boxHeight);
    EXPECT_EQ(layout.boxes[2].x, 0);
    EXPECT_EQ(layout.boxes[3].y, layout.boxes[2].y);
}

TEST(nGraphLayout, MakesManyPluginsWithoutLinksALittleWiderThanHigh) {
    std::vector<tNode> plugins;
    for (int i = 0; i < 1000; ++i) plugins.push_back(plugin("P" + std::to_string(i)));
    const tLayout layout = arrange(graphOf(std::move(plugins)), sizes);
    EXPECT_LT(layout.width, 2 * layout.height);
    EXPECT_GT(layout.width, layout.height);
}

TEST(nGraphLayout, IsEmptyWithoutPlugins) {
    const tLayout layout = arrange(graphOf({}), sizes);
    EXPECT_EQ(layout.width, 0);
    EXPECT_EQ(layout.height, 0);
}

TEST(nGraphLayout, ArrangesTenThousandPluginsOfEveryShape) {
    // A quadratic step would take minutes here, and the test program's time limit would end it.
    constexpr std::size_t count = 10'000;
    for (const auto* const shape : {"chain", "star", "funnel"}) {
        std::vector<tNode> plugins;
        for (std::size_t i = 0; i < count; ++i) {
            std::vector<std::string> dependencies;
            if (i > 0 && shape != std::string("funnel")) {
                dependencies.push_back("P" + std::to_string(shape == std::string("chain") ? i - 1 : 0));
            }
            plugins.push_back(plugin("P" + std::to_string(i), dependencies));
        }
        if (shape == std::string("funnel")) {
            for (std::size_t i = 0; i + 1 < count; ++i) plugins.back().dependencies.push_back(plugins[i].name);
            std::sort(plugins.back().dependencies.begin(), plugins.back().dependencies.end());
        }
        EXPECT_THAT(arrange(graphOf(std::move(plugins)), sizes).boxes, SizeIs(count)) << shape;
    }
    EXPECT_GE(arrange(support::randomGraph(count, 1), sizes).boxes.size(), count);
}

}  // namespace
}  // namespace nGraph
