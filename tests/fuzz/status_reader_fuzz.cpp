// Reads any bytes as a status file, and shows in every form what it finds. Nothing of a file may be lost: a report that
// is not ambiguous, written again, is the file.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "check.h"
#include "tool/status/statusHtml.h"
#include "tool/status/statusPrometheus.h"
#include "tool/status/statusReport.h"
#include "tool/status/statusSummary.h"
#include "tool/status/statusTable.h"

namespace {

std::string written(const nStatus::tPlugin& plugin) {
    std::string text = std::string(plugin.name) + " (depends on ";
    for (std::size_t i = 0; i < plugin.dependencies.size(); ++i) {
        text.append(i == 0 ? "" : ", ").append(plugin.dependencies[i]);
    }
    text.append(")\nLoaded From: ").append(plugin.path).append("\nRequires: ");
    text.append(std::to_string(plugin.requiresMask)).append("\n");
    for (const nStatus::tCall& call : plugin.calls) {
        text.append(call.entry).append(" Time: ").append(std::to_string(call.timeMs)).append(" ms\n");
        text.append(call.entry).append(" Code: ").append(std::to_string(call.code)).append("\n");
    }
    return text + "\n";
}

std::string written(const nStatus::tReport& report) {
    std::string text = "ZU-Ziptra Remote Configuration and Deployment status\nUpdated: " + report.updated +
                       "\nAllowed: " + nStatus::maskText(report.allowedMask) + "\n";
    if (report.initTimeMs) text += "Init Time " + std::to_string(*report.initTimeMs) + " ms\n";
    text += "\n";
    for (const std::string& message : report.messages) text += message + "\n";
    for (const nStatus::tPlugin& plugin : report.plugins) text += written(plugin);
    return text;
}

std::string withoutCarriageReturns(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!text.substr(i).starts_with("\r\n")) result += text[i];
    }
    return result;
}

/// Returns whether the text contains no character that only a hostile name can have brought in.
bool isHarmless(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) >= ' ' || c == '\n'; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(input), size);
    const auto result = nStatus::read(std::string(text));
    if (const auto* const no = std::get_if<nStatus::tNotAStatusFile>(&result)) {
        check(no->line >= 1 && !no->reason.empty(), "reason");
        return 0;
    }
    const auto& report = std::get<nStatus::tReport>(result);
    if (!report.ambiguous) check(written(report) == withoutCarriageReturns(text), "content");
    check(isHarmless(nStatus::toTable(report, false)), "table");
    check(isHarmless(nStatus::toHtml(report)), "page");
    check(!nStatus::toPrometheus(report).empty(), "metrics");
    return 0;
}
