#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "source/statusText.h"
#include "tool/status/statusReport.h"

/// What reading a status file should return, in plain words: for tests that write one with the host's own function.
namespace support {

/// Returns the host's text as it is on disk, except for the ends of lines.
inline std::string writtenText(const tStatusContent& content) {
    std::string text = ::statusText(content);
    std::erase(text, '\r');
    return text;
}

/// The calls refer to the entry.
inline std::vector<nStatus::tCall> shownCalls(const tPluginEntry& entry) {
    using nStatus::tPhase;
    const tPluginDescription& description = entry.description;
    std::vector<nStatus::tCall> calls;
    const auto show = [&](const std::string& name, const char* label, tPhase phase, std::uint64_t ms,
                          std::int32_t code) {
        if (ms == 0 && code == 0) return;
        calls.push_back({name.empty() ? label : std::string_view(name), phase, ms & 0xFFFFFFFF, code});
    };
    show(description.initialize, "Init", tPhase::initialize, entry.initTimeMs, entry.initCode);
    show(description.stop, "Stop", tPhase::stop, entry.stopTimeMs, entry.stopCode);
    show(description.cleanup, "Cleanup", tPhase::cleanup, entry.cleanupTimeMs, entry.cleanupCode);
    return calls;
}

inline bool sameTexts(const nStatus::tPlugin& plugin, const tPluginEntry& entry) {
    const tPluginDescription& description = entry.description;
    return plugin.name == description.name &&
           std::equal(plugin.dependencies.begin(), plugin.dependencies.end(), description.dependencies.begin(),
                      description.dependencies.end());
}

/// Returns whether the calls are those of the entry, except perhaps for their phases.
inline bool sameCalls(const nStatus::tPlugin& plugin, const tPluginEntry& entry) {
    const std::vector<nStatus::tCall> calls = shownCalls(entry);
    if (plugin.calls.size() != calls.size()) return false;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const nStatus::tCall& call = plugin.calls[i];
        if (call.entry != calls[i].entry || call.timeMs != calls[i].timeMs || call.code != calls[i].code) return false;
    }
    return true;
}

inline bool samePhases(const nStatus::tPlugin& plugin, const tPluginEntry& entry) {
    const std::vector<nStatus::tCall> calls = shownCalls(entry);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (plugin.calls[i].phase != calls[i].phase) return false;
    }
    return true;
}

/// Returns whether an entry is named after its plug-in and another phase, which the reader believes.
inline bool namesMislead(const tPluginDescription& description) {
    const std::string& name = description.name;
    if (name.empty()) return false;
    const auto isOneOf = [&](const std::string& entry, const std::vector<std::string>& words) {
        return std::ranges::any_of(words, [&](const std::string& word) { return entry == name + word; });
    };
    return isOneOf(description.initialize, {"Stop", "Cleanup"}) ||
           isOneOf(description.stop, {"Init", "Initialize", "Cleanup"}) ||
           isOneOf(description.cleanup, {"Init", "Initialize", "Stop"});
}

/// Returns whether the plug-in was read as it was written, or marked where the text leaves a choice. What cannot be
/// doubted must be right in any case.
inline bool readRightOrMarked(const nStatus::tPlugin& plugin, const tPluginEntry& entry) {
    const bool certain = plugin.path == entry.description.path && sameCalls(plugin, entry) &&
                         plugin.requiresMask == entry.description.requiresMask;
    if (!certain) return false;
    if (plugin.ambiguous) return true;
    return sameTexts(plugin, entry) && (samePhases(plugin, entry) || namesMislead(entry.description));
}

}  // namespace support
