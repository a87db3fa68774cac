#include "tool/explain/explainText.h"

#include <algorithm>

#include "tool/format.h"
#include "tool/plainText.h"

namespace nExplain {
namespace {

/// The table's texts are Markdown, in which backticks enclose names.
std::string withoutBackticks(std::string_view text) {
    std::string plain(text);
    std::erase(plain, '`');
    return plain;
}

std::string placeOf(const tCode& entry) {
    return entry.file.empty() ? "" : fmt::format(" ({}, line {})", entry.file, entry.line);
}

/// Returns the meanings that are or are not seen in a plug-in's line.
std::string meaningsText(const tCodeExplanation& explanation, bool ofPlugins) {
    std::string text;
    for (const tCode* const entry : explanation.meanings) {
        if ((entry->shownAs == nCodes::inCodeLine) != ofPlugins) continue;
        const std::string seen = ofPlugins ? "" : fmt::format("    seen as: {}\n", entry->shownAs);
        text += fmt::format("  - {}{}\n{}    to do: {}\n", entry->meaning, placeOf(*entry), seen, entry->remedy);
    }
    return withoutBackticks(text);
}

std::string systemText(const tSystemCode& code) {
    const std::string name = code.name.empty() ? "" : fmt::format(" ({})", code.name);
    return fmt::format(
        "\nFor Windows this number means: {}{}.\n"
        "In a Code: line, it is the plug-in's own. As the exit code of the service's process, it says how the whole\n"
        "service ended.\n",
        code.meaning, name);
}

/// Returns the finding as `check` prints it, on one line.
std::string findingText(const tFinding& finding, bool colour) {
    tFinding shown = finding;
    shown.file = nPlainText::printable(finding.file);
    shown.message = nPlainText::printable(finding.message);
    return nFinding::toText(shown, colour);
}

constexpr std::size_t mostSteps = 40;
constexpr std::size_t mostFindings = 10;
constexpr std::size_t deepestIndentation = 12;

/// Notes do not matter to a plug-in that waits for another.
bool isWorthShowing(const tFinding& finding, const tStep& step) {
    constexpr std::int32_t dependencyNotStarted = -52006;
    return finding.severity != tSeverity::note || step.code != dependencyNotStarted;
}

std::string stepText(const tStep& step, bool colour) {
    const std::string indentation(2 * std::min(step.depth + 1, deepestIndentation), ' ');
    const std::string code = step.code && *step.code < 0 ? fmt::format(" ({})", *step.code) : "";
    const std::string sentence = nPlainText::printable(fmt::format("{}{} {}", step.plugin, code, step.text));
    std::string text = fmt::format("{}{}\n", indentation, withoutBackticks(sentence));
    std::size_t shown = 0;
    for (const tFinding& finding : step.findings) {
        if (!isWorthShowing(finding, step)) continue;
        if (++shown <= mostFindings) text += fmt::format("{}  {}\n", indentation, findingText(finding, colour));
    }
    if (shown > mostFindings) text += fmt::format("{}  ... and {} more findings\n", indentation, shown - mostFindings);
    return text;
}

/// Returns one paragraph with the calls that the status file shows.
std::string callsText(const std::vector<tShownCall>& calls) {
    std::string text;
    for (const tShownCall& call : calls) {
        text += fmt::format("  {}: {} after {} ms\n", nPlainText::printable(call.entry), call.code, call.timeMs);
    }
    return text;
}

}  // namespace

std::string toText(const tCodeExplanation& explanation) {
    const std::int32_t code = explanation.code;
    const std::string otherForm = code < 0 ? fmt::format(", {}", static_cast<std::uint32_t>(code)) : "";
    std::string text =
        fmt::format("{} ({}{})\n{}\n", code, hexadecimal(code), otherForm, withoutBackticks(explanation.summary));
    // Of a plug-in's own code, the summary says everything.
    const std::string ofPlugins = explanation.origin == tOrigin::host ? meaningsText(explanation, true) : "";
    const std::string others = meaningsText(explanation, false);
    if (!ofPlugins.empty()) text += "\nIn a plug-in's Code: line of the status file it means:\n" + ofPlugins;
    if (!others.empty()) text += "\nElsewhere in the host it means:\n" + others;
    if (explanation.systemCode) text += systemText(*explanation.systemCode);
    return text;
}

std::string toText(const tRule& rule) {
    return fmt::format("{} ({}): {}\n\n{}\nTo do: {}\n", rule.id, nFinding::severityName(rule.severity), rule.title,
                       rule.cause, rule.remedy);
}

std::string toText(const tPluginExplanation& explanation, bool colour) {
    const std::string_view bold = colour ? "\x1B[1m" : "";
    const std::string_view normal = colour ? "\x1B[0m" : "";
    std::string text = fmt::format("{}{}{}\n", bold, nPlainText::printable(explanation.summary), normal);
    if (explanation.calls && explanation.verdict == tVerdict::started) text += callsText(*explanation.calls);
    if (!explanation.steps.empty()) text += "\n";
    for (std::size_t i = 0; i < std::min(explanation.steps.size(), mostSteps); ++i) {
        text += stepText(explanation.steps[i], colour);
    }
    if (explanation.steps.size() > mostSteps) {
        text += fmt::format("  ... and {} more (--json lists all)\n", explanation.steps.size() - mostSteps);
    }
    if (!explanation.notes.empty()) text += "\n";
    for (const std::string& note : explanation.notes) text += nPlainText::printable(withoutBackticks(note)) + "\n";
    if (!explanation.similar.empty()) {
        text += "Similar names:\n";
        for (const std::string& name : explanation.similar) text += "  " + nPlainText::printable(name) + "\n";
    }
    if (explanation.first.empty()) return text;
    return text + fmt::format("\n{}What to do first:{} {}\n", bold, normal,
                              nPlainText::printable(withoutBackticks(explanation.first)));
}

std::string codesAsMarkdown() {
    std::string text =
        "| code | file | line | meaning | seen as | remedy |\n"
        "|---|---|---|---|---|---|\n";
    for (const tCode& entry : nCodes::all()) {
        const std::string code = entry.code == 0 ? "the plug-in's" : std::to_string(entry.code);
        const std::string line = entry.line == 0 ? "" : std::to_string(entry.line);
        text += fmt::format("| {} | {} | {} | {} | {} | {} |\n", code, entry.file, line, entry.meaning, entry.shownAs,
                            entry.remedy);
    }
    return text;
}

}  // namespace nExplain
