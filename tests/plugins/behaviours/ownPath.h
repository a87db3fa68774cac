#pragma once

#include <filesystem>

/// Returns the file of the library that this code is compiled into.
std::filesystem::path ownPath();
