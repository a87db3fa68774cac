#include <algorithm>

#include "source/runMessages.h"
#include "tool/check/render.h"
#include "tool/format.h"
#include "tool/plainText.h"

namespace nCheck {
namespace {

using nPlainText::printable;

constexpr std::size_t widestName = 40;

std::string codeText(const tPredictedPlugin& plugin) {
    if (plugin.code) return std::to_string(*plugin.code);
    return plugin.mayStart ? "-" : "fails";
}

/// Appends an entry with so many blanks in front of it that it takes this many columns. Requires: ASCII text.
void appendRightAligned(std::string& text, std::string_view entry, std::size_t columns) {
    text.append(columns - std::min(columns, entry.size()), ' ') += entry;
}

void appendFindings(std::string& text, const tPrediction& prediction, bool colour) {
    for (tFinding finding : prediction.findings) {
        finding.file = printable(finding.file);
        finding.message = printable(finding.message);
        text += fmt::format("{}\n    {}\n", nFinding::toText(finding, colour), printable(finding.remedy));
    }
    if (!prediction.findings.empty()) text += '\n';
}

void appendMessages(std::string& text, const tPrediction& prediction) {
    if (prediction.messages.empty()) return;
    text += "Messages in the status file:\n";
    for (const std::string& message : prediction.messages) text += fmt::format("  {}\n", printable(message));
    text += '\n';
}

void appendOrder(std::string& text, const tPrediction& prediction, bool colour) {
    if (prediction.plugins.empty()) return;
    std::size_t width = 0;
    for (const tPredictedPlugin& plugin : prediction.plugins) width = std::max(width, plugin.description.name.size());
    width = std::min(width, widestName);
    text += "Start order, and the code of each start (-: the plug-in's own code decides, or it is unknown):\n";
    std::size_t number = 0;
    for (const tPredictedPlugin& plugin : prediction.plugins) {
        const bool red = colour && !plugin.mayStart;
        const std::string name = printable(plugin.description.name);
        appendRightAligned(text, std::to_string(++number), 5);
        text.append("  ") += name;
        text.append(width - std::min(width, nPlainText::columns(name)), ' ') += red ? "  \x1B[1;31m" : "  ";
        appendRightAligned(text, codeText(plugin), 7);
        text.append(red ? "\x1B[0m  " : "  ").append(printable(plugin.file)) += '\n';
    }
    text += '\n';
}

/// Returns "1 error", "2 errors".
std::string counted(std::size_t count, std::string_view what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

/// Returns "; 1 rejected description", or nothing if there is none.
std::string rejectedText(const tPrediction& prediction) {
    const auto count = static_cast<std::size_t>(std::count_if(
        prediction.messages.begin(), prediction.messages.end(),
        [](const std::string& message) { return message.starts_with(nRunMessages::descriptionNotParsed); }));
    return count == 0 ? "" : "; " + counted(count, "rejected description");
}

std::string summary(const tPrediction& prediction) {
    const auto count = [&prediction](tSeverity severity) {
        return static_cast<std::size_t>(
            std::count_if(prediction.findings.begin(), prediction.findings.end(),
                          [severity](const tFinding& finding) { return finding.severity == severity; }));
    };
    const auto failing =
        static_cast<std::size_t>(std::count_if(prediction.plugins.begin(), prediction.plugins.end(),
                                               [](const tPredictedPlugin& plugin) { return !plugin.mayStart; }));
    return fmt::format("{}, of which {} will not start{}; {}, {}, {}\n", counted(prediction.plugins.size(), "plug-in"),
                       failing, rejectedText(prediction), counted(count(tSeverity::error), "error"),
                       counted(count(tSeverity::warning), "warning"), counted(count(tSeverity::note), "note"));
}

}  // namespace

std::string toText(const tPrediction& prediction, bool colour) {
    std::string text;
    appendFindings(text, prediction, colour);
    appendMessages(text, prediction);
    appendOrder(text, prediction, colour);
    text += summary(prediction);
    return text;
}

}  // namespace nCheck
