#include "tests/catalogues/prediction.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace catalogues {
namespace {

using tJson = nlohmann::json;

template <class Value>
std::optional<Value> optionalValue(const tJson& value) {
    if (value.is_null()) return std::nullopt;
    return value.get<Value>();
}

tPrediction::tPlugin readPlugin(const tJson& plugin) {
    return {plugin.at("file"),    plugin.at("name"),     plugin.at("dependencies"),
            plugin.at("path"),    plugin.at("requires"), optionalValue<std::int32_t>(plugin.at("code")),
            plugin.at("mayStart")};
}

tPrediction::tFinding readFinding(const tJson& finding) {
    return {finding.at("id"), finding.at("severity"), finding.at("file"), optionalValue<int>(finding.at("line")),
            optionalValue<std::string>(finding.at("plugin"))};
}

}  // namespace

tPrediction readPrediction(const std::string& json) {
    const tJson document = tJson::parse(json);
    if (document.at("schema") != 1) throw std::runtime_error("an unknown schema");
    tPrediction prediction{document.at("directory"), document.at("allowed"), document.at("messages"), {}, {}};
    for (const tJson& plugin : document.at("plugins")) prediction.plugins.push_back(readPlugin(plugin));
    for (const tJson& finding : document.at("findings")) prediction.findings.push_back(readFinding(finding));
    return prediction;
}

std::string throughJson(const std::string& text) {
    return tJson::parse(tJson(text).dump(-1, ' ', false, tJson::error_handler_t::replace));
}

}  // namespace catalogues
