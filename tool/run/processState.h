#pragma once

#include "tool/run/leftovers.h"

namespace nRun {

/// Returns the state of this process and of the thread that calls it. A part that the system does not tell is empty.
/// Throws std::bad_alloc.
[[nodiscard]] tProcessState readProcessState();

}  // namespace nRun
