#pragma once

#include "tests/support/allocations.h"

/// Older names of the functions for `new` in allocations.h.
namespace failingNew {

using allocations::tHowLong;

inline void start(int nth, tHowLong howLong) noexcept { allocations::startFailingNew(nth, howLong); }
inline bool stop() noexcept { return allocations::stopFailingNew(); }

}  // namespace failingNew
