#pragma once

#include <vector>

#include "source/nPluginData.h"

/// The first order of the plug-ins.
namespace nPluginOrder {

/// Returns whether a precedes b: by name, unless exactly one of them depends on the other, which it then follows.
/// Only direct dependencies count, so this is not a strict weak order: A before B before C before A is possible.
/// Requires: both lists of dependencies are sorted, as readDescription leaves them.
[[nodiscard]] bool precedes(const tPluginDescription& a, const tPluginDescription& b) noexcept;

/// Orders the descriptions by `precedes`. The result depends on the input alone, not on the toolchain, and no
/// description is lost although the predicate is inconsistent; std::sort promises neither.
/// Throws std::bad_alloc when memory runs out, with nothing changed.
void sort(std::vector<tPluginDescription>& descriptions);

}  // namespace nPluginOrder
