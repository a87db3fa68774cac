#include "tool/finding.h"

#include <algorithm>

#include "tool/format.h"

namespace nFinding {
namespace {

/// Escape sequences of the terminal, as compilers use them.
std::string_view colourOf(tSeverity severity) noexcept {
    switch (severity) {
        case tSeverity::error: return "\x1B[1;31m";
        case tSeverity::warning: return "\x1B[1;35m";
        default: return "\x1B[1;36m";
    }
}

}  // namespace

std::string_view severityName(tSeverity severity) noexcept {
    switch (severity) {
        case tSeverity::error: return "error";
        case tSeverity::warning: return "warning";
        default: return "note";
    }
}

std::string toText(const tFinding& finding, bool colour) {
    std::string place = finding.file;
    if (finding.line) place += fmt::format(":{}", *finding.line);
    const std::string_view bold = colour ? "\x1B[1m" : "";
    const std::string_view normal = colour ? "\x1B[0m" : "";
    const std::string_view severity = colour ? colourOf(finding.severity) : "";
    if (!place.empty()) place = fmt::format("{}{}:{} ", bold, place, normal);
    place += fmt::format("{}{}:{}", severity, severityName(finding.severity), normal);
    return fmt::format("{} {} [{}]", place, finding.message, finding.id);
}

bool matter(const std::vector<tFinding>& findings, bool strict) noexcept {
    return std::any_of(findings.begin(), findings.end(), [strict](const tFinding& finding) {
        return finding.severity == tSeverity::error || (strict && finding.severity == tSeverity::warning);
    });
}

}  // namespace nFinding
