#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sweep {

/// The names that an executable imports from all libraries, read from the file itself.
std::vector<std::string> importsOf(const std::string& path);

/// Whether it is on the list of what the executable imports though the product does not call it.
bool isOfTheRuntime(std::string_view name);

}  // namespace sweep
