#include <nlohmann/json.hpp>
#include <utility>

#include "tool/explain/explainText.h"
#include "tool/findingJson.h"
#include "tool/status/statusSummary.h"

namespace nExplain {
namespace {

using tJson = nlohmann::ordered_json;

template <class Value>
tJson valueOrNull(const std::optional<Value>& value) {
    return value ? tJson(*value) : tJson(nullptr);
}

tJson textOrNull(std::string_view text) { return text.empty() ? tJson(nullptr) : tJson(text); }

std::string_view originName(tOrigin origin) {
    switch (origin) {
        case tOrigin::success: return "success";
        case tOrigin::warning: return "warning";
        case tOrigin::host: return "host";
        case tOrigin::parser: return "parser";
        case tOrigin::unused: return "unused";
        case tOrigin::pluginsOwn: break;
    }
    return "plugin";
}

tJson toJson(const tCode& entry) {
    return {{"file", textOrNull(entry.file)}, {"line", entry.line != 0 ? tJson(entry.line) : tJson(nullptr)},
            {"meaning", entry.meaning},       {"inCodeLine", entry.shownAs == nCodes::inCodeLine},
            {"seenAs", entry.shownAs},        {"remedy", entry.remedy}};
}

tJson toJson(const std::vector<tFinding>& findings) {
    tJson list = tJson::array();
    for (const tFinding& finding : findings) list.push_back(nJson::toJson(finding));
    return list;
}

tJson toJson(const tStep& step) {
    return {{"plugin", step.plugin}, {"depth", step.depth},   {"code", valueOrNull(step.code)},
            {"text", step.text},     {"remedy", step.remedy}, {"findings", toJson(step.findings)}};
}

tJson toJson(const std::vector<tShownCall>& calls) {
    tJson list = tJson::array();
    for (const tShownCall& call : calls) {
        list.push_back({{"entry", call.entry},
                        {"phase", nStatus::phaseName(call.phase)},
                        {"timeMs", call.timeMs},
                        {"code", call.code}});
    }
    return list;
}

}  // namespace

std::string toJson(const tCodeExplanation& explanation) {
    tJson meanings = tJson::array();
    for (const tCode* const entry : explanation.meanings) meanings.push_back(toJson(*entry));
    tJson system(nullptr);
    if (explanation.systemCode) {
        system = {{"name", textOrNull(explanation.systemCode->name)}, {"meaning", explanation.systemCode->meaning}};
    }
    return nJson::toText({{"schema", 1},
                          {"kind", "code"},
                          {"code", explanation.code},
                          {"hexadecimal", hexadecimal(explanation.code)},
                          {"origin", originName(explanation.origin)},
                          {"summary", explanation.summary},
                          {"meanings", std::move(meanings)},
                          {"system", std::move(system)}});
}

std::string toJson(const tRule& rule) {
    return nJson::toText({{"schema", 1},
                          {"kind", "finding"},
                          {"id", rule.id},
                          {"severity", nFinding::severityName(rule.severity)},
                          {"title", rule.title},
                          {"cause", rule.cause},
                          {"remedy", rule.remedy}});
}

std::string toJson(const tPluginExplanation& explanation) {
    tJson steps = tJson::array();
    for (const tStep& step : explanation.steps) steps.push_back(toJson(step));
    tJson predicted(nullptr);
    if (explanation.found) {
        predicted = {{"file", explanation.found->file},
                     {"code", valueOrNull(explanation.found->code)},
                     {"mayStart", explanation.found->mayStart}};
    }
    return nJson::toText({{"schema", 1},
                          {"kind", "plugin"},
                          {"name", explanation.name},
                          {"verdict", verdictName(explanation.verdict)},
                          {"summary", explanation.summary},
                          {"calls", explanation.calls ? toJson(*explanation.calls) : tJson(nullptr)},
                          {"predicted", std::move(predicted)},
                          {"steps", std::move(steps)},
                          {"notes", explanation.notes},
                          {"first", textOrNull(explanation.first)},
                          {"similar", explanation.similar}});
}

}  // namespace nExplain
