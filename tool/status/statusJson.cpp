#include "tool/status/statusJson.h"

#include <nlohmann/json.hpp>

#include "tool/findingJson.h"
#include "tool/status/statusSummary.h"

namespace nStatus {
namespace {

using tJson = nlohmann::ordered_json;

tJson toJson(const tCall& call) {
    return {{"entry", call.entry}, {"phase", phaseName(call.phase)}, {"timeMs", call.timeMs}, {"code", call.code}};
}

tJson toJson(const tPlugin& plugin) {
    tJson calls = tJson::array();
    for (const tCall& call : plugin.calls) calls.push_back(toJson(call));
    tJson json{{"name", plugin.name},
               {"dependencies", plugin.dependencies},
               {"path", plugin.path},
               {"requires", plugin.requiresMask},
               {"calls", std::move(calls)}};
    if (plugin.ambiguous) json["ambiguous"] = true;
    return json;
}

}  // namespace

std::string toJson(const tReport& report) {
    tJson plugins = tJson::array();
    for (const tPlugin& plugin : report.plugins) plugins.push_back(toJson(plugin));
    tJson json{{"schema", 1},
               {"updated", report.updated},
               {"allowed", report.allowedMask},
               {"initTimeMs", report.initTimeMs ? tJson(*report.initTimeMs) : tJson()},
               {"messages", report.messages},
               {"plugins", std::move(plugins)}};
    if (report.ambiguous) json["ambiguous"] = true;
    return nJson::toText(json);
}

}  // namespace nStatus
