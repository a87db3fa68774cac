#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tool/check/catalogue.h"

namespace nCheck {

/// Plug-ins that depend on one another, at least two in each circle.
class tCircles {
public:
    /// Finds all circles whose plug-ins may not start: one that may start, because another plug-in has the name on
    /// which it depends, does no harm. `mayStart` is by position. Throws std::bad_alloc.
    tCircles(const tCatalogue& catalogue, const std::vector<bool>& mayStart);

    /// Returns the plug-in's circle, or null if it is in none: one plug-in of each name, beginning with the first by
    /// name, each followed by one on which it depends as far as that is possible.
    [[nodiscard]] const std::vector<std::size_t>* of(std::size_t plugin) const noexcept;

private:
    std::vector<std::optional<std::size_t>> circleOf_;  ///< by position; empty if no plug-in can be in a circle
    std::vector<std::vector<std::size_t>> circles_;
};

}  // namespace nCheck
