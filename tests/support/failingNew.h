#pragma once

#include "tests/support/allocations.h"

/// Older names for the functions in allocations.h that concern `new`.
namespace failingNew {

using allocations::tHowLong;

inline void start(int nth, tHowLong howLong) noexcept { allocations::startFailingNew(nth, howLong); }
inline bool stop() noexcept { return allocations::stopFailingNew(); }

}  // namespace failingNew
