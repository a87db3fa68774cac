#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "tool/check/libraryFindings.h"
#include "tool/pe/machine.h"

namespace nCheck {

/// Examines the plug-ins' libraries as the loader does, without loading them.
class tLibraries {
public:
    /// Throws std::bad_alloc.
    explicit tLibraries(nPe::tFolderMap folderMap);

    /// The same on another machine, whose every folder can be looked into.
    explicit tLibraries(nPe::tMachine machine);

    /// Returns what the host's loading of the plug-in's library and its looking up of the entries will bring about, and
    /// finds what is wrong with the library. Call in start order.
    [[nodiscard]] tLoadVerdict examine(const tExamined& examined);

    /// Says whether the plug-in that was examined last starts: the process then keeps its library loaded, and those
    /// that this needs.
    void keep(tStart start);

private:
    using tLoadedLibraries = std::unordered_map<std::string, std::string>;

    /// A library's file and that of the description.
    struct tUse {
        std::string library;
        std::string description;
    };

    [[nodiscard]] bool isCovered(const std::string& path) const;
    [[nodiscard]] tLoadVerdict examineAbsolute(const tExamined& examined);
    [[nodiscard]] tLoadVerdict examineRelative(const tExamined& examined);
    [[nodiscard]] tLoadVerdict examineFile(const nPe::tLocation& location, const tExamined& examined);
    [[nodiscard]] tLoadVerdict examineImports(const nPe::tLocation& location, const tExamined& examined);
    [[nodiscard]] bool borrows(const nPe::tLocation& location, const nPe::tLoad& load) const;
    [[nodiscard]] bool mayRefuse(const std::vector<std::string>& loaded) const;
    [[nodiscard]] std::vector<nPe::tMissing> missingIf(tLoadedLibraries& loaded, const nPe::tLocation& location);
    void findSecondUse(const std::string& file, const nPe::tLibrary& library, const tExamined& examined);

    bool runsHost_;
    nPe::tFolderMap folderMap_;
    nPe::tMachine machine_;                               ///< its loaded libraries are those that may be loaded
    tLoadedLibraries certainlyLoaded_;                    ///< and those that are for certain
    std::vector<std::string> lastLoaded_;                 ///< by the plug-in that was examined last
    std::unordered_map<std::size_t, tUse> alike_;         ///< the first of the libraries that look alike
    std::unordered_map<std::string, std::string> users_;  ///< the first description of a library, by its identity
};

}  // namespace nCheck
