#include <locale>
#include <ostream>
#include <sstream>

#include "source/tPluginManager.h"

namespace {

void writeDependencies(std::ostream& text, const std::vector<std::string>& dependencies) {
    const char* separator = "";
    for (const std::string& name : dependencies) {
        text << separator << name;
        separator = ", ";
    }
}

/// The two lines of one entry-point call; none for a call that took no time and succeeded. The time is printed as 32
/// bits, which wraps after 49.7 days.
void writeCall(std::ostream& text, const std::string& entryName, const char* fallbackLabel, std::uint64_t timeMs,
               std::int32_t code) {
    if (timeMs == 0 && code == 0) return;
    const std::string label = entryName.empty() ? fallbackLabel : entryName;
    text << label << " Time: " << static_cast<std::uint32_t>(timeMs) << " ms\n";
    text << label << " Code: " << code << '\n';
}

void writeEntry(std::ostream& text, const tPluginEntry& entry) {
    const tPluginDescription& description = entry.description;
    text << description.name << " (depends on ";
    writeDependencies(text, description.dependencies);
    text << ")\n";
    text << "Loaded From: " << description.path << '\n';
    text << "Requires: " << description.requiresMask << '\n';
    writeCall(text, description.initialize, "Init", entry.initTimeMs, entry.initCode);
    writeCall(text, description.stop, "Stop", entry.stopTimeMs, entry.stopCode);
    writeCall(text, description.cleanup, "Cleanup", entry.cleanupTimeMs, entry.cleanupCode);
    text << '\n';
}

}  // namespace

std::string tPluginManager::statusText() const {
    std::ostringstream text;
    // Numbers come out plain, whatever the global locale would do to them.
    text.imbue(std::locale::classic());
    // A lack of memory is thrown; left to itself, the stream would end the text there.
    text.exceptions(std::ios::badbit);
    for (const tPluginEntry& entry : entries_) writeEntry(text, entry);
    return text.str();
}
