#pragma once

#include <string>

/// Whether two paths lead to the same file.
namespace nFileIdentity {

/// Returns a text that all paths to the same file or folder have in common, and no path to another one: prefixes, the
/// case of letters and links make no difference. Empty if nothing is there that can be opened, or if the drive does not
/// tell. Path: UTF-8.
[[nodiscard]] std::string of(const std::string& path);

}  // namespace nFileIdentity
