#pragma once

#include <functional>

namespace nInterruption {

/// Performs the action. Ctrl+C does not end the process meanwhile, so that nothing is left half-written: on Windows it
/// is ignored, elsewhere it takes effect afterwards. The action should take milliseconds.
void withhold(const std::function<void()>& action);

}  // namespace nInterruption
