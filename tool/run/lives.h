#pragma once

#include <functional>

#include "tool/run/judgement.h"
#include "tool/run/order.h"

namespace nRun {

/// Runs the lives of the plug-ins in a process of its own, in which each call may take so long. Neither it nor a
/// process that it started outlives this call, or this process, however either ends. Throws tCannotRun.
[[nodiscard]] tResult run(const tOrder& order, std::uint64_t limitMs, const std::function<void()>& onLife);

}  // namespace nRun
