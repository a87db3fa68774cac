#pragma once

#include <filesystem>

/// The file of the library that this is compiled into.
std::filesystem::path ownPath();
