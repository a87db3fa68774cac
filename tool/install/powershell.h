#pragma once

#include <string>
#include <string_view>

/// Lines that people paste into PowerShell.
namespace nPowershell {

/// Returns the text in single quotes, in which PowerShell replaces nothing. It also takes typographic quotes for single
/// ones, so these are doubled, too.
[[nodiscard]] std::string quoted(std::string_view text);

}  // namespace nPowershell
