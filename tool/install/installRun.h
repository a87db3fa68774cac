#pragma once

#include "tool/context.h"
#include "tool/install/system.h"

namespace nInstall {

enum class tOutput { text, json, commandLines };

/// Plans and performs, or prints the plan as lines for PowerShell. Each step that is done appears at once. The first
/// that fails ends the run; what precedes it stays, as it is what was asked for. Sets the context's exit code.
/// Throws tCannot if nothing has been changed.
void run(const tRequest& request, tOutput output, const tSystem& system, tContext& context);

}  // namespace nInstall
