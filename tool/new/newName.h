#pragma once

#include <string>

namespace nNew {

/// Returns one sentence about why a plug-in cannot have this name, with a name that it can have; or an empty text. The
/// name becomes that of a class, of exported functions, of a CMake target and of files.
[[nodiscard]] std::string problemWith(const std::string& name);

}  // namespace nNew
