#include <algorithm>

#include "tool/codes.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/status/statusSummary.h"

namespace nStatus {
namespace {

constexpr std::int32_t dependencyNotStarted = -52006;

// Lines by which the table tells apart what the host reports about a library.
constexpr int cannotBeUnloaded = 225;
constexpr int notLoaded = 280;

/// The table's texts are Markdown.
std::string withoutBackticks(std::string_view text) {
    std::string plain(text);
    std::erase(plain, '`');
    return plain;
}

/// Returns what the table says about the code of such a call.
std::vector<tCause> causesOfCode(const tCall& call) {
    std::vector<tCause> causes;
    for (const tCode* const code : nCodes::find(call.code)) {
        if (!isLikely(*code, call.phase)) continue;
        causes.push_back({withoutBackticks(code->meaning), withoutBackticks(code->remedy)});
    }
    if (causes.empty()) {
        causes.push_back(
            {fmt::format("{} is a code of the plug-in's own", call.code), "look it up in the plug-in's documentation"});
    }
    return causes;
}

/// Returns why the host did not regard the dependency as started when it came to the plug-in, if it did not.
std::optional<tCause> causeOf(std::string_view dependency, const tReport& report, const tNames& names,
                              std::size_t plugin) {
    const auto started = names.firstStarted(dependency);
    if (started && *started < plugin) return std::nullopt;
    if (dependency == report.plugins[plugin].name) {
        return tCause{"it depends on itself", "remove its own name from its Dependencies"};
    }
    const std::string name = nPlainText::printable(dependency);
    const auto first = names.first(dependency);
    if (!first) {
        return tCause{fmt::format("it depends on {}, and there is no plug-in of this name", name),
                      "correct the name, in which case matters, or install that plug-in"};
    }
    if (started || *first > plugin) {
        return tCause{fmt::format("it depends on {}, which comes later in the start order", name),
                      "run 'ziptra check', which finds circles and chains that the host does not order",
                      started.value_or(*first)};
    }
    return tCause{fmt::format("it depends on {}, which has not started", name), fmt::format("look at {} first", name),
                  first};
}

std::optional<tCause> causeInDependencies(const tReport& report, const tNames& names, std::size_t position) {
    const std::vector<std::string_view>& dependencies = report.plugins[position].dependencies;
    for (const std::string_view dependency : dependencies) {
        if (auto cause = causeOf(dependency, report, names, position)) return cause;
    }
    const auto repeated = std::adjacent_find(dependencies.begin(), dependencies.end());
    if (repeated == dependencies.end()) return std::nullopt;
    return tCause{
        fmt::format("its description names {} twice among the dependencies", nPlainText::printable(*repeated)),
        "name it once"};
}

}  // namespace

bool isLikely(const tCode& code, tPhase phase) noexcept {
    if (code.shownAs != nCodes::inCodeLine || code.line == notLoaded) return false;
    // The host refuses only starts, and it unloads libraries after Cleanup.
    if (code.line == cannotBeUnloaded) return phase == tPhase::cleanup;
    return code.line == 0 || phase == tPhase::initialize;
}

std::vector<tCause> findCauses(const tReport& report, const tNames& names, std::size_t plugin) {
    const tCall* const call = decisiveCall(report.plugins[plugin]);
    if (call == nullptr || call->code >= 0) return {};
    if (call->code == dependencyNotStarted && call->phase == tPhase::initialize) {
        if (auto cause = causeInDependencies(report, names, plugin)) return {std::move(*cause)};
    }
    return causesOfCode(*call);
}

}  // namespace nStatus
