#pragma once

#include <string>
#include <vector>

#include "bench/pairs.h"

/// Files for the companion tool, below build/bench/tool.

/// Plug-ins, each with a description and a library of its own in separate folders. The libraries are copies of the
/// example plug-in Settings (14 KB) in which its name is replaced by the plug-in's, so that each exports functions of
/// other names, which its description names. Each plug-in but the first two depends on two others.
struct tStagedPlugins {
    std::string directory;           ///< of the descriptions
    std::string libraries;           ///< their directory
    std::vector<std::string> files;  ///< all descriptions and libraries
    /// What `ziptra check` needs to find the libraries: on Windows nothing, because the descriptions contain their
    /// actual paths.
    std::vector<std::string> options;
};

/// Writes the files. Requires: at most 10,000 plug-ins, and the example plug-in in build/windows-bench.
[[nodiscard]] tStagedPlugins stagePlugins(int count);

/// Writes a status file of that many plug-ins. Each shows the call of its Initialize; one in a hundred has failed.
/// Returns its path.
[[nodiscard]] std::string stageStatusFile(int count);
