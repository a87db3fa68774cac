#include "tool/explain/chain.h"

#include <algorithm>

#include "source/runMessages.h"
#include "tool/check/similarNames.h"
#include "tool/codes.h"
#include "tool/explain/code.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/rules.h"

namespace nExplain {
namespace {

using nGraph::tGraph;
using nGraph::tLink;
using nGraph::tLinkKind;
using nGraph::tNode;

constexpr std::int32_t featureCode = -52002;
constexpr std::int32_t libraryCode = -52005;
constexpr std::int32_t dependencyCode = -52006;

/// Returns the file's name without folder and extension, in lower case: what a plug-in of that file is probably called.
std::string stemOf(std::string_view path) {
    const std::size_t folder = path.find_last_of("/\\");
    std::string_view name = folder == std::string_view::npos ? path : path.substr(folder + 1);
    name = name.substr(0, name.rfind('.'));
    return nSimilarNames::withoutCase(name);
}

std::vector<tFinding> copyErrorsFirst(const std::vector<const tFinding*>& findings) {
    std::vector<tFinding> copies;
    copies.reserve(findings.size());
    for (const tFinding* const finding : findings) copies.push_back(*finding);
    std::stable_sort(copies.begin(), copies.end(),
                     [](const tFinding& a, const tFinding& b) { return a.severity < b.severity; });
    return copies;
}

template <class Map>
std::vector<tFinding> findingsAt(const Map& map, const std::string& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::vector<tFinding>() : copyErrorsFirst(found->second);
}

/// Returns the name as it is shown in a text: many steps may contain it, so one of megabytes is cut.
std::string shown(std::string_view name) {
    constexpr std::size_t longestName = 100;
    return nPlainText::shortened(name, longestName);
}

constexpr std::size_t longestList = 12;

/// Returns the names separated by commas; if there are many, only the first ones.
std::string listOf(const std::vector<std::string>& names) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), longestList); ++i) list += (i > 0 ? ", " : "") + shown(names[i]);
    return names.size() > longestList ? list + ", …" : list;
}

std::vector<std::string> membersOf(const tGraph& graph, std::size_t circle) {
    std::vector<std::string> names;
    for (const std::size_t member : graph.circles[circle - 1]) {
        names.push_back(graph.nodes[member].name);
        if (names.size() > longestList) break;
    }
    return names;
}

/// Returns the names of the dependencies that the plug-in's links of this kind lead to.
std::vector<std::string> dependenciesOf(const tGraph& graph, std::size_t plugin, tLinkKind kind) {
    std::vector<std::string> names;
    for (const tLink& link : nGraph::linksOf(graph, plugin)) {
        if (link.kind == kind) names.push_back(graph.nodes[link.dependency].name);
    }
    return names;
}

/// What a step says: the first remedy counts.
struct tReason {
    std::string text;
    std::string remedy;

    void add(const std::string& moreText, const std::string& otherRemedy = {}) {
        text += (text.empty() ? "" : "; ") + moreText;
        if (remedy.empty()) remedy = otherRemedy;
    }
};

tReason dependencyReason(const tGraph& graph, std::size_t plugin) {
    tReason reason;
    const auto names = [&](tLinkKind kind) { return dependenciesOf(graph, plugin, kind); };
    const std::string name = shown(graph.nodes[plugin].name);
    if (const auto circular = names(tLinkKind::circular); !circular.empty()) {
        reason.add("is part of a circle of dependencies: " + listOf(membersOf(graph, graph.nodes[plugin].circle)),
                   fmt::format("remove one dependency of the circle, for example {} from the `Dependencies` of {}",
                               shown(circular.front()), name));
    }
    if (const auto late = names(tLinkKind::late); !late.empty()) {
        reason.add("is started before " + listOf(late) + ", on which it depends",
                   fmt::format("add to the `Dependencies` of {} everything on which {} depends: only direct "
                               "dependencies move a plug-in ahead of another",
                               name, shown(late.front())));
    }
    if (const auto repeated = names(tLinkKind::repeated); !repeated.empty()) {
        reason.add("names a dependency twice: " + listOf(repeated),
                   fmt::format("remove the second {} from the `Dependencies` of {}", shown(repeated.front()), name));
    }
    if (const auto missing = names(tLinkKind::missing); !missing.empty()) {
        reason.add("depends on a name that no plug-in has: " + listOf(missing));
    }
    if (const auto failed = names(tLinkKind::failed); !failed.empty()) {
        reason.add("depends on what has not started: " + listOf(failed));
    }
    if (reason.text.empty()) {
        reason.add("has all that it depends on, so its own Initialize returned the host's code",
                   "report it to the plug-in's maker: codes from -52999 to -52000 are the host's");
    }
    return reason;
}

tReason featureReason(const tNode& node, std::uint32_t allowedMask) {
    if (node.requiresMask == 0) {
        return {"requires no feature: `Requires` is 0 or no number", "write a number other than 0 after `Requires=`"};
    }
    return {fmt::format("requires one of the features {:#x}, of which the machine allows none: {:#x}",
                        node.requiresMask, allowedMask),
            node.requiresMask == 2
                ? "allow remote deployment on the machine, if it is wanted there"
                : "correct `Requires`; the bit with value 2 is remote deployment, 1 is always allowed"};
}

/// Returns the table's meanings of a code in a plug-in's line.
tReason tableReason(std::int32_t code) {
    tReason reason;
    for (const tCode* const entry : nCodes::find(code)) {
        if (entry->shownAs == nCodes::inCodeLine) reason.add(std::string(entry->meaning), std::string(entry->remedy));
    }
    if (const auto system = findSystemCode(code)) reason.text += fmt::format(" ({})", system->meaning);
    return reason;
}

/// Returns the code of a plug-in that fails. One that is open is the library's, unless a dependency fails before it.
std::int32_t failureCode(const tNode& node) { return node.code.value_or(libraryCode); }

tReason failureReason(const tGraph& graph, std::size_t plugin) {
    const tNode& node = graph.nodes[plugin];
    const std::int32_t code = failureCode(node);
    if (code == dependencyCode) return dependencyReason(graph, plugin);
    if (code == featureCode) return featureReason(node, graph.allowedMask);
    if (code == libraryCode) {
        return {fmt::format("has a library that cannot be loaded or lacks an entry point: \"{}\"", node.path),
                "check `Path`, that the library is 64-bit, that the libraries which it needs are present, and the "
                "names of its entry points"};
    }
    tReason reason = tableReason(code);
    if (reason.text.empty()) reason = {explainCode(code).summary, "look the code up in the plug-in's documentation"};
    reason.text = "failed: " + reason.text;
    return reason;
}

tReason startReason(const tNode& node) {
    if (!node.code) return {"has nothing in its way; its own Initialize decides", {}};
    return {*node.code > 0 ? "starts, with a warning of its own" : "starts", {}};
}

/// The rules say which code the host shows.
bool isCauseOf(const tFinding& finding, std::int32_t code) {
    const tRule* const rule = nRules::find(finding.id);
    const bool named = rule != nullptr && rule->cause.find(fmt::format("({})", code)) != std::string_view::npos;
    return named && finding.severity == tSeverity::error;
}

/// Makes the steps of one explanation.
class tFollower {
public:
    tFollower(const tGraph& graph, const tClues& clues) : graph_(graph), clues_(clues), names_(describedNames(graph)) {}

    /// `dependant` is the plug-in whose dependency this is, if any.
    tStep stepFor(std::size_t index, std::optional<std::size_t> dependant) {
        const tNode& node = graph_.nodes[index];
        if (!node.described) return missingStep(node.name, dependant);
        const tReason reason = node.fails() ? failureReason(graph_, index) : startReason(node);
        tStep step{node.name, 0, node.code, reason.text, reason.remedy, clues_.findingsOf(node.name)};
        const auto cause = std::find_if(step.findings.begin(), step.findings.end(), [&](const tFinding& finding) {
            return node.fails() && isCauseOf(finding, failureCode(node));
        });
        if (cause != step.findings.end() && !step.remedy.empty()) step.remedy = remedyWithPlace(*cause);
        return step;
    }

private:
    static std::vector<std::string_view> describedNames(const tGraph& graph) {
        std::vector<std::string_view> names;
        for (std::size_t index = 0; index < graph.pluginCount; ++index) names.push_back(graph.nodes[index].name);
        return names;
    }

    /// A name that no plug-in has.
    tStep missingStep(const std::string& name, std::optional<std::size_t> dependant) {
        const std::string list =
            dependant ? "the `Dependencies` of " + shown(graph_.nodes[*dependant].name) : "`Dependencies`";
        tStep step;
        step.plugin = name;
        if (const auto file = clues_.rejectedFile(name)) {
            step.text = "has a description that the host rejects: " + *file;
            step.remedy = "correct " + *file;
            step.findings = clues_.findingsIn(*file);
            if (!step.findings.empty()) step.remedy = remedyWithPlace(step.findings.front());
            return step;
        }
        step.text = "is the name of no plug-in";
        const auto sameButCase = names_.differingInCase(name);
        if (!sameButCase && nSimilarNames::hasOtherSeparator(name)) {
            step.text += ", but perhaps several names";
            step.remedy = "separate the names by commas in " + list;
            return step;
        }
        step.remedy = fmt::format("install the plug-in {}, or correct the name in {}", shown(name), list);
        const auto similar = sameButCase ? sameButCase : names_.similarTo(name);
        if (similar) {
            step.text +=
                fmt::format("; there is {}{}", shown(*similar), sameButCase ? " (the case of letters counts)" : "");
            step.remedy = fmt::format("write {} instead of {} in {}", shown(*similar), shown(name), list);
        }
        return step;
    }

    const tGraph& graph_;
    const tClues& clues_;
    nSimilarNames::tNames names_;
};

}  // namespace

std::string remedyWithPlace(const tFinding& finding) {
    const std::string line = finding.line ? fmt::format(":{}", *finding.line) : "";
    return fmt::format("{}{}: {}", finding.file, line, finding.remedy);
}

tClues::tClues(const std::vector<tFinding>& findings, const std::vector<std::string>& messages) {
    const std::string_view prefix = nRunMessages::descriptionNotParsed;
    for (const std::string& message : messages) {
        if (!message.starts_with(prefix)) continue;
        const std::string file = message.substr(prefix.size());
        rejected_.emplace(stemOf(file), file);
    }
    for (const tFinding& finding : findings) {
        const std::string stem = stemOf(finding.file);
        byStem_[stem].push_back(&finding);
        if (!finding.plugin) continue;
        byPlugin_[*finding.plugin].push_back(&finding);
        const auto rejected = rejected_.find(stem);
        if (rejected == rejected_.end()) continue;
        const std::string file = rejected->second;
        rejected_[nSimilarNames::withoutCase(*finding.plugin)] = file;
    }
}

std::vector<tFinding> tClues::findingsOf(const std::string& plugin) const { return findingsAt(byPlugin_, plugin); }

std::vector<tFinding> tClues::findingsIn(const std::string& file) const { return findingsAt(byStem_, stemOf(file)); }

std::optional<std::string> tClues::rejectedFile(const std::string& plugin) const {
    const auto found = rejected_.find(nSimilarNames::withoutCase(plugin));
    return found == rejected_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<tStep> followFailure(const tGraph& graph, std::size_t plugin, const tClues& clues) {
    struct tVisit {
        std::size_t node;
        std::optional<std::size_t> dependant;
        std::size_t depth;
    };
    std::vector<tStep> steps;
    tFollower follower(graph, clues);
    std::vector<bool> known(graph.nodes.size(), false);
    std::vector<tVisit> waiting{{plugin, std::nullopt, 0}};
    while (!waiting.empty()) {
        const tVisit visit = waiting.back();
        waiting.pop_back();
        if (known[visit.node]) continue;
        known[visit.node] = true;
        steps.push_back(follower.stepFor(visit.node, visit.dependant));
        steps.back().depth = visit.depth;
        const auto links = nGraph::linksOf(graph, visit.node);
        for (auto link = links.rbegin(); link != links.rend(); ++link) {
            const bool leadsOn = link->kind == tLinkKind::failed || link->kind == tLinkKind::missing;
            if (leadsOn) waiting.push_back({link->dependency, visit.node, visit.depth + 1});
        }
    }
    return steps;
}

}  // namespace nExplain
