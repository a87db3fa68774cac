#include "tool/audit/audit.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "tool/format.h"
#include "tool/install/powershell.h"
#include "tool/install/settings.h"
#include "tool/pe/windowsPath.h"
#include "tool/rules.h"

namespace nAudit {
namespace {

using nAccess::tGrant;
using nAccess::tKind;
using nPowershell::quoted;

/// Collects targets, each path once.
class tCollection {
public:
    explicit tCollection(const tMachine& machine) : machine_(machine) {}

    void add(tTarget target) {
        while (!machine_.exists(target.path, target.kind)) {
            std::string parent = nPe::folderOf(target.path);
            if (parent.empty() || parent == target.path) return;
            target.path = std::move(parent);
            if (target.kind != tKind::key) target.kind = tKind::folder;
        }
        const tTarget copy = target;
        addOnce(std::move(target));
        if (copy.kind == tKind::file || copy.kind == tKind::folder) addFolders(copy);
    }

    [[nodiscard]] std::vector<tTarget> take() { return std::move(targets_); }

private:
    void addFolders(const tTarget& target) {
        tKind kind = target.kind == tKind::file ? tKind::folder : tKind::passage;
        std::string path = target.path;
        for (;;) {
            std::string parent = nPe::folderOf(path);
            if (parent.empty() || parent == path || !machine_.exists(parent, kind)) return;
            path = std::move(parent);
            addOnce({path, kind, target.rule, target.plugin});
            kind = tKind::passage;
        }
    }

    void addOnce(tTarget target) {
        const auto [known, isNew] = positions_.emplace(nPe::toLowerAscii(target.path), targets_.size());
        if (isNew) {
            targets_.push_back(std::move(target));
        } else if (targets_[known->second].kind == tKind::passage) {
            targets_[known->second] = std::move(target);
        }
    }

    const tMachine& machine_;
    std::vector<tTarget> targets_;
    std::unordered_map<std::string, std::size_t> positions_;
};

/// The access list that Windows sets on a new service.
constexpr std::string_view usualServiceAccess =
    "D:(A;;CCLCSWRPWPDTLOCRRC;;;SY)(A;;CCDCLCSWRPWPDTLOCRSDRCWDWO;;;BA)(A;;CCLCSWLOCRRC;;;IU)(A;;CCLCSWLOCRRC;;;SU)";

std::string fixOfKey(const std::string& path, const tGrant& grant) {
    const std::string key = quoted("Registry::HKEY_LOCAL_MACHINE" + path.substr(std::string_view("HKLM").size()));
    const std::string sid = fmt::format("[Security.Principal.SecurityIdentifier]{}",
                                        quoted(grant.asOwner ? std::string_view("S-1-5-32-544") : grant.sid));
    std::string change = fmt::format("$acl.PurgeAccessRules({})", sid);
    if (grant.asOwner) change = fmt::format("$acl.SetOwner({})", sid);
    if (grant.inherited) change = "$acl.SetAccessRuleProtection($true, $true); " + change;
    return fmt::format("$acl = Get-Acl {}; {}; Set-Acl {} $acl", key, change, key);
}

std::string fixOfFile(const std::string& path, const tGrant& grant, bool everything) {
    const std::string file = quoted(path);
    if (grant.asOwner) return fmt::format("icacls {} /setowner '*S-1-5-32-544'", file);
    if (everything) return fmt::format("icacls {} /reset", file);
    const std::string remove = fmt::format("icacls {} /remove:g '*{}'", file, grant.sid);
    return grant.inherited ? fmt::format("icacls {} /inheritance:d; {}", file, remove) : remove;
}

std::string fixOf(const tTarget& target, const tGrant& grant, bool everything) {
    if (target.kind == tKind::service) return fmt::format("sc.exe sdset {} '{}'", target.path, usualServiceAccess);
    return target.kind == tKind::key ? fixOfKey(target.path, grant) : fixOfFile(target.path, grant, everything);
}

tAuditFinding unexamined(const tTarget& target, const std::string& message) {
    return {nRules::finding("unexamined-path", target.path, std::nullopt, target.plugin, message), "", "", "", ""};
}

/// Adds a finding if the target is not on a drive of this machine.
void addRemote(const tTarget& target, const tMachine& machine, std::vector<tAuditFinding>& findings) {
    if (target.kind != tKind::file && target.kind != tKind::folder) return;
    if (machine.placeOf(target.path) != tPlace::elsewhere) return;
    findings.push_back(
        unexamined(target, "this is on no drive of this machine; not all who can change it are examined"));
}

void addFindings(const tTarget& target, const tMachine& machine, std::vector<tAuditFinding>& findings) {
    const bool isFile = target.kind != tKind::key && target.kind != tKind::service;
    if (isFile && machine.placeOf(target.path) == tPlace::linked) {
        findings.push_back(unexamined(target, "this is a link; what it leads to is not examined"));
    }
    const nAccess::tReading reading = machine.read(target.path, target.kind);
    if (reading.error != 0) {
        const std::string message = "the access list cannot be read: " + machine.reason(reading.error);
        findings.push_back(
            {nRules::finding("unreadable-access", target.path, std::nullopt, target.plugin, message), "", "", "", ""});
        return;
    }
    for (const tGrant& grant : nAccess::grants(reading.list, target.kind, machine.administrator)) {
        const std::string right = nAccess::inWords(grant.rights, target.kind);
        const std::string message =
            fmt::format("{} {} {}", grant.name, grant.asOwner ? "owns this and can" : "can", right);
        findings.push_back({nRules::finding(target.rule, target.path, std::nullopt, target.plugin, message), grant.name,
                            grant.sid, right, fixOf(target, grant, reading.list.missing)});
    }
}

}  // namespace

void addPlugin(tMachine& machine, const std::string& file, const tPluginDescription& description,
               const std::string& systemFolder) {
    machine.targets.push_back({file, tKind::file, "exposed-description", description.name});
    const std::string& path = description.path;
    if (nPe::isSearched(path)) {
        const std::string message = fmt::format("the loader searches for {} in several folders", path);
        machine.unexamined.push_back(nRules::finding("unexamined-path", file, std::nullopt, description.name, message));
    } else if (!path.empty()) {
        std::string library = nPe::absolutePath(nPe::withExtension(path), systemFolder);
        constexpr std::string_view prefix = R"(\\?\)";  // of a path that Windows takes literally
        if (library.starts_with(prefix) && library.find(':') == prefix.size() + 1) library.erase(0, prefix.size());
        machine.targets.push_back({library, tKind::file, "exposed-code", description.name});
    }
}

std::vector<tTarget> withPassages(const std::vector<tTarget>& targets, const tMachine& machine) {
    tCollection collection(machine);
    for (const tTarget& target : targets) collection.add(target);
    return collection.take();
}

std::vector<tAuditFinding> findings(const tMachine& machine) {
    std::vector<tAuditFinding> findings;
    for (const tFinding& finding : machine.unexamined) findings.push_back({finding, "", "", "", ""});
    for (const tTarget& target : machine.targets) addRemote(target, machine, findings);
    for (const tTarget& target : withPassages(machine.targets, machine)) addFindings(target, machine, findings);
    return findings;
}

}  // namespace nAudit
