#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sweep {

/// The names of all functions in a listing of an executable's import tables, which the build makes with objdump -p.
/// What is bound at its first call is not in it.
std::vector<std::string> importsIn(const std::string& listing);

/// The imports that no scenario reaches and that are not the runtime's own.
std::vector<std::string> forgottenCalls(const std::vector<std::string>& imported, const std::set<std::string>& reached);

/// Whether it is on the list of functions that the executable imports but the product does not call.
bool isOfTheRuntime(std::string_view name);

}  // namespace sweep
