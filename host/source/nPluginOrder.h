#pragma once

#include <cstddef>
#include <vector>

#include "source/nPluginData.h"

/// The first order of the plug-ins.
namespace nPluginOrder {

/// Returns whether a precedes b: by name, unless exactly one of them depends on the other, which it then follows.
/// Only direct dependencies count, so this is not a strict weak order: A before B before C before A is possible.
/// Requires: both lists of dependencies are sorted, as readDescription leaves them.
[[nodiscard]] bool precedes(const tPluginDescription& a, const tPluginDescription& b) noexcept;

/// Returns the positions of the descriptions in the order by `precedes`: the first is that of the description that
/// comes first. The result depends on the input alone, not on the toolchain, and each position occurs once although the
/// predicate is inconsistent; std::sort promises neither. Throws std::bad_alloc.
[[nodiscard]] std::vector<std::size_t> positionsInOrder(const std::vector<tPluginDescription>& descriptions);

/// Brings the descriptions into that order. Throws std::bad_alloc when memory runs out, with nothing changed.
void sort(std::vector<tPluginDescription>& descriptions);

}  // namespace nPluginOrder
