#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// For commands that act on the machine on which the service runs, in the native build.
namespace nNotHere {

/// Throws std::runtime_error, whose text says in one sentence why the command is not available.
[[noreturn]] inline void refuse(std::string_view command) {
    throw std::runtime_error("'ziptra " + std::string(command) + "' works on Windows only, where the service runs");
}

}  // namespace nNotHere
