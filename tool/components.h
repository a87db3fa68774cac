#pragma once

#include <cstddef>
#include <vector>

/// The strongly connected components of a directed graph: the largest sets of nodes each of which leads to all others.
namespace nComponents {

using tGraph = std::vector<std::vector<std::size_t>>;  ///< the neighbours of each node

/// Returns the nodes of each component, most of which have only one. Takes time in proportion to the graph's size.
/// Throws std::bad_alloc.
[[nodiscard]] std::vector<std::vector<std::size_t>> find(const tGraph& graph);

}  // namespace nComponents
