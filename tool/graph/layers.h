#pragma once

#include <cstddef>
#include <vector>

#include "tool/graph/dependencyGraph.h"

namespace nGraph {

/// A link as it is drawn, from left to right. A dependency is to the left of its dependants, but for one link of each
/// circle, which then runs backwards.
struct tArc {
    std::size_t left = 0;  ///< an index into the nodes
    std::size_t right = 0;
    std::size_t link = 0;  ///< an index into the links
    bool backwards = false;
};

struct tLayers {
    std::vector<std::size_t> layerOf;  ///< for each node, from 0
    std::vector<bool> alone;           ///< for each node, whether it has no link, except perhaps with itself
    std::vector<tArc> arcs;            ///< all links except those of a node with itself
    std::size_t count = 0;             ///< of layers; 0 if all nodes are alone
};

/// Assigns each node the first layer that is to the right of all on which it depends. Names that no plug-in has are
/// moved to the layer next to their first dependant. Time is proportional to nodes and links.
[[nodiscard]] tLayers assignLayers(const tGraph& graph);

}  // namespace nGraph
