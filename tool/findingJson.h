#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tool/finding.h"

/// The JSON form of what commands report.
namespace nJson {

/// Returns the finding as every command shows it: id, severity, file, line, plugin, message, remedy.
[[nodiscard]] nlohmann::ordered_json toJson(const tFinding& finding);

/// Returns the document as text that ends with a line break. A byte that is not UTF-8 becomes U+FFFD.
[[nodiscard]] std::string toText(const nlohmann::ordered_json& document);

}  // namespace nJson
