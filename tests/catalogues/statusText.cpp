#include "tests/catalogues/statusText.h"

#include <stdexcept>
#include <string_view>

namespace catalogues {
namespace {

/// The lines of a text with Windows' line ends.
class tLines {
public:
    explicit tLines(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool atEnd() const noexcept { return rest_.empty(); }
    [[nodiscard]] std::string_view peek() const { return rest_.substr(0, rest_.find("\r\n")); }

    std::string take() {
        const std::size_t end = rest_.find("\r\n");
        if (end == std::string_view::npos) throw std::runtime_error("the status file ends within a line");
        std::string line(rest_.substr(0, end));
        rest_.remove_prefix(end + 2);
        return line;
    }

    /// Returns what follows the prefix.
    std::string take(std::string_view prefix) {
        const std::string line = take();
        if (!line.starts_with(prefix)) throw std::runtime_error("no \"" + std::string(prefix) + "\": " + line);
        return line.substr(prefix.size());
    }

private:
    std::string_view rest_;
};

bool isMessage(std::string_view line) {
    return line.starts_with("Failed to parse service description file: ") ||
           line == "Failed to open plugins directory." || line == noFrameworkMessage || line == notFoundMessage;
}

/// Returns the line without the end that it must have.
std::string withoutEnd(const std::string& line, std::string_view end) {
    if (!line.ends_with(end)) throw std::runtime_error("no \"" + std::string(end) + "\": " + line);
    return line.substr(0, line.size() - end.size());
}

tStatusText::tPlugin readPlugin(tLines& lines) {
    tStatusText::tPlugin plugin;
    plugin.heading = lines.take();
    plugin.path = lines.take("Loaded From: ");
    plugin.requiresText = lines.take("Requires: ");
    if (!lines.peek().empty()) {
        const std::string time = withoutEnd(lines.take(), " ms");
        const std::size_t end = time.rfind(" Time: ");
        if (end == std::string::npos) throw std::runtime_error("no time: " + time);
        plugin.label = time.substr(0, end);
        plugin.code = std::stoi(lines.take(plugin.label + " Code: "));
    }
    if (const std::string line = lines.take(); !line.empty()) throw std::runtime_error("no empty line: " + line);
    return plugin;
}

}  // namespace

tStatusText readStatusText(const std::string& bytes) {
    tLines lines(bytes);
    tStatusText status;
    lines.take("ZU-Ziptra Remote Configuration and Deployment status");
    lines.take("Updated: ");
    status.allowed = lines.take("Allowed: ");
    if (!lines.peek().empty()) lines.take("Init Time ");
    lines.take();
    while (!lines.atEnd() && isMessage(lines.peek())) status.messages.push_back(lines.take());
    while (!lines.atEnd()) status.plugins.push_back(readPlugin(lines));
    return status;
}

}  // namespace catalogues
