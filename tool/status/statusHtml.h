#pragma once

#include <string>
#include <string_view>

#include "tool/status/statusReport.h"

namespace nStatus {

/// Returns the report as one HTML document that loads nothing: failures first, with cause and remedy, then the start
/// order with the dependencies drawn and a bar for the duration of each call. For screens of any width, in light and
/// dark, and for print.
[[nodiscard]] std::string toHtml(const tReport& report);

}  // namespace nStatus
