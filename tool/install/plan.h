#pragma once

#include <array>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tool/install/step.h"

/// What `install`, `repair` and `uninstall` do: from what is there and what is asked for to the steps in between. Pure.
namespace nInstall {

enum class tKind { install, repair, uninstall };

struct tRequest {
    tKind kind = tKind::install;
    std::string start = "delayed";     ///< or "auto" or "demand"
    std::string sharedDirectory = {};  ///< empty if it does not matter
    std::string crashDumps = {};       ///< the folder; empty for no change
};

/// The service as the manager knows it. A setting that the system lacks is empty.
struct tService {
    std::string commandLine;
    std::string otherProgram;  ///< the program that it runs, if that is another one, and exists
    bool beingDeleted = false;
    bool stopped = true;
    std::string start;  ///< "auto", "demand" or something else
    std::optional<bool> delayed;
    std::optional<std::string> recovery;  ///< as in settings.h
    std::optional<bool> recoveryOnError;
    std::string description;
    std::string program = {};  ///< that the command line starts
};

enum class tFolder {
    missing,
    exposed,  ///< others than administrators can change it or what is in it
    good,
    link,      ///< to another folder
    noFolder,  ///< a file
};

enum class tFile {
    missing,
    exposed,  ///< others than administrators can change it, or its access list cannot be read
    good,
    folder,
};

/// The state of the machine. Paths have backslashes, and none at their end. The functions may throw tCannot.
struct tMachine {
    std::string program;  ///< the service's executable, beside this program
    bool programExists = true;
    std::optional<tService> service;
    std::string usualSharedDirectory;  ///< what `install` sets if there is none
    std::string statusDirectory;
    std::vector<std::string> statusFiles;  ///< the names in the status directory
    bool hasDumpsKey = false;
    std::function<tFolder(const std::string& path)> folder;
    std::function<tFile(const std::string& path)> file;
    /// Returns the data as text, or nothing if there is no such value. The key begins with HKLM.
    std::function<std::optional<std::string>(std::string_view key, std::string_view name)> registryValue;
};

/// Why nothing can be done, in one sentence for people.
struct tCannot : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Returns the steps in their order; none if everything is as requested. Throws tCannot.
[[nodiscard]] std::vector<tStep> plan(const tRequest& request, const tMachine& machine);

/// Returns the names of the files that the host writes to the status directory, the temporary one last.
[[nodiscard]] std::array<std::string, 2> statusFileNames();

/// Returns the path of the program that the command line of a service starts, or an empty text. Windows looks for a
/// name without a dot with ".exe".
[[nodiscard]] std::string programOf(const std::string& commandLine);

}  // namespace nInstall
