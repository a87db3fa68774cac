#pragma once

#include "tool/run/leftovers.h"

namespace nRun {

/// Returns the state of this process and of the thread that calls it. Throws tCannotRun if the system does not tell all
/// of it: a part that is missing once would look like a change.
[[nodiscard]] tProcessState readProcessState();

}  // namespace nRun
