#include "tests/endtoend/harness/statusFile.h"

#include <algorithm>
#include <ostream>
#include <regex>
#include <sstream>

namespace endtoend {
namespace {

bool takePrefix(std::string& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.erase(0, prefix.size());
    return true;
}

/// "NAME (depends on A, B)"
bool isHeading(const std::string& line) {
    return line.find(" (depends on ") != std::string::npos && line.ends_with(")");
}

tPluginStatus headed(const std::string& line) {
    const std::string mark = " (depends on ";
    const std::size_t at = line.rfind(mark);
    tPluginStatus plugin;
    plugin.name = line.substr(0, at);
    plugin.dependencies = line.substr(at + mark.size(), line.size() - at - mark.size() - 1);
    return plugin;
}

/// A line below the heading.
void add(tPluginStatus& plugin, std::string line) {
    static const std::regex time("(.*) Time: ([0-9]+) ms");
    static const std::regex code("(.*) Code: (-?[0-9]+)");
    std::smatch match;
    if (takePrefix(line, "Loaded From: ")) {
        plugin.loadedFrom = line;
    } else if (std::regex_match(line, match, time)) {
        plugin.calls.push_back({match[1], static_cast<std::uint32_t>(std::stoul(match[2])), 0});
    } else if (std::regex_match(line, match, code) && !plugin.calls.empty() && plugin.calls.back().label == match[1]) {
        plugin.calls.back().code = std::stoi(match[2]);
    }
}

}  // namespace

std::int32_t tPluginStatus::code(std::string_view label) const {
    const auto call = std::ranges::find(calls, label, &tCall::label);
    return call == calls.end() ? 0 : call->code;
}

const tPluginStatus& tStatusFile::plugin(std::string_view name) const {
    const auto found = std::ranges::find(plugins, name, &tPluginStatus::name);
    if (found == plugins.end()) throw std::runtime_error("no plug-in " + std::string(name) + " in:\n" + bytes);
    return *found;
}

std::string tStatusFile::names() const {
    std::string result;
    for (const tPluginStatus& plugin : plugins) result += (&plugin == plugins.data() ? "" : " ") + plugin.name;
    return result;
}

tStatusFile tStatusFile::parse(const std::string& bytes) {
    std::string text = bytes;
    std::erase(text, '\r');
    std::istringstream lines(text);
    std::string line;
    tStatusFile file;
    if (!std::getline(lines, line) || line != "ZU-Ziptra Remote Configuration and Deployment status") return file;
    file.bytes = bytes;
    while (std::getline(lines, line) && !line.empty()) {
        if (takePrefix(line, "Allowed: ")) file.allowed = line;
    }
    while (std::getline(lines, line)) {
        if (isHeading(line)) {
            file.plugins.push_back(headed(line));
        } else if (file.plugins.empty()) {
            file.messages += line + "\n";
        } else {
            add(file.plugins.back(), line);
        }
    }
    return file;
}

tStatusFile tStatusFile::read() { return parse(readFile(path())); }

}  // namespace endtoend
