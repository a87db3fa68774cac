#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sweep {

/// The names that an executable imports from all libraries, read from the file itself; "#12" for what it imports by a
/// number. None when there is no such file, or none of that kind. What is bound at its first call is not seen.
std::vector<std::string> importsOf(const std::string& path);

/// Those of the imports that no scenario reaches, and that are not the runtime's own either.
std::vector<std::string> forgottenCalls(const std::vector<std::string>& imported, const std::set<std::string>& reached);

/// Whether it is on the list of what the executable imports though the product does not call it.
bool isOfTheRuntime(std::string_view name);

}  // namespace sweep
