#pragma once

#include <cstddef>
#include <vector>

#include "tool/graph/layers.h"

namespace nGraph {

inline constexpr std::size_t noIndex = static_cast<std::size_t>(-1);

/// What occupies a place in a column: a node, or a link that passes it on its way to a later column.
struct tItem {
    std::size_t node = noIndex;  ///< noIndex if a link passes here
    std::size_t layer = 0;
    double middle = 0;  ///< vertical position, downwards
    double height = 0;
    std::vector<std::size_t> left;   ///< items in the column to the left with which it is connected
    std::vector<std::size_t> right;  ///< the same in the column to the right
};

/// A connection between two columns that are next to each other, or a direct one between any two.
struct tSegment {
    std::size_t from = 0;       ///< an item
    std::size_t to = 0;         ///< an item to its right
    std::size_t arc = noIndex;  ///< of the one link to which it belongs; noIndex if links share it
    tLinkKind kind = tLinkKind::fulfilled;
    bool backwards = false;
};

struct tColumns {
    std::vector<tItem> items;                      ///< those of the nodes come first, in the nodes' order
    std::vector<std::vector<std::size_t>> layers;  ///< the items of each layer, from top to bottom
    std::vector<tSegment> segments;
};

struct tSpacing {
    double boxHeight = 0;
    double gap = 0;         ///< between two items
    double lineHeight = 0;  ///< of a link that passes
};

/// Places the nodes that are not alone. Links from one plug-in to several columns share their way. The order within a
/// column follows the neighbours' average position, so that few links cross; no two items overlap. Extremely many long
/// links do not keep to the gaps: their number of places is limited to a multiple of the nodes', so that time and
/// memory are proportional to nodes and links, times a logarithm.
[[nodiscard]] tColumns arrangeColumns(const tGraph& graph, const tLayers& layers, const tSpacing& spacing);

}  // namespace nGraph
