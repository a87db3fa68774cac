#include "tool/run/order.h"

#include <charconv>
#include <system_error>

#include "tool/format.h"

namespace nRun {
namespace {

/// Takes a line from the beginning of the text. Returns nullopt if there is no whole one.
std::optional<std::string_view> takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return line;
}

template <class Number>
bool takeNumber(std::string_view& text, Number& number) {
    const auto line = takeLine(text);
    if (!line) return false;
    const char* const end = line->data() + line->size();
    const auto [rest, error] = std::from_chars(line->data(), end, number);
    return error == std::errc() && rest == end;
}

}  // namespace

std::string toText(const tOrder& order) {
    std::string text =
        fmt::format("{}\n{}\n{:d}\n{}\n", order.times, order.allowedMask, order.keepLoaded, order.files.size());
    for (const std::string& file : order.files) text += file + '\n';
    return text;
}

std::optional<tOrder> readOrder(std::string_view text) {
    tOrder order;
    std::uint32_t keepLoaded = 0;
    std::size_t count = 0;
    if (!takeNumber(text, order.times) || !takeNumber(text, order.allowedMask) || !takeNumber(text, keepLoaded) ||
        !takeNumber(text, count)) {
        return std::nullopt;
    }
    order.keepLoaded = keepLoaded != 0;
    for (; count > 0; --count) {
        const auto file = takeLine(text);
        if (!file) return std::nullopt;
        order.files.emplace_back(*file);
    }
    return order;
}

}  // namespace nRun
