#pragma once

#include <string>

#include "tool/graph/dependencyGraph.h"

/// Renders a graph as text for other programs. An arrow leads from a dependency to the plug-in that needs it, in the
/// direction in which plug-ins start and failures spread. Whatever the names contain, the text is valid.
namespace nGraph {

/// For Graphviz.
[[nodiscard]] std::string toDot(const tGraph& graph);

/// For Mermaid, a flowchart.
[[nodiscard]] std::string toMermaid(const tGraph& graph);

/// One JSON document, docs/schema/graph.json. `directory` is what was looked at.
[[nodiscard]] std::string toJson(const tGraph& graph, const std::string& directory);

/// A picture in a file of its own, which adapts to light and dark surroundings and loads nothing. `title` is shown
/// above the graph.
[[nodiscard]] std::string toSvg(const tGraph& graph, const std::string& title);

}  // namespace nGraph
