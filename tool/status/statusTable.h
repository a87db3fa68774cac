#pragma once

#include <string>

#include "tool/status/statusReport.h"

namespace nStatus {

/// Returns the report as text for people: the machine's state, messages, and a line for each plug-in: failures first,
/// then warnings, then the slowest. Lines end with LF. What would control a terminal is shown as U+FFFD.
[[nodiscard]] std::string toTable(const tReport& report, bool colour);

}  // namespace nStatus
