#include "tool/install/powershell.h"

#include <algorithm>
#include <array>

namespace nPowershell {
namespace {

constexpr std::array<std::string_view, 5> quotes{"'", "\u2018", "\u2019", "\u201A", "\u201B"};

}  // namespace

std::string quoted(std::string_view text) {
    std::string result = "'";
    while (!text.empty()) {
        const auto* const quote = std::find_if(quotes.begin(), quotes.end(),
                                               [text](std::string_view mark) { return text.starts_with(mark); });
        const std::size_t size = quote == quotes.end() ? 1 : quote->size();
        if (quote != quotes.end()) result.append(*quote);
        result.append(text.substr(0, size));
        text.remove_prefix(size);
    }
    return result + "'";
}

}  // namespace nPowershell
