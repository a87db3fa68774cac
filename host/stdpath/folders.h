#pragma once

#include <string>

/// The two folders that libraries may be loaded from by a name known in advance: absolute, without a trailing
/// backslash, and empty if the system does not tell.
namespace nStdPath {

[[nodiscard]] std::wstring applicationFolder();
[[nodiscard]] std::wstring systemFolder();

}  // namespace nStdPath
