#include "tool/run/protocol.h"

#include <charconv>
#include <optional>
#include <system_error>

#include "tool/format.h"

namespace nRun {
namespace {

constexpr std::string_view kinds = "rcdslhozfatekg";

/// Takes a number and the blank after it from the beginning of the text. Returns nullopt if they are not there.
template <class Number>
std::optional<Number> takeNumber(std::string_view& text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest == end || *rest != ' ') return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(rest - text.data()) + 1);
    return number;
}

std::optional<tEvent> readLine(std::string_view line) {
    if (line.size() < 2 || kinds.find(line[0]) == std::string_view::npos || line[1] != ' ') return std::nullopt;
    const auto kind = static_cast<tEventKind>(line[0]);
    line.remove_prefix(2);
    const auto plugin = takeNumber<std::size_t>(line);
    const auto phase = takeNumber<std::uint8_t>(line);
    const auto number = takeNumber<std::uint64_t>(line);
    const auto code = takeNumber<std::int32_t>(line);
    if (!plugin || !phase || *phase > static_cast<std::uint8_t>(nStatus::tPhase::cleanup) || !number || !code) {
        return std::nullopt;
    }
    return tEvent{kind, *plugin, static_cast<nStatus::tPhase>(*phase), *number, *code, std::string(line)};
}

}  // namespace

std::string toLine(const tEvent& event) {
    return fmt::format("{} {} {} {} {} {}\n", static_cast<char>(event.kind), event.plugin,
                       static_cast<unsigned>(event.phase), event.number, event.code, event.text);
}

bool tReader::add(std::string_view bytes) {
    const std::size_t before = events_.size();
    for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        line_.append(bytes.substr(0, end));
        if (line_.size() <= longestLine) {
            if (auto event = readLine(line_)) events_.push_back(std::move(*event));
        }
        line_.clear();
        bytes.remove_prefix(end + 1);
    }
    // One byte more than the limit is enough to know that the line is too long.
    line_.append(bytes.substr(0, longestLine + 1 - line_.size()));
    return events_.size() > before;
}

}  // namespace nRun
