#include "tool/status/statusPrometheus.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <map>
#include <string_view>
#include <vector>

#include "source/runMessages.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/status/statusSummary.h"

namespace nStatus {
namespace {

/// Returns the text as the value of a label.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : nPlainText::valid(text)) {
        if (c == '\n') {
            result += "\\n";
            continue;
        }
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}

/// Starts a metric, all of which are gauges: the file shows states.
void writeHead(std::string& text, std::string_view name, std::string_view help) {
    text.append("# HELP ").append(name).append(" ").append(help).append("\n");
    text.append("# TYPE ").append(name).append(" gauge\n");
}

void writeValue(std::string& text, std::string_view name, std::string_view help, std::string_view value) {
    writeHead(text, name, help);
    text.append(name).append(" ").append(value).append("\n");
}

/// Returns seconds with three decimals.
std::string seconds(std::uint64_t ms) { return fmt::format("{}.{:03}", ms / 1000, ms % 1000); }

/// Returns for each plug-in the labels that identify it, as they are written between the braces.
std::vector<std::string> pluginLabels(const tReport& report) {
    std::map<std::string, std::size_t> copies;  // by the name as it is written: it can be the same for different bytes
    std::vector<std::string> labels;
    labels.reserve(report.plugins.size());
    for (const tPlugin& plugin : report.plugins) {
        std::string name = escaped(plugin.name);
        const std::size_t copy = ++copies[name];
        std::string label = fmt::format("plugin=\"{}\"", name);
        if (copy > 1) label += fmt::format(",copy=\"{}\"", copy);
        labels.push_back(std::move(label));
    }
    return labels;
}

/// The calls to show for a plug-in: a start that the file does not show took no time and succeeded.
std::vector<tCall> shownCalls(const tPlugin& plugin) {
    std::vector<tCall> calls = plugin.calls;
    if (findCall(plugin, tPhase::initialize) == nullptr) calls.insert(calls.begin(), tCall{});
    return calls;
}

/// Writes one metric of all calls.
template <class Value>
void writeCalls(std::string& text, const tReport& report, std::string_view name, std::string_view help, Value value) {
    if (report.plugins.empty()) return;
    writeHead(text, name, help);
    const std::vector<std::string> labels = pluginLabels(report);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        for (const tCall& call : shownCalls(report.plugins[i])) {
            text.append(name).append("{").append(labels[i]).append(",phase=\"").append(phaseName(call.phase));
            text.append("\"} ").append(value(call)).append("\n");
        }
    }
}

std::size_t rejectedDescriptions(const tReport& report) {
    const auto isRejection = [](const std::string& message) {
        return message.starts_with(nRunMessages::descriptionNotParsed);
    };
    return static_cast<std::size_t>(std::count_if(report.messages.begin(), report.messages.end(), isRejection));
}

void writeUp(std::string& text, std::string_view value) {
    writeValue(text, "ziptra_up", "Whether the status file of the service could be read.", value);
}

/// Reads a number of the clock's text, which may be padded with a blank.
int numberAt(std::string_view text, std::size_t position, std::size_t size) {
    std::string_view digits = text.substr(position, size);
    if (digits.starts_with(' ')) digits.remove_prefix(1);
    int number = -1;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? number : -1;
}

/// Returns the month from 0, or -1.
int monthOf(std::string_view name) {
    constexpr std::string_view names = "JanFebMarAprMayJunJulAugSepOctNovDec";
    const std::size_t position = names.find(name);
    return position != std::string_view::npos && position % 3 == 0 ? static_cast<int>(position / 3) : -1;
}

}  // namespace

std::string prometheusWithoutReport() {
    std::string text;
    writeUp(text, "0");
    return text;
}

std::string toPrometheus(const tReport& report) {
    std::string text;
    writeUp(text, "1");
    if (const auto time = unixTime(report.updated)) {
        writeValue(text, "ziptra_status_timestamp_seconds", "When the service wrote its status file.",
                   std::to_string(*time));
    }
    writeValue(text, "ziptra_allowed_features", "Mask of the features that plug-ins may require on this machine.",
               std::to_string(report.allowedMask));
    writeValue(text, "ziptra_preparation_seconds", "Time that the service took before it started plug-ins.",
               seconds(report.initTimeMs.value_or(0)));
    writeValue(text, "ziptra_messages", "Failures of the service itself, rejected descriptions included.",
               std::to_string(report.messages.size()));
    writeValue(text, "ziptra_rejected_descriptions", "Plug-in descriptions that could not be read.",
               std::to_string(rejectedDescriptions(report)));
    writeValue(text, "ziptra_plugins", "Plug-ins, started or not.", std::to_string(report.plugins.size()));
    writeCalls(text, report, "ziptra_plugin_call_code",
               "Code of a plug-in's call: 0 success, negative failure, positive warning.",
               [](const tCall& call) { return std::to_string(call.code); });
    writeCalls(text, report, "ziptra_plugin_call_seconds", "Duration of a plug-in's call.",
               [](const tCall& call) { return seconds(call.timeMs); });
    return text;
}

std::optional<std::int64_t> unixTime(const std::string& updated) {
    // Mon Nov 16 03:26:40 2026
    if (updated.size() != 24) return std::nullopt;
    std::tm time{};
    time.tm_mon = monthOf(std::string_view(updated).substr(4, 3));
    time.tm_mday = numberAt(updated, 8, 2);
    time.tm_hour = numberAt(updated, 11, 2);
    time.tm_min = numberAt(updated, 14, 2);
    time.tm_sec = numberAt(updated, 17, 2);
    time.tm_year = numberAt(updated, 20, 4) - 1900;
    time.tm_isdst = -1;
    const bool known = time.tm_mon >= 0 && time.tm_mday > 0 && time.tm_hour >= 0 && time.tm_min >= 0 &&
                       time.tm_sec >= 0 && time.tm_year >= 0;
    const std::time_t result = known ? std::mktime(&time) : -1;
    return result == -1 ? std::nullopt : std::optional<std::int64_t>(result);
}

}  // namespace nStatus
