#include "tool/graph/layers.h"

#include <algorithm>

namespace nGraph {
namespace {

/// Directs the links of a circle along the start order, which leaves no circle.
std::vector<tArc> directLinks(const tGraph& graph) {
    std::vector<tArc> arcs;
    arcs.reserve(graph.links.size());
    for (std::size_t index = 0; index < graph.links.size(); ++index) {
        const tLink& link = graph.links[index];
        if (link.dependant == link.dependency) continue;
        const std::size_t circle = graph.nodes[link.dependant].circle;
        const bool backwards =
            circle != 0 && circle == graph.nodes[link.dependency].circle && link.dependant < link.dependency;
        arcs.push_back(backwards ? tArc{link.dependant, link.dependency, index, true}
                                 : tArc{link.dependency, link.dependant, index, false});
    }
    return arcs;
}

/// Returns for each node the indices of the arcs that leave it to the right.
std::vector<std::vector<std::size_t>> arcsByLeft(const std::vector<tArc>& arcs, std::size_t nodes) {
    std::vector<std::vector<std::size_t>> leaving(nodes);
    for (std::size_t index = 0; index < arcs.size(); ++index) leaving[arcs[index].left].push_back(index);
    return leaving;
}

/// Visits each node after all to its left.
void assignLongestPaths(tLayers& layers, const std::vector<std::vector<std::size_t>>& leaving) {
    std::vector<std::size_t> waitingFor(leaving.size(), 0);
    for (const tArc& arc : layers.arcs) ++waitingFor[arc.right];
    std::vector<std::size_t> ready;
    for (std::size_t node = 0; node < leaving.size(); ++node) {
        if (waitingFor[node] == 0) ready.push_back(node);
    }
    for (std::size_t next = 0; next < ready.size(); ++next) {
        const std::size_t node = ready[next];
        for (const std::size_t index : leaving[node]) {
            const std::size_t right = layers.arcs[index].right;
            layers.layerOf[right] = std::max(layers.layerOf[right], layers.layerOf[node] + 1);
            if (--waitingFor[right] == 0) ready.push_back(right);
        }
    }
}

void moveMissingNextToDependants(const tGraph& graph, tLayers& layers,
                                 const std::vector<std::vector<std::size_t>>& leaving) {
    for (std::size_t node = graph.pluginCount; node < graph.nodes.size(); ++node) {
        std::size_t first = layers.count;
        for (const std::size_t index : leaving[node]) {
            first = std::min(first, layers.layerOf[layers.arcs[index].right]);
        }
        layers.layerOf[node] = first - 1;
    }
}

}  // namespace

tLayers assignLayers(const tGraph& graph) {
    tLayers layers;
    layers.arcs = directLinks(graph);
    layers.layerOf.assign(graph.nodes.size(), 0);
    layers.alone.assign(graph.nodes.size(), true);
    for (const tArc& arc : layers.arcs) layers.alone[arc.left] = layers.alone[arc.right] = false;
    const auto leaving = arcsByLeft(layers.arcs, graph.nodes.size());
    assignLongestPaths(layers, leaving);
    if (!layers.arcs.empty()) layers.count = 1 + *std::max_element(layers.layerOf.begin(), layers.layerOf.end());
    moveMissingNextToDependants(graph, layers, leaving);
    return layers;
}

}  // namespace nGraph
