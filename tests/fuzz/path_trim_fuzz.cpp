// Compares trimming a path with a plain implementation of the rule, character by character.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "check.h"
#include "stdpath/stdpath.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using std::string_view_literals::operator""sv;
    const std::string text(reinterpret_cast<const char*>(data), size);

    std::string expected = text;
    while (!expected.empty() && " \t\n\v\f\r\\\0"sv.find(expected.back()) != std::string_view::npos)
        expected.pop_back();
    while (!expected.empty() && " \t\n\v\f\r"sv.find(expected.front()) != std::string_view::npos) expected.erase(0, 1);

    std::string trimmed = text;
    nStdPath::trimPath(trimmed);
    check(trimmed == expected, "path");
    return 0;
}
