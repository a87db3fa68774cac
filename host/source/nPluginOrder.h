#pragma once

#include <vector>

#include "source/nPluginData.h"

/// The first order of the plug-ins.
namespace nPluginOrder {

/// A plug-in goes before one that names it as a dependency; two that do not name each other, or both do, go by name.
/// Only direct dependencies count, so this is no strict weak order: A before B before C before A is possible. Both
/// lists of dependencies must be sorted, as readDescription leaves them.
[[nodiscard]] bool goesBefore(const tPluginDescription& a, const tPluginDescription& b) noexcept;

/// Orders the descriptions by goesBefore. The result depends on the input alone, not on the toolchain, and every
/// description survives whatever the predicate answers, which std::sort does not promise here. Nothing has changed when
/// memory runs out (std::bad_alloc).
void sort(std::vector<tPluginDescription>& descriptions);

}  // namespace nPluginOrder
