#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tool/status/statusReport.h"

/// Status reports for tests of what is made of them.
namespace support {

/// The lines that precede the messages and plug-ins.
inline const std::string statusHead =
    "ZU-Ziptra Remote Configuration and Deployment status\n"
    "Updated: Mon Nov 16 03:26:40 2026\n"
    "Allowed: 0xffffffff\n"
    "\n";

/// Returns the text, which then lives as long as the program: what a plug-in refers to.
inline std::string_view kept(std::string text) {
    static std::deque<std::string> texts;
    return texts.emplace_back(std::move(text));
}

/// Returns a plug-in whose Initialize, named as usual, took so long and returned this code. With neither, there is no
/// call.
inline nStatus::tPlugin plugin(const std::string& name, std::uint64_t initMs = 0, std::int32_t initCode = 0,
                               const std::vector<std::string>& dependencies = {}) {
    nStatus::tPlugin plugin{kept(name), {}, kept("C:\\" + name + ".dll"), 1, {}, false};
    for (const std::string& dependency : dependencies) plugin.dependencies.push_back(kept(dependency));
    if (initMs != 0 || initCode != 0) {
        plugin.calls.push_back({kept(name + "Initialize"), nStatus::tPhase::initialize, initMs, initCode});
    }
    return plugin;
}

inline nStatus::tReport report(std::vector<nStatus::tPlugin> plugins = {}, std::vector<std::string> messages = {}) {
    return {"Mon Nov 16 03:26:40 2026", 0xFFFFFFFF, 1250, std::move(messages), std::move(plugins), false, {}};
}

/// Returns the report of a text that is a status file.
inline nStatus::tReport readReport(const std::string& text) {
    auto result = nStatus::read(text);
    if (const auto* const no = std::get_if<nStatus::tNotAStatusFile>(&result)) {
        ADD_FAILURE() << "line " << no->line << ": " << no->reason;
        return {};
    }
    return std::get<nStatus::tReport>(std::move(result));
}

}  // namespace support
