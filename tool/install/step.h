#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One change of the machine, as data: it is described, printed as a command line, or performed. All texts are UTF-8.
namespace nInstall {

enum class tAction {
    createFolder,         ///< target: the path; value: the access list
    setAccess,            ///< the same for a folder that exists
    createService,        ///< target: the command line; value: as setStart
    setCommandLine,       ///< target: the command line
    setStart,             ///< value: "auto" or "demand"
    setDelayed,           ///< value: "delayed-auto" or "auto"
    setRecovery,          ///< after a crash
    setRecoveryOnError,   ///< and after a start that fails
    setDescription,       ///< shown by the management console
    setRegistryValue,     ///< target: the key; name; type; value
    startService,         ///<
    stopService,          ///<
    deleteService,        ///<
    deleteRegistryValue,  ///< target: the key; name
    deleteRegistryKey,    ///< target: the key
    deleteFile,           ///< target: the path; value: for people, what to do then, or empty
    deleteFolder,         ///< target: the path; stays if it is not empty
};

struct tStep {
    tAction action;
    std::string target = {};
    std::string value = {};
    std::string name = {};
    std::string type = {};  ///< "REG_SZ", "REG_EXPAND_SZ" or "REG_DWORD"

    bool operator==(const tStep&) const = default;
};

/// Returns what has been done, in the past tense, without a final stop.
[[nodiscard]] std::string done(const tStep& step);

/// Returns what has not been done: "The folder C:\x could not be created".
[[nodiscard]] std::string notDone(const tStep& step);

/// Returns whether the rest is done although the step failed with this error of the system: an older one may lack a
/// setting, and a folder to delete may have got other files, or be in use.
[[nodiscard]] bool isOptional(const tStep& step, std::uint32_t error) noexcept;

/// Returns the lines for PowerShell that do the same.
[[nodiscard]] std::vector<std::string> commandLines(const tStep& step);

}  // namespace nInstall
