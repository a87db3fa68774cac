#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tool/audit/audit.h"

namespace support {

inline nAccess::tEntry allow(const char* sid, const char* name, std::uint32_t rights) {
    return {true, false, false, rights, sid, name};
}

/// A machine on which only administrators can change anything, unless a test adds a list.
struct tAuditedMachine {
    nAudit::tMachine machine;
    std::set<std::string> existing;
    std::map<std::string, nAccess::tList> lists;
    std::map<std::string, nAudit::tPlace> places;
    std::uint32_t error = 0;  ///< of reading a list
    std::uint32_t fixError = 0;

    tAuditedMachine() {
        machine.exists = [this](const std::string& path, nAccess::tKind) { return existing.contains(path); };
        machine.read = [this](const std::string& path, nAccess::tKind) -> nAccess::tReading {
            if (error != 0) return {error, {}};
            const auto list = lists.find(path);
            return {0, list == lists.end() ? administrators() : list->second};
        };
        machine.placeOf = [this](const std::string& path) {
            const auto place = places.find(path);
            return place == places.end() ? nAudit::tPlace::here : place->second;
        };
        machine.fix = [this](const std::string& folder) {
            if (fixError == 0) lists[folder] = administrators();
            return fixError;
        };
        machine.reason = [](std::uint32_t code) { return "Reason (" + std::to_string(code) + ")"; };
    }
    ~tAuditedMachine() = default;
    tAuditedMachine(const tAuditedMachine&) = delete;
    tAuditedMachine& operator=(const tAuditedMachine&) = delete;

    void exist(const std::vector<std::string>& paths) { existing.insert(paths.begin(), paths.end()); }

    static nAccess::tList administrators() { return {"S-1-5-32-544", "BUILTIN\\Administrators", false, {}}; }
};

}  // namespace support
