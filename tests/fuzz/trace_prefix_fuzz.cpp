// Compares the trace prefix in buffers of every size, up to one larger than needed, with the same line composed with
// std::string.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "trace/prefix.h"

namespace {

std::string aligned(const std::string& text, std::size_t width) {
    const std::string padded = std::string(width, ' ') + text;
    return padded.substr(padded.size() - width);
}

std::string lastFourDigits(std::uint32_t line) {
    const std::string digits = "0000" + std::to_string(line);
    return digits.substr(digits.size() - 4);
}

/// Up to a zero.
std::string takeText(FuzzedDataProvider& data) {
    const std::string text = data.ConsumeRandomLengthString(50);
    return text.substr(0, text.find('\0'));
}

/// Any larger depth also fills the largest buffer.
constexpr std::uint32_t deepest = 100;

struct Line {
    std::string component;
    std::string file;
    std::uint32_t number = 0;
    std::uint32_t depth = 0;

    [[nodiscard]] std::string text() const {
        return "[" + aligned(component, 10) + "|" + aligned(file, 32) + "|" + lastFourDigits(number) + "] " +
               std::string(std::min(depth, deepest), ' ');
    }
};

void checkInBuffer(std::size_t room, const Line& line, const std::string& text, const nTrace::tIndentationTable& table,
                   std::uint32_t thread) {
    std::vector<char> buffer(room, '#');
    const nTrace::tSite site{line.file.c_str(), line.component.c_str(), line.number};
    const char* const end = nTrace::writePrefix(buffer.data(), room, site, table, thread);

    const std::string_view expected = std::string_view(text).substr(0, room - 1);
    check(buffer.data() == expected, "text");
    check(end == buffer.data() + expected.size(), "end");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    Line line;
    line.number = data.ConsumeIntegral<std::uint32_t>();
    nTrace::tIndentationTable table{};
    const auto thread = data.ConsumeIntegralInRange<std::uint32_t>(0, 3);
    // The first slot in use counts: filled backwards, it is the last one in this loop.
    for (auto slot = table.rbegin(); slot != table.rend(); ++slot) {
        *slot = {data.ConsumeIntegralInRange<std::uint32_t>(0, 3), data.ConsumeIntegral<std::uint32_t>(),
                 data.ConsumeIntegralInRange<std::uint32_t>(0, 2)};
        if (data.ConsumeBool()) slot->depth %= deepest;
        if (slot->inUse != 0 && slot->threadId == thread) line.depth = slot->depth;
    }
    line.component = takeText(data);
    line.file = takeText(data);
    // From one byte for the zero to more than is needed, unless the depth exceeds any buffer.
    const std::string text = line.text();
    const std::size_t largest = line.depth < deepest ? text.size() + 3 : text.size();
    for (std::size_t room = 1; room <= largest; ++room) checkInBuffer(room, line, text, table, thread);
    return 0;
}
