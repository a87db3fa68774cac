#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tool/graph/dependencyGraph.h"

namespace nGraph {

struct tPoint {
    double x = 0;
    double y = 0;
};

/// A line that leaves and reaches its points horizontally.
struct tRoute {
    std::vector<tPoint> points;  ///< from left to right; or from a box's right side back to it, if `loop`
    tLinkKind kind = tLinkKind::fulfilled;
    std::optional<std::size_t> link;  ///< an index into the links; nullopt if several share this part of their way
    bool headAtLeft = false;
    bool headAtRight = false;
    bool loop = false;  ///< of a plug-in that depends on itself
};

struct tLayout {
    double width = 0;
    double height = 0;
    std::vector<tPoint> boxes;  ///< upper left corners, for each node
    std::vector<tRoute> routes;
};

struct tSizes {
    double boxWidth = 0;
    double boxHeight = 0;
};

/// Arranges the nodes in layers from left to right, those without links in rows below, and leads the links between
/// them. Boxes never overlap, whatever the graph. Coordinates start at 0.
[[nodiscard]] tLayout arrange(const tGraph& graph, const tSizes& sizes);

}  // namespace nGraph
