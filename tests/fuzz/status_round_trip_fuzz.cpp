// Writes a status file with the host's own function and reads it again. Everything must be read as it was written, or
// be marked where the text leaves a choice; see tool/status/statusReport.h for the choices.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "check.h"
#include "source/nPluginData.h"
#include "tests/support/statusRoundTrip.h"

namespace {

/// A text as a description file can contain it: on one line, without zeros. Often from parts that mean something.
std::string anyText(FuzzedDataProvider& data) {
    static constexpr const char* parts[] = {
        " (depends on ",   ")",           ", ", ",",    " ",          "Loaded From: ", "Requires: ", " Time: ", " ms",
        " Code: ",         "0",           "-1", "Init", "Initialize", "Stop",          "Cleanup",    "Alpha",   "Beta",
        "Init Time: 5 ms", "X Time: 5 ms"};
    std::string text;
    while (data.ConsumeIntegralInRange(0, 3) != 0) {
        if (data.ConsumeBool()) {
            text += data.PickValueInArray(parts);
        } else {
            text += data.ConsumeRandomLengthString(6);
        }
    }
    std::erase_if(text, [](char c) { return c == '\n' || c == '\r' || c == 0; });
    return text;
}

/// Usually 0, so that calls are not shown.
template <class Number>
Number anyNumber(FuzzedDataProvider& data) {
    return data.ConsumeBool() ? Number{} : data.ConsumeIntegral<Number>();
}

tPluginEntry anyEntry(FuzzedDataProvider& data) {
    tPluginEntry entry;
    tPluginDescription& description = entry.description;
    description.name = anyText(data);
    nPluginData::splitDependencies(anyText(data), description.dependencies);
    std::sort(description.dependencies.begin(), description.dependencies.end());
    description.path = anyText(data);
    description.requiresMask = data.ConsumeIntegral<std::uint32_t>();
    const auto entryName = [&](const char* word) {
        return data.ConsumeBool() ? anyText(data) : data.ConsumeBool() ? "" : description.name + word;
    };
    description.initialize = entryName("Initialize");
    description.stop = entryName("Stop");
    description.cleanup = entryName("Cleanup");
    entry.initTimeMs = anyNumber<std::uint64_t>(data);
    entry.initCode = anyNumber<std::int32_t>(data);
    entry.stopTimeMs = anyNumber<std::uint64_t>(data);
    entry.stopCode = anyNumber<std::int32_t>(data);
    entry.cleanupTimeMs = anyNumber<std::uint64_t>(data);
    entry.cleanupCode = anyNumber<std::int32_t>(data);
    return entry;
}

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    return lines;
}

/// Returns whether the messages may contain a whole paragraph, which is read as a plug-in.
bool mimicAPlugin(const std::vector<std::string>& lines) {
    for (std::size_t i = 0; i + 2 < lines.size(); ++i) {
        if (lines[i].ends_with(")") && lines[i + 1].starts_with("Loaded From: ") &&
            lines[i + 2].starts_with("Requires: ")) {
            return true;
        }
    }
    return false;
}

/// Lines of any text, each as the host appends it.
std::string anyMessages(FuzzedDataProvider& data) {
    std::string messages;
    while (data.ConsumeIntegralInRange(0, 3) == 3) messages += anyText(data) + data.ConsumeRandomLengthString(4) + "\n";
    return messages;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    FuzzedDataProvider data(input, size);
    const auto mask = data.ConsumeIntegral<std::uint32_t>();
    const auto initTimeMs = anyNumber<std::uint64_t>(data);
    const std::string messages = anyMessages(data);
    std::vector<tPluginEntry> entries;
    while (data.remaining_bytes() > 0 && entries.size() < 8) entries.push_back(anyEntry(data));

    const bool windows = data.ConsumeBool();
    std::string text = support::writtenText({"Mon Nov 16 03:26:40 2026\n", mask, initTimeMs, messages, entries});
    if (windows) {
        std::string onDisk;
        for (const char c : text) onDisk.append(c == '\n' ? "\r\n" : std::string(1, c));
        text = onDisk;
    }
    const auto result = nStatus::read(text);
    const auto* const report = std::get_if<nStatus::tReport>(&result);
    check(report != nullptr, "whether it is a status file");
    check(report->updated == "Mon Nov 16 03:26:40 2026", "time of writing");
    check(report->allowedMask == mask, "mask");
    check(report->initTimeMs.has_value() == (initTimeMs != 0), "whether there is a time of preparation");
    check(report->initTimeMs.value_or(0) == (initTimeMs & 0xFFFFFFFF), "time of preparation");

    std::string shownMessages = messages;
    std::erase(shownMessages, '\r');
    const std::vector<std::string> lines = splitLines(shownMessages);
    if (mimicAPlugin(lines)) return 0;
    check(!report->ambiguous, "whether the report is ambiguous");
    check(report->messages == lines, "messages");
    check(report->plugins.size() == entries.size(), "number of plug-ins");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        check(support::readRightOrMarked(report->plugins[i], entries[i]), "plug-in");
    }
    return 0;
}
