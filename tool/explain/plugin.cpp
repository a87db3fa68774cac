#include "tool/explain/plugin.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tool/check/similarNames.h"
#include "tool/codes.h"
#include "tool/explain/code.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/status/statusSummary.h"

namespace nExplain {
namespace {

using nGraph::tGraph;
using nGraph::tNode;

constexpr const char* restart = "restart the service";

/// The nodes of a graph by name. Of several, the one that matters most: the first that fails, or else the first.
class tNodeNames {
public:
    /// Borrows the graph's names.
    explicit tNodeNames(const tGraph& graph) {
        for (std::size_t index = 0; index < graph.nodes.size(); ++index) {
            const auto [known, isNew] = indices_.emplace(graph.nodes[index].name, index);
            if (!isNew && graph.nodes[index].fails() && !graph.nodes[known->second].fails()) known->second = index;
        }
    }

    [[nodiscard]] std::optional<std::size_t> find(std::string_view name) const {
        const auto found = indices_.find(name);
        return found == indices_.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::unordered_map<std::string_view, std::size_t> indices_;
};

std::vector<std::string> allMessages(const tEvidence& evidence) {
    std::vector<std::string> messages;
    if (evidence.status) messages = evidence.status->messages;
    if (evidence.prediction) {
        const auto& more = evidence.prediction->messages;
        messages.insert(messages.end(), more.begin(), more.end());
    }
    return messages;
}

const std::vector<tFinding>& findingsOf(const tEvidence& evidence) {
    static const std::vector<tFinding> none;
    return evidence.prediction ? evidence.prediction->findings : none;
}

std::string codeText(std::int32_t code) { return fmt::format("{} ({})", code, hexadecimal(code)); }

/// Returns "fail" and, if it is certain, with what code.
std::string failureText(const tNode& node) {
    return node.code ? fmt::format("fail with {}", codeText(*node.code)) : "fail";
}

std::vector<tShownCall> callsOf(const nStatus::tPlugin& plugin) {
    std::vector<tShownCall> calls;
    for (const nStatus::tCall& call : plugin.calls) {
        calls.push_back({std::string(call.entry), call.phase, call.timeMs, call.code});
    }
    return calls;
}

std::int32_t startCode(const std::vector<tShownCall>& calls) {
    for (const tShownCall& call : calls) {
        if (call.phase == nStatus::tPhase::initialize) return call.code;
    }
    return 0;
}

class tExplainer {
public:
    tExplainer(const std::string& name, const tEvidence& evidence)
        : evidence_(evidence), clues_(findingsOf(evidence), allMessages(evidence)) {
        explanation_.name = name;
        if (evidence.status) {
            did_ = nGraph::fromReport(*evidence.status);
            inStatus_ = tNodeNames(*did_).find(name);
        }
        if (evidence.prediction) {
            will_ = nGraph::fromPrediction(*evidence.prediction);
            inPrediction_ = tNodeNames(*will_).find(name);
        }
    }

    tPluginExplanation explain() {
        if (isPlugin(did_, inStatus_)) explanation_.calls = callsOf(evidence_.status->plugins[*inStatus_]);
        if (isPlugin(will_, inPrediction_)) explanation_.found = evidence_.prediction->plugins[*inPrediction_];
        if (explanation_.calls) {
            explainShown();
        } else if (explanation_.found) {
            explainFound();
        } else if (const auto file = clues_.rejectedFile(explanation_.name)) {
            explainRejected(*file);
        } else if (inStatus_ || inPrediction_) {
            explainUndescribed();
        } else {
            explainUnknown();
        }
        addCommonNotes();
        return std::move(explanation_);
    }

private:
    static bool isPlugin(const std::optional<tGraph>& graph, const std::optional<std::size_t>& index) {
        return graph && index && graph->nodes[*index].described;
    }

    void note(std::string_view sentence) { explanation_.notes.emplace_back(sentence); }

    void follow(const tGraph& graph, std::size_t plugin) {
        explanation_.steps = followFailure(graph, plugin, clues_);
        for (const tStep& step : explanation_.steps) {
            if (!explanation_.first.empty()) break;
            explanation_.first = step.remedy;
        }
    }

    void explainShown() {
        const std::int32_t code = startCode(*explanation_.calls);
        if (code < 0) {
            explanation_.verdict = tVerdict::failed;
            explanation_.summary = fmt::format("{} did not start: {}.", explanation_.name, codeText(code));
            follow(*did_, *inStatus_);
            compareWithPrediction();
            return;
        }
        explanation_.verdict = tVerdict::started;
        const std::string warning = code > 0 ? fmt::format(", with the warning {} of its own", code) : "";
        std::string outlook;
        if (explanation_.found && !explanation_.found->mayStart) {
            outlook = "; at the next start it will " + failureText(will_->nodes[*inPrediction_]);
            follow(*will_, *inPrediction_);
        }
        explanation_.summary = fmt::format("{} has started{}{}.", explanation_.name, warning, outlook);
        explainLaterCalls();
    }

    /// Stop and Cleanup may fail after a start that succeeded.
    void explainLaterCalls() {
        for (const tShownCall& call : *explanation_.calls) {
            if (call.phase == nStatus::tPhase::initialize || call.code >= 0) continue;
            std::string meaning = fmt::format("an exception with this code left its entry point {}", call.entry);
            std::string remedy = "look it up in the plug-in's documentation";
            const std::vector<const tCode*> codes = nCodes::find(call.code);
            const auto known = std::find_if(codes.begin(), codes.end(), [&call](const tCode* code) {
                return nStatus::isLikely(*code, call.phase);
            });
            if (known != codes.end()) {
                meaning = (*known)->meaning;
                remedy = (*known)->remedy;
            }
            if (explanation_.first.empty()) explanation_.first = remedy;
            const char* const name = call.phase == nStatus::tPhase::stop ? "Stop" : "Cleanup";
            note(fmt::format("Its {} failed with {}: {}.", name, codeText(call.code), meaning));
        }
    }

    /// What the host decided may have changed since.
    void compareWithPrediction() {
        if (!will_) return;
        const tNodeNames names(*will_);
        for (const tStep& step : explanation_.steps) {
            if (step.remedy.empty() || !step.code) continue;
            const auto now = names.find(step.plugin);
            if (!now || !will_->nodes[*now].described) {
                note(fmt::format("There is no description of {} any more.", step.plugin));
            } else if (will_->nodes[*now].code != step.code && isOfHost(*step.code)) {
                noteChange(will_->nodes[*now], step);
            }
        }
    }

    void noteChange(const tNode& now, const tStep& step) {
        if (now.fails()) {
            // The code with which it failed may be one of the two that are possible.
            if (now.code) note(fmt::format("At the next start {} will {} instead.", now.name, failureText(now)));
            return;
        }
        if (!isFreeOfDoubt(step)) return;
        note(fmt::format("Nothing prevents {} from starting any more: {}.", now.name, restart));
        if (explanation_.first == step.remedy) explanation_.first = restart;
    }

    static bool isOfHost(std::int32_t code) {
        // The code of an exception or of a lack of memory comes from running the plug-in, which `check` never does.
        return code == -52002 || code == -52005 || code == -52006;
    }

    /// Nothing is certain about the next start if something is wrong that may stop the plug-in on some machines, or if
    /// its library is on another one.
    static bool isFreeOfDoubt(const tStep& step) {
        return std::all_of(step.findings.begin(), step.findings.end(), [](const tFinding& finding) {
            return finding.severity == tSeverity::note && finding.id != "unmapped-path";
        });
    }

    void explainFound() {
        const tNode& node = will_->nodes[*inPrediction_];
        const std::string outlook = node.fails() ? "will " + failureText(node)
                                    : node.code  ? "will start"
                                                 : "will start unless its own Initialize fails";
        if (!evidence_.status) {
            explanation_.verdict = tVerdict::predicted;
            explanation_.summary = fmt::format("{} {}.", explanation_.name, outlook);
        } else {
            explanation_.verdict = tVerdict::absent;
            explanation_.summary =
                fmt::format("The status file does not show {}; at the next start it {}.", explanation_.name, outlook);
            explainAbsence();
        }
        follow(*will_, *inPrediction_);
        if (!evidence_.status || node.fails()) return;
        explanation_.first = evidence_.status->plugins.empty() ? "look whether the service is running" : restart;
    }

    void explainAbsence() {
        if (!evidence_.status->plugins.empty()) {
            note("The status file shows other plug-ins, so the description came after the service had started.");
            return;
        }
        note(
            "The status file shows no plug-in at all: the service is preparing or is in the Initialize of a plug-in "
            "(it lists them when all have returned), or it was stopped or ended before that.");
    }

    void explainRejected(const std::string& file) {
        explanation_.verdict = evidence_.status ? tVerdict::absent : tVerdict::predicted;
        explanation_.summary =
            fmt::format("The host rejects {}, which is probably the description of {}.", file, explanation_.name);
        tStep step;
        step.plugin = explanation_.name;
        step.text = "has a description that the host rejects: " + file;
        step.findings = clues_.findingsIn(file);
        step.remedy = step.findings.empty() ? "correct " + file + "; a blank line counts as malformed"
                                            : remedyWithPlace(step.findings.front());
        explanation_.first = step.remedy;
        explanation_.steps.push_back(std::move(step));
    }

    void explainUndescribed() {
        const bool predicted = inPrediction_.has_value();
        const tGraph& graph = predicted ? *will_ : *did_;
        explanation_.verdict = tVerdict::undescribed;
        explanation_.summary = fmt::format("No plug-in has the name {}, but others depend on it.", explanation_.name);
        follow(graph, predicted ? *inPrediction_ : *inStatus_);
        constexpr std::size_t longestList = 12;
        constexpr std::size_t longestName = 100;
        std::string dependants;
        std::size_t count = 0;
        for (const nGraph::tLink& link : graph.links) {
            if (graph.nodes[link.dependency].name != explanation_.name || ++count > longestList) continue;
            dependants +=
                (count > 1 ? ", " : "") + nPlainText::shortened(graph.nodes[link.dependant].name, longestName);
        }
        note(fmt::format("These depend on it and fail: {}{}.", dependants, count > longestList ? ", …" : ""));
    }

    void explainUnknown() {
        explanation_.summary = fmt::format("Nothing is known about {}.", explanation_.name);
        if (explanation_.name.find(',') != std::string::npos || nSimilarNames::hasOtherSeparator(explanation_.name)) {
            note("This looks like several names: ask for one at a time.");
        }
        note("The case of letters counts. `ziptra check` lists the names of all plug-ins.");
        constexpr std::size_t most = 5;
        for (const std::optional<tGraph>* const graph : {&did_, &will_}) {
            if (!*graph) continue;
            for (const tNode& node : (*graph)->nodes) {
                const bool near =
                    nSimilarNames::withoutCase(node.name) == nSimilarNames::withoutCase(explanation_.name) ||
                    nSimilarNames::areSimilar(node.name, explanation_.name);
                auto& similar = explanation_.similar;
                if (!near || !node.described || std::find(similar.begin(), similar.end(), node.name) != similar.end())
                    continue;
                if (similar.size() < most) similar.push_back(node.name);
            }
        }
    }

    void addCommonNotes() {
        for (const std::optional<tGraph>* const graph : {&did_, &will_}) {
            if (!*graph) continue;
            const auto count = std::count_if((*graph)->nodes.begin(), (*graph)->nodes.end(),
                                             [this](const tNode& node) { return node.name == explanation_.name; });
            if (count > 1) note(fmt::format("{} plug-ins have this name.", count));
            if (count > 1) break;
        }
        if (evidence_.status && evidence_.status->ambiguous) {
            note("The status file can be read in more than one way; this is the likelier one.");
        }
        for (const std::string& obstacle : evidence_.obstacles) note(obstacle);
    }

    const tEvidence& evidence_;
    tClues clues_;
    std::optional<tGraph> did_;
    std::optional<tGraph> will_;
    std::optional<std::size_t> inStatus_;
    std::optional<std::size_t> inPrediction_;
    tPluginExplanation explanation_;
};

}  // namespace

void usePrediction(nCheck::tPrediction prediction, tEvidence& evidence) {
    for (const tFinding& finding : prediction.findings) {
        if (finding.id != "plugins-directory") continue;
        const std::string name = finding.file.empty() ? "" : ", " + finding.file;
        evidence.obstacles.push_back(
            fmt::format("The host cannot open its plug-in directory{}, so its next start will start no plug-in. {}",
                        name, finding.remedy));
        return;
    }
    evidence.prediction = std::move(prediction);
}

std::string_view verdictName(tVerdict verdict) noexcept {
    switch (verdict) {
        case tVerdict::started: return "started";
        case tVerdict::failed: return "failed";
        case tVerdict::absent: return "absent";
        case tVerdict::predicted: return "predicted";
        case tVerdict::undescribed: return "undescribed";
        case tVerdict::unknown: break;
    }
    return "unknown";
}

tPluginExplanation explainPlugin(const std::string& name, const tEvidence& evidence) {
    return tExplainer(name, evidence).explain();
}

}  // namespace nExplain
