// The trace prefix in every size of buffer, against the same line put together with std::string.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

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

std::string takeText(FuzzedDataProvider& data) { return data.ConsumeRandomLengthString(50).c_str(); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    const auto room = data.ConsumeIntegralInRange<std::size_t>(1, 120);
    const auto line = data.ConsumeIntegral<std::uint32_t>();
    nTrace::IndentationTable table{};
    std::uint32_t depth = 0;
    const auto thread = data.ConsumeIntegralInRange<std::uint32_t>(0, 3);
    // The first slot in use counts; filled from the back, it is the last one that this loop meets.
    for (auto slot = table.rbegin(); slot != table.rend(); ++slot) {
        *slot = {data.ConsumeIntegralInRange<std::uint32_t>(0, 3), data.ConsumeIntegral<std::uint32_t>(),
                 data.ConsumeIntegralInRange<std::uint32_t>(0, 2)};
        if (slot->inUse != 0 && slot->threadId == thread) depth = slot->depth;
    }
    const std::string component = takeText(data);
    const std::string file = takeText(data);

    std::vector<char> buffer(room, '#');
    const char* const end =
        nTrace::writePrefix(buffer.data(), room, {file.c_str(), component.c_str(), line}, table, thread);

    const std::string whole = "[" + aligned(component, 10) + "|" + aligned(file, 32) + "|" + lastFourDigits(line) +
                              "] " + std::string(depth < room ? depth : room, ' ');
    const std::string expected = whole.substr(0, room - 1);
    if (buffer.data() != expected || end != buffer.data() + expected.size()) {
        std::fprintf(stderr, "'%s', expected '%s'\n", buffer.data(), expected.c_str());
        std::abort();
    }
    return 0;
}
