#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tool/pe/resolve.h"

namespace nPe {

/// Where folders of Windows are on this machine: {"C:\\Program Files\\X", "dist"}.
using tFolderMap = std::vector<std::pair<std::string, std::string>>;

/// Folders of the host that decide where relative paths lead.
struct tHostFolders {
    std::string
        application;      ///< of the host's executable; if empty, that of this program, which is installed beside it
    std::string current;  ///< if empty, the system folder, which is a service's
};

/// Describes this machine as followImports and locate ask for it. Files and folders are looked at once; what changes
/// afterwards is not noticed. Copies of the machine share what was read.
///
/// On Windows the loader's search order for a library that the host loads with LOAD_WITH_ALTERED_SEARCH_PATH is
/// (Microsoft, "Dynamic-link library search order", "Alternate search order for unpackaged apps", with safe search
/// mode):
///  1. redirection, and side-by-side assemblies of the manifest: not looked at here; the host's manifest names none
///  2. API sets ("api-ms-win-…"): provided by the system if its loader knows the set, which is asked
///  3. the list of loaded modules, by file name: tMachine::loadedLibraries, which the caller fills
///  4. known DLLs: a list in the registry; they come from the system folder
///  5. the folder of the library that the host loads, also for what its imports import
///  6. the system folder, the 16-bit system folder ("System"), the Windows folder
///  7. the current folder
///  8. the folders of PATH: those of the machine, which are a service's, from the registry
/// The host's own folder is part of it only if the path has no folder; see locate.
/// Under Wine the files in the system folder are real libraries, and are read as such.
/// `folderMap` is ignored.
///
/// On other systems only the mapped folders are searched, in the map's order. Names of files are found whatever the
/// case of their (ASCII) letters. The libraries that every Windows contains count as provided, and others that look
/// like those of Windows as possibly provided.
[[nodiscard]] tMachine thisMachine(const tFolderMap& folderMap, const tHostFolders& host = {});

/// Returns a tMachine::readLibrary that reads files, each of them once.
[[nodiscard]] decltype(tMachine::readLibrary) cachedLibraries();

}  // namespace nPe
