#pragma once

#include <string>

/// The file name, without folder and extension, of the library that this is compiled into.
std::string ownName();
