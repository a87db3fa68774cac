#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tool/status/statusReport.h"

namespace nStatus {

/// Returns the report as metrics in the text format of Prometheus, for example for the textfile collector of an
/// exporter. Plug-ins with the same name get a label `copy` with a number from the second one on.
[[nodiscard]] std::string toPrometheus(const tReport& report);

/// Returns the metrics of a machine whose status file cannot be read.
[[nodiscard]] std::string prometheusWithoutReport();

/// Returns the time of writing in seconds since 1970, or nullopt if it is no time. The host writes its local time,
/// which is treated as this machine's.
[[nodiscard]] std::optional<std::int64_t> unixTime(const std::string& updated);

}  // namespace nStatus
