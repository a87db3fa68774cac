#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "source/nPluginData.h"
#include "tool/finding.h"
#include "tool/install/accessList.h"

/// Who can change what the service trusts. Pure: the machine is passed in.
namespace nAudit {

/// Something that the service trusts.
struct tTarget {
    std::string path;  ///< of a file, a folder or a key ("HKLM\..."); the name of a service
    nAccess::tKind kind;
    std::string_view rule;  ///< of the findings about it
    std::optional<std::string> plugin = {};
};

/// Where the content of a file or folder is.
enum class tPlace {
    here,
    linked,     ///< it is a link: others may be able to change what it leads to
    elsewhere,  ///< not on a drive of this machine, which may not exist, or obey another machine
};

/// The machine that is looked at.
struct tMachine {
    std::vector<tTarget> targets;
    std::vector<tFinding> unexamined;     ///< what cannot be looked at
    std::vector<std::string> ownFolders;  ///< those to which `install` gives their access lists
    std::string administrator;            ///< as nAccess::grants expects it
    std::function<bool(const std::string& path, nAccess::tKind kind)> exists;
    std::function<nAccess::tReading(const std::string& path, nAccess::tKind kind)> read;
    std::function<tPlace(const std::string& path)> placeOf;  ///< of a file or folder, or of one that is missing
    /// Sets the access list of a folder as `install` does. Returns the system's error, or 0.
    std::function<std::uint32_t(const std::string& folder)> fix;
    std::function<std::string(std::uint32_t error)> reason;
};

struct tAuditFinding {
    tFinding finding;
    std::string principal;  ///< the name, as the system shows it
    std::string sid;
    std::string right;  ///< in words
    std::string fix;    ///< a line for PowerShell that removes the right
};

/// Adds a description and its library to the targets. A relative path is seen from the folder that is current to a
/// service; one that is searched for cannot be examined.
void addPlugin(tMachine& machine, const std::string& file, const tPluginDescription& description,
               const std::string& systemFolder);

/// Returns the targets and what leads to them: the folder of a file, in which others could put a library that is found
/// first, and the folders above it, once each. In place of something that does not exist there is the folder or key in
/// which others could create it.
[[nodiscard]] std::vector<tTarget> withPassages(const std::vector<tTarget>& targets, const tMachine& machine);

/// Returns a finding for each principal that is not trusted and each object that it can change, in the order of the
/// targets, and one for each path whose end is not examined.
[[nodiscard]] std::vector<tAuditFinding> findings(const tMachine& machine);

}  // namespace nAudit
