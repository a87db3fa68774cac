#pragma once

// fmt::format for texts and numbers. The only file that includes the library: its implementation is compiled once, in
// format.cpp.
#include <fmt/core.h>
