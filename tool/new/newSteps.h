#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/new/newSystem.h"

namespace nNew {

/// Returns the root of the SDK to which this program belongs, with forward slashes; empty if it is in none.
[[nodiscard]] std::string sdkOf(const tSystem& system);

/// Returns the commands that configure, build and test a new project and run its plug-in, one after the other in the
/// shell of the system: sh, or both cmd and PowerShell. The SDK may be empty: CMake then looks for it itself.
[[nodiscard]] std::vector<std::string> nextSteps(std::string_view name, const std::string& folder,
                                                 const std::string& sdk, bool isWindows);

}  // namespace nNew
