// Compares the splitting of dependencies with a plain implementation of the rule, byte by byte.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "source/nPluginData.h"

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

std::vector<std::string> expected(std::string_view text) {
    std::vector<std::string> list;
    std::string name;
    std::string blanks;  // those after the name, which may turn out to be inside it
    const auto finish = [&] {
        if (!name.empty()) list.push_back(name);
        name.clear();
        blanks.clear();
    };
    for (const char c : text) {
        if (c == ',') {
            finish();
        } else if (isSpace(c)) {
            blanks += c;
        } else {
            if (!name.empty()) name += blanks;
            name += c;
            blanks.clear();
        }
    }
    finish();
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> list{"dropped"};
    nPluginData::splitDependencies(text, list);
    check(list == expected(text), "list");
    return 0;
}
