#include "tool/status/statusSummary.h"

#include <algorithm>
#include <array>

#include "tool/format.h"

namespace nStatus {
namespace {

std::uint64_t totalMs(const tPlugin& plugin) {
    std::uint64_t total = 0;
    for (const tCall& call : plugin.calls) total += call.timeMs;
    return total;
}

struct tDuration {
    std::uint64_t ms;
    std::size_t plugin;
};

void count(const tPlugin& plugin, tSummary& summary) {
    if (plugin.ambiguous) ++summary.ambiguous;
    for (const tCall& call : plugin.calls) {
        summary.longestMs = std::max(summary.longestMs, call.timeMs);
        if (call.phase != tPhase::initialize) summary.anyStopped = true;
    }
}

void append(std::vector<tDuration>& durations, std::vector<std::size_t>& positions) {
    std::stable_sort(durations.begin(), durations.end(),
                     [](const tDuration& a, const tDuration& b) { return a.ms > b.ms; });
    for (const tDuration& duration : durations) positions.push_back(duration.plugin);
}

}  // namespace

const tCall* decisiveCall(const tPlugin& plugin) noexcept {
    const tCall* warning = nullptr;
    for (const tCall& call : plugin.calls) {
        if (call.code < 0) return &call;
        if (call.code > 0 && warning == nullptr) warning = &call;
    }
    return warning;
}

std::int32_t decisiveCode(const tPlugin& plugin) noexcept {
    const tCall* const call = decisiveCall(plugin);
    return call == nullptr ? 0 : call->code;
}

const tCall* findCall(const tPlugin& plugin, tPhase phase) noexcept {
    for (const tCall& call : plugin.calls) {
        if (call.phase == phase) return &call;
    }
    return nullptr;
}

std::string_view phaseName(tPhase phase) noexcept {
    constexpr std::array<std::string_view, 3> names{"initialize", "stop", "cleanup"};
    return names[static_cast<std::size_t>(phase)];
}

std::string durationText(std::uint64_t ms) {
    if (ms < 10'000) return std::to_string(ms).append(" ms");
    if (ms < 600'000) return fmt::format("{}.{} s", ms / 1000, ms / 100 % 10);
    return fmt::format("{} min", ms / 60'000);
}

std::string maskText(std::uint32_t mask) { return fmt::format("{:#x}", mask); }

tSummary summarize(const tReport& report) {
    tSummary summary;
    std::vector<tDuration> warned;
    std::vector<tDuration> others;
    summary.failuresFirst.reserve(report.plugins.size());
    others.reserve(report.plugins.size());
    for (std::size_t i = 0; i < report.plugins.size(); ++i) {
        const tPlugin& plugin = report.plugins[i];
        count(plugin, summary);
        const std::int32_t code = decisiveCode(plugin);
        if (code < 0) {
            summary.failuresFirst.push_back(i);
        } else {
            (code > 0 ? warned : others).push_back({totalMs(plugin), i});
        }
    }
    summary.failed = summary.failuresFirst.size();
    summary.warned = warned.size();
    append(warned, summary.failuresFirst);
    append(others, summary.failuresFirst);
    return summary;
}

std::string countsText(const tReport& report, const tSummary& summary) {
    const std::size_t plugins = report.plugins.size();
    std::string text = fmt::format("{} plug-in{}", plugins, plugins == 1 ? "" : "s");
    if (plugins == 0) return text;
    text += summary.failed == 0 ? ": none failed" : fmt::format(": {} failed", summary.failed);
    if (summary.warned != 0) text += fmt::format(", {} with a warning", summary.warned);
    return text;
}

bool hasFindings(const tReport& report, bool strict) noexcept {
    const auto matters = [strict](const tPlugin& plugin) {
        const std::int32_t code = decisiveCode(plugin);
        return code < 0 || (strict && code > 0);
    };
    return !report.messages.empty() || std::any_of(report.plugins.begin(), report.plugins.end(), matters);
}

tNames::tSorted::tSorted(const tReport& report) {
    all.reserve(report.plugins.size());
    for (std::size_t i = 0; i < report.plugins.size(); ++i) {
        const tPlugin& plugin = report.plugins[i];
        all.emplace_back(plugin.name, i);
        const tCall* const start = findCall(plugin, tPhase::initialize);
        if (start == nullptr || start->code >= 0) started.emplace_back(plugin.name, i);
    }
    sort(all);
    sort(started);
}

const tNames::tSorted& tNames::sorted() const {
    if (!sorted_) sorted_.emplace(report_);
    return *sorted_;
}

void tNames::sort(tPositions& positions) {
    std::sort(positions.begin(), positions.end());
    const auto sameName = [](const auto& a, const auto& b) { return a.first == b.first; };
    positions.erase(std::unique(positions.begin(), positions.end(), sameName), positions.end());
}

std::optional<std::size_t> tNames::find(const tPositions& positions, std::string_view name) {
    const auto found = std::lower_bound(positions.begin(), positions.end(), name,
                                        [](const auto& position, std::string_view n) { return position.first < n; });
    if (found == positions.end() || found->first != name) return std::nullopt;
    return found->second;
}

std::optional<std::size_t> tNames::first(std::string_view name) const { return find(sorted().all, name); }

std::optional<std::size_t> tNames::firstStarted(std::string_view name) const { return find(sorted().started, name); }

std::optional<std::size_t> tNames::meant(std::string_view dependency, std::size_t position) const {
    const auto started = firstStarted(dependency);
    return started && *started < position ? started : first(dependency);
}

}  // namespace nStatus
