#include "tool/status/statusReport.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

namespace nStatus {
namespace {

constexpr std::string_view banner = "ZU-Ziptra Remote Configuration and Deployment status";
constexpr std::string_view dependencyPhrase = " (depends on ";
constexpr std::size_t phaseCount = 3;

/// The lines of a text, without their terminators.
class tLines {
public:
    explicit tLines(std::string_view text) : rest_(text) {}

    /// Returns nullopt at the end of the text, and if the last line has no terminator.
    std::optional<std::string_view> next() {
        ++number_;
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) return std::nullopt;
        std::string_view line = rest_.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        rest_.remove_prefix(end + 1);
        return line;
    }

    [[nodiscard]] int number() const { return number_; }  ///< of the line that was asked for last, from 1
    [[nodiscard]] std::size_t charactersLeft() const { return rest_.size(); }

private:
    std::string_view rest_;
    int number_ = 0;
};

/// Removes the beginning from the text and returns true, if the text begins with it.
bool removeStart(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start)) return false;
    text.remove_prefix(start.size());
    return true;
}

bool removeEnd(std::string_view& text, std::string_view end) {
    if (!text.ends_with(end)) return false;
    text.remove_suffix(end.size());
    return true;
}

/// Returns the number if it is written as the host writes it: without a plus sign, leading zeros or capital letters.
template <class Number>
std::optional<Number> toNumber(std::string_view text, int base = 10) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
    if (digits.starts_with('0') && text.size() > 1) return std::nullopt;
    const bool capitals = std::any_of(digits.begin(), digits.end(), [](char c) { return c >= 'A' && c <= 'F'; });
    return capitals ? std::nullopt : std::optional(number);
}

/// Like isspace in the C locale, by which the host trims names.
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Returns whether a name may end before and another begin after the separator at this place of the text: names are
/// neither empty nor surrounded by white space.
bool isSeparator(std::string_view text, std::size_t comma) {
    const auto inName = [&](std::size_t at) { return at < text.size() && text[at] != ',' && !isSpace(text[at]); };
    return comma > 0 && inName(comma - 1) && text.substr(comma + 1).starts_with(' ') && inName(comma + 2);
}

/// Returns the position of the last comma that is no separator, or 0: no list of names begins before it.
std::size_t lastOtherComma(std::string_view text) {
    std::size_t last = 0;
    for (std::size_t comma = text.find(','); comma != std::string_view::npos; comma = text.find(',', comma + 1)) {
        if (!isSeparator(text, comma)) last = comma;
    }
    return last;
}

/// Where in a plug-in's first line, without the final parenthesis, the name ends.
struct tNameEnd {
    std::size_t position = 0;
    int candidates = 0;  ///< number of positions that are possible
};

tNameEnd findNameEnd(std::string_view line) {
    const std::size_t otherComma = lastOtherComma(line);
    const bool listMayEndHere = !line.empty() && !isSpace(line.back());
    tNameEnd result;
    for (std::size_t at = line.find(dependencyPhrase); at != std::string_view::npos;
         at = line.find(dependencyPhrase, at + 1)) {
        const std::size_t start = at + dependencyPhrase.size();
        const bool isList =
            start > otherComma && listMayEndHere && start < line.size() && line[start] != ',' && !isSpace(line[start]);
        if (start == line.size() || isList) result = {at, result.candidates + 1};
    }
    return result;
}

/// Requires: a list that findNameEnd accepts.
std::vector<std::string_view> splitNames(std::string_view list) {
    std::vector<std::string_view> names;
    if (list.empty()) return names;
    names.reserve(static_cast<std::size_t>(std::count(list.begin(), list.end(), ',')) + 1);
    for (std::size_t comma = list.find(','); comma != std::string_view::npos; comma = list.find(',')) {
        names.push_back(list.substr(0, comma));
        list.remove_prefix(comma + 2);
    }
    names.push_back(list);
    return names;
}

/// Reads "NAME (depends on A, B)".
bool readNames(std::string_view line, tPlugin& plugin) {
    if (!removeEnd(line, ")")) return false;
    const tNameEnd end = findNameEnd(line);
    if (end.candidates == 0) return false;
    plugin.name = line.substr(0, end.position);
    plugin.dependencies = splitNames(line.substr(end.position + dependencyPhrase.size()));
    plugin.ambiguous = end.candidates > 1;
    return true;
}

/// Reads "ENTRY Time: 15 ms" and "ENTRY Code: 0". The name may contain such texts, the numbers cannot.
bool readCall(std::string_view timeLine, std::string_view codeLine, tCall& call) {
    constexpr std::string_view timeWord = " Time: ";
    const std::size_t nameEnd = timeLine.rfind(timeWord);
    if (nameEnd == std::string_view::npos || !removeEnd(timeLine, " ms")) return false;
    const std::string_view entry = timeLine.substr(0, nameEnd);
    if (!removeStart(codeLine, entry) || !removeStart(codeLine, " Code: ")) return false;
    if (nameEnd + timeWord.size() > timeLine.size()) return false;
    const auto time = toNumber<std::uint32_t>(timeLine.substr(nameEnd + timeWord.size()));
    const auto code = toNumber<std::int32_t>(codeLine);
    if (!time || !code) return false;
    call = {entry, tPhase::initialize, *time, *code};
    return true;
}

/// Reads the calls and the empty line after them.
bool readCalls(tLines& lines, std::vector<tCall>& calls) {
    std::array<tCall, phaseCount> read;
    std::size_t count = 0;
    for (;;) {
        const auto timeLine = lines.next();
        if (!timeLine) return false;
        if (timeLine->empty()) break;
        if (count == read.size()) return false;
        const auto codeLine = lines.next();
        if (!codeLine || !readCall(*timeLine, *codeLine, read[count++])) return false;
    }
    calls.assign(read.data(), read.data() + count);
    return true;
}

/// Whether an entry's name suggests a phase, and whether it is the plug-in's name and the phase.
constexpr std::array<std::string_view, phaseCount> phaseWords{"init", "stop", "cleanup"};

bool suggests(std::string_view entry, tPhase phase) {
    const std::string_view word = phaseWords[static_cast<std::size_t>(phase)];
    const auto sameLetter = [](char letter, char lower) { return letter == lower || letter + ('a' - 'A') == lower; };
    return std::search(entry.begin(), entry.end(), word.begin(), word.end(), sameLetter) != entry.end();
}

bool isNamedAfter(std::string_view entry, std::string_view plugin, tPhase phase) {
    if (plugin.empty() || !removeStart(entry, plugin)) return false;
    if (phase == tPhase::initialize) return entry == "Init" || entry == "Initialize";
    return entry == (phase == tPhase::stop ? "Stop" : "Cleanup");
}

/// Phases of a plug-in's calls, in order. Of those that are possible, the earliest come first.
using tPhases = std::array<tPhase, phaseCount>;
constexpr tPhases allPhases{tPhase::initialize, tPhase::stop, tPhase::cleanup};
constexpr std::array<tPhases, 3> phasesOfOne{{{tPhase::initialize}, {tPhase::stop}, {tPhase::cleanup}}};
constexpr std::array<tPhases, 3> phasesOfTwo{
    {{tPhase::initialize, tPhase::stop}, {tPhase::initialize, tPhase::cleanup}, {tPhase::stop, tPhase::cleanup}}};

/// Returns with how many calls' names the phases agree.
int agreement(const std::vector<tCall>& calls, const tPhases& phases) {
    int count = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) count += suggests(calls[i].entry, phases[i]) ? 1 : 0;
    return count;
}

/// Returns whether the phases begin with the start, and all calls are named after the plug-in and their phase.
bool areNamedAsUsual(const tPlugin& plugin, const tPhases& phases) {
    if (phases.front() != tPhase::initialize) return false;
    for (std::size_t i = 0; i < plugin.calls.size(); ++i) {
        if (!isNamedAfter(plugin.calls[i].entry, plugin.name, phases[i])) return false;
    }
    return true;
}

void setPhases(std::vector<tCall>& calls, const tPhases& phases) {
    for (std::size_t i = 0; i < calls.size(); ++i) calls[i].phase = phases[i];
}

void findPhases(tPlugin& plugin) {
    std::vector<tCall>& calls = plugin.calls;
    if (calls.empty()) return;
    if (calls.size() == phaseCount) return setPhases(calls, allPhases);
    const std::span<const tPhases> possible = calls.size() == 1 ? phasesOfOne : phasesOfTwo;
    const auto usual = std::find_if(possible.begin(), possible.end(),
                                    [&](const tPhases& phases) { return areNamedAsUsual(plugin, phases); });
    if (usual != possible.end()) return setPhases(calls, *usual);
    setPhases(calls, *std::max_element(possible.begin(), possible.end(), [&](const tPhases& a, const tPhases& b) {
                  return agreement(calls, a) < agreement(calls, b);
              }));
    plugin.ambiguous = true;
}

/// Reads a plug-in's paragraph, whose first line has been read. If it is none, returns false, and `lines` stays where
/// it is.
bool readPlugin(std::string_view firstLine, tLines& lines, tPlugin& plugin) {
    tLines ahead = lines;
    std::string_view path = ahead.next().value_or(std::string_view());
    std::string_view mask = ahead.next().value_or(std::string_view());
    if (!removeStart(path, "Loaded From: ") || !removeStart(mask, "Requires: ")) return false;
    const auto requiresMask = toNumber<std::uint32_t>(mask);
    if (!requiresMask || !readNames(firstLine, plugin) || !readCalls(ahead, plugin.calls)) return false;
    plugin.path = path;
    plugin.requiresMask = *requiresMask;
    findPhases(plugin);
    lines = ahead;
    return true;
}

/// Makes room for as many plug-ins as the rest of the text probably has, so that they are not moved often.
void makeRoom(std::vector<tPlugin>& plugins, std::size_t charactersRead, std::size_t charactersLeft) {
    constexpr std::size_t sample = 16;
    if (plugins.size() == sample) plugins.reserve(sample + (sample + 1) * (charactersLeft / charactersRead + 1));
}

void readBody(tLines& lines, tReport& report) {
    const std::size_t size = lines.charactersLeft();
    while (const auto line = lines.next()) {
        tPlugin plugin;
        if (line->ends_with(')') && readPlugin(*line, lines, plugin)) {
            report.plugins.push_back(std::move(plugin));
            makeRoom(report.plugins, size - lines.charactersLeft(), lines.charactersLeft());
        } else {
            report.ambiguous = report.ambiguous || !report.plugins.empty();
            report.messages.emplace_back(*line);
        }
    }
}

/// Reads the time of the preparation, if the line shows it.
bool readInitTime(std::string_view line, tReport& report) {
    if (!removeStart(line, "Init Time ") || !removeEnd(line, " ms")) return false;
    const auto time = toNumber<std::uint32_t>(line);
    if (time) report.initTimeMs = *time;
    return time.has_value();
}

/// Reads the lines that precede the messages. Returns what the last line read lacks, or an empty text.
std::string_view readHead(tLines& lines, tReport& report) {
    std::string_view line;
    const auto next = [&] {
        const auto read = lines.next();
        line = read.value_or(std::string_view());
        return read.has_value();
    };
    if (!next() || line != banner) return "it is not the first line of a status file";
    if (!next() || !removeStart(line, "Updated: ")) return "\"Updated: \" and the time of writing are missing";
    report.updated = line;
    const bool allowed = next() && removeStart(line, "Allowed: 0x");
    const auto mask = toNumber<std::uint32_t>(line, 16);
    if (!allowed || !mask) return "\"Allowed: 0x\" and the mask of allowed features are missing";
    report.allowedMask = *mask;
    if (!next() || (!line.empty() && !readInitTime(line, report))) return "an empty line or \"Init Time \" is missing";
    if (report.initTimeMs && (!next() || !line.empty())) return "an empty line is missing";
    return {};
}

}  // namespace

std::variant<tReport, tNotAStatusFile> read(std::string text) {
    if (text.empty()) return tNotAStatusFile{1, "the file is empty"};
    tReport report;
    report.text = std::make_shared<const std::string>(std::move(text));
    tLines lines(*report.text);
    const std::string_view lack = readHead(lines, report);
    if (!lack.empty()) return tNotAStatusFile{lines.number(), std::string(lack)};
    readBody(lines, report);
    if (lines.charactersLeft() != 0) return tNotAStatusFile{lines.number(), "the file ends in the middle of a line"};
    return report;
}

}  // namespace nStatus
