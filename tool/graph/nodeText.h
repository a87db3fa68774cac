#pragma once

#include <string>
#include <string_view>

#include "tool/graph/dependencyGraph.h"

/// The words that all drawings of a graph share.
namespace nGraph {

/// Returns "fulfilled", "repeated", "failed", "late", "circular" or "missing".
[[nodiscard]] std::string_view kindName(tLinkKind kind) noexcept;

/// Returns one phrase on a link of this kind, such as "in a circle".
[[nodiscard]] std::string_view kindText(tLinkKind kind) noexcept;

/// Returns a short text for each node that says what becomes of it: "starts", "fails -52006: circle 1", "not
/// described".
[[nodiscard]] std::vector<std::string> stateTexts(const tGraph& graph);

/// Returns one sentence: "3 plug-ins: 2 can start, 1 fails; 1 circle; 2 dependencies without a description".
[[nodiscard]] std::string summary(const tGraph& graph);

}  // namespace nGraph
