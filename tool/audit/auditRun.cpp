#include "tool/audit/auditRun.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

#include "tool/findingJson.h"
#include "tool/format.h"
#include "tool/install/step.h"

namespace nAudit {
namespace {

using tFindings = std::vector<tAuditFinding>;

/// Sets the lists of the host's folders about which there are findings. Returns what has been done.
std::vector<std::string> fixAll(const tMachine& machine, const tFindings& found) {
    std::vector<std::string> done;
    for (const std::string& folder : machine.ownFolders) {
        const bool concerned =
            std::any_of(found.begin(), found.end(), [&](const tAuditFinding& f) { return f.finding.file == folder; });
        if (!concerned) continue;
        const nInstall::tStep step{nInstall::tAction::setAccess, folder};
        const std::uint32_t error = machine.fix(folder);
        if (error != 0) throw std::runtime_error(fmt::format("{}: {}", notDone(step), machine.reason(error)));
        done.push_back(nInstall::done(step));
    }
    return done;
}

void printText(const tFindings& found, const std::vector<std::string>& fixed, tContext& context) {
    for (const std::string& line : fixed) context.out << line << '\n';
    for (const tAuditFinding& one : found) {
        context.out << nFinding::toText(one.finding, context.colour) << '\n';
        if (!one.fix.empty()) context.out << "    fix: " << one.fix << '\n';
    }
    if (found.empty()) context.out << "Only administrators can change what the service trusts\n";
}

void printJson(const tFindings& found, const std::vector<std::string>& fixed, std::ostream& out) {
    nlohmann::ordered_json document;
    document["schema"] = 1;
    document["fixed"] = fixed;
    document["findings"] = nlohmann::ordered_json::array();
    for (const tAuditFinding& one : found) {
        nlohmann::ordered_json& json = document["findings"].emplace_back(nJson::toJson(one.finding));
        json["principal"] = one.principal;
        json["sid"] = one.sid;
        json["right"] = one.right;
        json["fix"] = one.fix;
    }
    out << nJson::toText(document);
}

}  // namespace

void run(const tOptions& options, const tMachine& machine, tContext& context) {
    tFindings found = findings(machine);
    std::vector<std::string> fixed;
    if (options.fix) fixed = fixAll(machine, found);
    if (!fixed.empty()) found = findings(machine);
    if (options.json) {
        printJson(found, fixed, context.out);
    } else {
        printText(found, fixed, context);
    }
    std::vector<tFinding> plain;
    for (const tAuditFinding& one : found) plain.push_back(one.finding);
    if (nFinding::matter(plain, options.strict)) context.exitCode = exitFindings;
}

}  // namespace nAudit
