#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "tool/pe/library.h"

/// Follows a library's imports through all the libraries that it needs, as the Windows loader does.
namespace nPe {

/// What the resolver asks about the machine; paths are UTF-8.
struct tMachine {
    /// The folders that the loader searches for an imported library after the folder of the library that the host
    /// loads, in its order (the system's, …).
    std::vector<std::string> searchFolders;
    /// Returns the path of the file of this name in the folder, whatever the case of its letters, or nullopt.
    std::function<std::optional<std::string>(const std::string& folder, const std::string& name)> findFile;
    /// Returns the file's library, read once however often it is asked for; the reference lives as long as the machine.
    std::function<const std::variant<tLibrary, tUnreadable>&(const std::string& path)> readLibrary;
    /// Returns whether the system provides this library itself although none of the folders contains it
    /// ("api-ms-win-…", "KERNEL32.dll" on a machine that is not Windows).
    std::function<bool(const std::string& name)> isSystemLibrary;

    // What follows is optional.

    /// Returns whether a library that is missing here may well be part of Windows: on a machine that is not Windows,
    /// where the system's libraries are known by name only.
    std::function<bool(const std::string& name)> mayBeSystemLibrary;
    /// Names of libraries, in lower case, that the loader takes from systemFolder only ("known DLLs").
    std::vector<std::string> knownLibraries;
    std::string systemFolder;
    /// The libraries that the process has loaded before, by file name in lower case: their paths. An import of that
    /// name refers to them, wherever they are.
    std::unordered_map<std::string, std::string> loadedLibraries;

    // For locate.

    /// Returns the path of the file that Windows finds at an absolute path, or nullopt.
    std::function<std::optional<std::string>(const std::string& path)> findPath;
    std::string applicationFolder;  ///< of the host's executable; empty if unknown
    std::string currentFolder;      ///< of the host, where relative paths begin; empty if unknown

    /// Returns what all paths to the same file have in common: the loader maps it once. See nFileIdentity.
    std::function<std::string(const std::string& path)> identityOf;
};

/// Adds libraries, such as tLoad::loaded, to those that the process has loaded. Of two with the same name, the first
/// one counts.
void addLoaded(tMachine& machine, const std::vector<std::string>& paths);

/// An import that the loader cannot resolve.
struct tMissing {
    std::vector<std::string> chain;  ///< from the library in question to the one that has the import: file names
    std::string library;             ///< the library that is imported from
    std::string symbol;  ///< the function that it lacks ("name" or "#number"); empty if the library itself is missing
    /// One phrase, if the library is there but is no help: "it is truncated", "it is for ARM64", "it forwards the
    /// function to OTHER.dll, which is missing"; otherwise empty.
    std::string reason;
    /// Whether the library is probably part of Windows, and only missing because this machine is not Windows.
    bool maybeSystem = false;
};

/// What loading a library brings about.
struct tLoad {
    std::vector<tMissing> missing;    ///< at most mostMissing of them
    std::vector<std::string> loaded;  ///< paths of the library and of those that it needs and that were found
};

inline constexpr std::size_t mostMissing = 1000;

/// Where the loader finds the library of a path that the host passes to it.
struct tLocation {
    std::string file;    ///< path
    std::string folder;  ///< where the loader looks first for the libraries that it imports
};

/// Follows the imports of a library, directly and through others; each library is followed once. What the library
/// itself lacks comes first, then what its imports lack, and so on. Not followed are delayed imports and those of no
/// function, which do not stop a load; the imports of an executable, which the loader ignores; and those of libraries
/// in the system folder or loaded before, which are complete. A library that cannot be read has no imports.
[[nodiscard]] tLoad followImports(const tLocation& library, const tMachine& machine);

/// Returns only what followImports found missing, for a library whose imports are looked for in its own folder first.
[[nodiscard]] std::vector<tMissing> findMissingImports(const std::string& path, const tMachine& machine);

}  // namespace nPe
