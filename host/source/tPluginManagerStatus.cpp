#include "source/tPluginManager.h"

namespace {

void writeDependencies(std::string& text, const std::vector<std::string>& dependencies) {
    const char* separator = "";
    for (const std::string& name : dependencies) {
        text.append(separator).append(name);
        separator = ", ";
    }
}

/// Writes the two lines of one entry-point call, or nothing if the call took no time and succeeded. The time is printed
/// as 32 bits, so it wraps around after 49.7 days.
void writeCall(std::string& text, const std::string& entryName, const char* fallbackLabel, std::uint64_t timeMs,
               std::int32_t code) {
    if (timeMs == 0 && code == 0) return;
    const std::string label = entryName.empty() ? fallbackLabel : entryName;
    text.append(label).append(" Time: ").append(std::to_string(static_cast<std::uint32_t>(timeMs))).append(" ms\n");
    text.append(label).append(" Code: ").append(std::to_string(code)).append("\n");
}

void writeEntry(std::string& text, const tPluginEntry& entry) {
    const tPluginDescription& description = entry.description;
    text.append(description.name).append(" (depends on ");
    writeDependencies(text, description.dependencies);
    text.append(")\n");
    text.append("Loaded From: ").append(description.path).append("\n");
    text.append("Requires: ").append(std::to_string(description.requiresMask)).append("\n");
    writeCall(text, description.initialize, "Init", entry.initTimeMs, entry.initCode);
    writeCall(text, description.stop, "Stop", entry.stopTimeMs, entry.stopCode);
    writeCall(text, description.cleanup, "Cleanup", entry.cleanupTimeMs, entry.cleanupCode);
    text.append("\n");
}

}  // namespace

std::string statusText(std::span<const tPluginEntry> entries) {
    std::string text;
    for (const tPluginEntry& entry : entries) writeEntry(text, entry);
    return text;
}

std::string tPluginManager::statusText() const { return ::statusText(entries_); }
