#include <nlohmann/json.hpp>
#include <utility>

#include "tool/findingJson.h"
#include "tool/run/render.h"
#include "tool/status/statusSummary.h"

namespace nRun {
namespace {

using tJson = nlohmann::ordered_json;

tJson toDocument(const tCall& call) {
    tJson json;
    json["entry"] = call.entry;
    json["phase"] = nStatus::phaseName(call.phase);
    json["timeMs"] = call.timeMs;
    json["code"] = call.code;
    return json;
}

tJson toDocument(const tSaid& said) {
    tJson json;
    json["entry"] = said.entry;
    json["thread"] = said.byHostThread ? "host" : "other";
    json["text"] = said.text;
    return json;
}

tJson toDocument(const tPlugin& plugin, const tPluginLife& life) {
    tJson json;
    json["name"] = plugin.description.name;
    json["file"] = plugin.file;
    json["calls"] = tJson::array();
    for (const tCall& call : life.calls) json["calls"].push_back(toDocument(call));
    json["outcome"] = outcomeName(life.outcome);
    json["detail"] = life.detail;
    json["said"] = tJson::array();
    for (const tSaid& said : life.said) json["said"].push_back(toDocument(said));
    return json;
}

}  // namespace

std::string toJson(const tResult& result) {
    tJson json;
    json["schema"] = 1;
    json["verdict"] = passed(result) ? "passed" : "failed";
    json["lives"] = tJson::array();
    for (const tLife& life : result.lives) {
        tJson document;
        document["plugins"] = tJson::array();
        for (std::size_t i = 0; i < life.size(); ++i)
            document["plugins"].push_back(toDocument(result.plugins[i], life[i]));
        json["lives"].push_back(std::move(document));
    }
    return nJson::toText(json);
}

}  // namespace nRun
