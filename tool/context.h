#pragma once

#include <ostream>

/// What the command line passes to every command. The streams take UTF-8. Thread: the one that runs the command.
struct tContext {
    std::ostream& out;      ///< the result
    std::ostream& error;    ///< errors and progress
    bool colour = false;    ///< whether `out` shows colours
    bool progress = false;  ///< whether someone watches `error`: it is a terminal
    int exitCode = 0;       ///< set by the command: one of the codes below
};

/// The exit codes, on which scripts rely.
inline constexpr int exitNothingFound = 0;
inline constexpr int exitFindings = 1;
inline constexpr int exitCouldNotLook = 2;
