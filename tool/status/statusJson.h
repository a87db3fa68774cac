#pragma once

#include <string>

#include "tool/status/statusReport.h"

namespace nStatus {

/// Returns the report as a JSON document, described by docs/schema/status.json. A byte that is not UTF-8 becomes
/// U+FFFD.
[[nodiscard]] std::string toJson(const tReport& report);

}  // namespace nStatus
