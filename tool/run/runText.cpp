#include <algorithm>
#include <array>
#include <utility>

#include "tool/finding.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/run/render.h"
#include "tool/status/statusSummary.h"

namespace nRun {
namespace {

using nPlainText::printable;

constexpr std::size_t longestName = 40;  // in columns
constexpr std::string_view saidId = "said";
constexpr std::array<std::string_view, 3> titles{"INITIALIZE", "STOP", "CLEANUP"};

/// The same sentence about the same plug-in, in any number of lives.
struct tRemark {
    std::size_t plugin;
    std::string_view id;
    tSeverity severity;
    std::string sentence;
    std::size_t lives = 1;  ///< of a text that was said: the number of times
};

void add(std::vector<tRemark>& remarks, tRemark remark) {
    const auto known = std::ranges::find_if(remarks, [&](const tRemark& other) {
        return other.plugin == remark.plugin && other.id == remark.id && other.sentence == remark.sentence;
    });
    if (known == remarks.end()) {
        remarks.push_back(std::move(remark));
    } else {
        ++known->lives;
    }
}

std::vector<tRemark> remarksOf(const tResult& result) {
    std::vector<tRemark> remarks;
    for (const tLife& life : result.lives) {
        for (std::size_t plugin = 0; plugin < life.size(); ++plugin) {
            const auto& [calls, texts, outcome, detail] = life[plugin];
            const tSeverity severity = outcome == tOutcome::ok ? tSeverity::note : tSeverity::error;
            if (!detail.empty()) add(remarks, {plugin, outcomeName(outcome), severity, detail});
            for (const tSaid& said : texts) add(remarks, {plugin, saidId, tSeverity::note, sentenceOf(said)});
        }
    }
    return remarks;
}

std::string toText(const tRemark& remark, const tResult& result, bool colour) {
    const tPlugin& plugin = result.plugins[remark.plugin];
    tFinding finding;
    finding.id = remark.id;
    finding.severity = remark.severity;
    finding.file = printable(plugin.file);
    finding.message = printable(plugin.description.name + ": " + remark.sentence);
    // Not everything that was said is reported, so the number of lives would be too small.
    if (result.lives.size() > 1 && remark.id != saidId)
        finding.message += fmt::format(" (in {} of {} lives)", remark.lives, result.lives.size());
    return nFinding::toText(finding, colour) + '\n';
}

/// Returns the longest duration of a call, and the code of the first life in which it was not 0.
std::string callText(const tResult& result, std::size_t plugin, nStatus::tPhase phase) {
    const tCall* slowest = nullptr;
    std::int32_t code = 0;
    for (const tLife& life : result.lives) {
        for (const tCall& call : life[plugin].calls) {
            if (call.phase != phase) continue;
            if (slowest == nullptr || call.timeMs > slowest->timeMs) slowest = &call;
            if (code == 0) code = call.code;
        }
    }
    if (slowest == nullptr) return {};
    const std::string time = nStatus::durationText(slowest->timeMs);
    return code == 0 ? time : fmt::format("{}, {}", code, time);
}

tOutcome worstOutcome(const tResult& result, std::size_t plugin) {
    for (const tLife& life : result.lives) {
        if (life[plugin].outcome != tOutcome::ok) return life[plugin].outcome;
    }
    return tOutcome::ok;
}

std::string shownName(const tPlugin& plugin) {
    return nPlainText::shortened(printable(plugin.description.name), longestName);
}

std::string table(const tResult& result, bool colour) {
    constexpr std::string_view nameTitle = "PLUG-IN";
    std::size_t width = nameTitle.size();
    for (const tPlugin& plugin : result.plugins) width = std::max(width, nPlainText::columns(shownName(plugin)));
    std::string text =
        fmt::format("{:<{}}  {:>16}  {:>16}  {:>16}  OUTCOME\n", nameTitle, width, titles[0], titles[1], titles[2]);
    for (std::size_t plugin = 0; plugin < result.plugins.size(); ++plugin) {
        const std::string name = shownName(result.plugins[plugin]);
        text += name + std::string(width - nPlainText::columns(name), ' ');
        for (std::size_t phase = 0; phase < titles.size(); ++phase) {
            text += fmt::format("  {:>16}", callText(result, plugin, static_cast<nStatus::tPhase>(phase)));
        }
        const tOutcome outcome = worstOutcome(result, plugin);
        const bool red = colour && outcome != tOutcome::ok;
        text += fmt::format("  {}{}{}\n", red ? "\x1B[1;31m" : "", outcomeName(outcome), red ? "\x1B[0m" : "");
    }
    return text;
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

std::string toText(const tResult& result, bool colour) {
    std::string text;
    for (const tRemark& remark : remarksOf(result)) text += toText(remark, result, colour);
    if (!text.empty()) text += '\n';
    if (result.lives.size() > 1) text += "The longest time of each call:\n";
    text += table(result, colour);
    return text + fmt::format("\n{}, {}: {}\n", counted(result.plugins.size(), "plug-in", "plug-ins"),
                              counted(result.lives.size(), "life", "lives"), passed(result) ? "passed" : "failed");
}

}  // namespace nRun
