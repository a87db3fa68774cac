#include <nlohmann/json.hpp>

#include "tool/check/render.h"
#include "tool/findingJson.h"

namespace nCheck {
namespace {

using tJson = nlohmann::ordered_json;

tJson toDocument(const tPredictedPlugin& plugin) {
    tJson json;
    json["file"] = plugin.file;
    json["name"] = plugin.description.name;
    json["dependencies"] = plugin.description.dependencies;
    json["path"] = plugin.description.path;
    json["requires"] = plugin.description.requiresMask;
    json["code"] = plugin.code ? tJson(*plugin.code) : tJson();
    json["mayStart"] = plugin.mayStart;
    return json;
}

}  // namespace

std::string toJson(const tPrediction& prediction) {
    tJson json;
    json["schema"] = 1;
    json["directory"] = prediction.directory;
    json["allowed"] = prediction.allowedMask;
    json["messages"] = prediction.messages;
    json["plugins"] = tJson::array();
    for (const tPredictedPlugin& plugin : prediction.plugins) json["plugins"].push_back(toDocument(plugin));
    json["findings"] = tJson::array();
    for (const tFinding& finding : prediction.findings) json["findings"].push_back(nJson::toJson(finding));
    return nJson::toText(json);
}

}  // namespace nCheck
