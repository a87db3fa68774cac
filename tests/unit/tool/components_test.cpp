#include "tool/components.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <random>

namespace nComponents {
namespace {

tGraph randomGraph(std::uint32_t seed) {
    std::minstd_rand random(seed);
    const std::size_t count = 1 + random() % 9;
    tGraph graph(count);
    for (auto& list : graph) {
        for (std::size_t number = random() % 3; number > 0; --number) list.push_back(random() % count);
    }
    return graph;
}

/// Returns which nodes can be reached from which, in at least one step.
std::vector<std::vector<bool>> reachability(const tGraph& graph) {
    const std::size_t count = graph.size();
    std::vector<std::vector<bool>> reaches(count, std::vector<bool>(count, false));
    for (std::size_t from = 0; from < count; ++from) {
        for (const std::size_t to : graph[from]) reaches[from][to] = true;
    }
    for (std::size_t via = 0; via < count; ++via) {
        for (std::size_t from = 0; from < count; ++from) {
            for (std::size_t to = 0; to < count; ++to) {
                if (reaches[from][via] && reaches[via][to]) reaches[from][to] = true;
            }
        }
    }
    return reaches;
}

/// Returns the number of each node's component. Requires: every node is in one component.
std::vector<std::size_t> componentOfEach(const tGraph& graph) {
    const std::vector<std::vector<std::size_t>> components = find(graph);
    std::vector<std::size_t> nodes;
    std::vector<std::size_t> numbers(graph.size());
    for (std::size_t i = 0; i < components.size(); ++i) {
        for (const std::size_t node : components[i]) {
            nodes.push_back(node);
            numbers[node] = i;
        }
    }
    std::vector<std::size_t> all(graph.size());
    std::iota(all.begin(), all.end(), 0U);
    EXPECT_THAT(nodes, testing::UnorderedElementsAreArray(all));
    return numbers;
}

TEST(nComponents, ContainTheNodesThatANaiveSearchFindsConnectedBothWays) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        const tGraph graph = randomGraph(seed);
        const std::vector<std::vector<bool>> reaches = reachability(graph);
        const std::vector<std::size_t> component = componentOfEach(graph);
        for (std::size_t a = 0; a < graph.size(); ++a) {
            for (std::size_t b = 0; b < graph.size(); ++b) {
                const bool connected = a == b || (reaches[a][b] && reaches[b][a]);
                ASSERT_EQ(component[a] == component[b], connected) << "seed " << seed;
            }
        }
    }
}

TEST(nComponents, MayBeAsLongAsMemoryAllows) {
    // Recursion would exhaust the stack.
    constexpr std::size_t count = 200'000;
    tGraph graph(count);
    for (std::size_t i = 0; i < count; ++i) graph[i].push_back((i + 1) % count);
    const auto components = find(graph);
    ASSERT_EQ(components.size(), 1U);
    EXPECT_EQ(components.front().size(), count);
}

}  // namespace
}  // namespace nComponents
