#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/catalogues/random.h"
#include "tests/endtoend/harness/stage.h"

namespace catalogues {

/// Paths (UTF-8) of the libraries that descriptions name.
struct tLibraryPaths {
    std::vector<std::string> working;    ///< these load and have all the entry points of tests/plugins/behaviours
    std::vector<std::string> broken;     ///< these do not load, or lack the entry points
    std::vector<std::string> entryless;  ///< these load, but have no usable entry points; the first runs no code at all
    std::vector<std::string> relative;   ///< paths that are not absolute
};

/// Makes the libraries in the stage's folder of libraries, from the test plug-ins.
[[nodiscard]] tLibraryPaths makeLibraries(const endtoend::tStage& stage);

/// Puts into the executable's folder what some of the libraries, and the relative paths, expect there.
void furnishExecutableFolder(const endtoend::tStage& stage, const endtoend::tPath& folder);

/// Returns the path, usually as it is, or the same place written differently, or nearly so.
[[nodiscard]] std::string writtenPath(tRandom& random, const std::string& path);

/// Returns whether code of plug-ins may decide whether the library loads: its own, which runs when it is loaded, or
/// that of a plug-in whose library has, or has not, brought the libraries with it that this one needs.
[[nodiscard]] bool loadDependsOnCode(const std::string& path);

/// Returns whether the library runs no code when it is loaded.
[[nodiscard]] bool runsNoCode(const std::string& path);

}  // namespace catalogues
