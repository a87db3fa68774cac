#include "tool/findingJson.h"

#include <nlohmann/json.hpp>

namespace nJson {
namespace {

template <class Value>
nlohmann::ordered_json valueOrNull(const std::optional<Value>& value) {
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
}

}  // namespace

nlohmann::ordered_json toJson(const tFinding& finding) {
    nlohmann::ordered_json json;
    json["id"] = finding.id;
    json["severity"] = nFinding::severityName(finding.severity);
    json["file"] = finding.file;
    json["line"] = valueOrNull(finding.line);
    json["plugin"] = valueOrNull(finding.plugin);
    json["message"] = finding.message;
    json["remedy"] = finding.remedy;
    return json;
}

std::string toText(const nlohmann::ordered_json& document) {
    constexpr int indentation = 2;
    return document.dump(indentation, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace nJson
