#pragma once

#include <string>

/// The two folders from which well-known libraries may be loaded. Each function returns an absolute path without a
/// trailing backslash, or an empty string if the system call fails.
namespace nStdPath {

[[nodiscard]] std::wstring applicationFolder();
[[nodiscard]] std::wstring systemFolder();

}  // namespace nStdPath
