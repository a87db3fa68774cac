#include "ini/line.h"

#include "ini/document.h"

namespace nIni {
namespace {

/// Like isspace in the C locale, where no byte above 127 is a space.
constexpr bool isSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimStart(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    return text;
}

std::string_view trimEnd(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view trim(std::string_view text) noexcept { return trimEnd(trimStart(text)); }

/// Removes the quotes that the flags name from the value. Returns the quote character, or 0.
char stripQuotes(std::string_view& value, std::uint32_t flags) noexcept {
    if (value.size() < 2 || value.front() != value.back()) return 0;
    const char quote = value.front();
    if (!(quote == '"' && (flags & stripDoubleQuotes) != 0) && !(quote == '\'' && (flags & stripSingleQuotes) != 0)) {
        return 0;
    }
    value = value.substr(1, value.size() - 2);
    return quote;
}

tLine malformed(tLineKind kind) noexcept { return {kind, 0, {}, {}}; }

/// Requires: the line begins with "[".
tLine readHeader(std::string_view line) noexcept {
    const std::size_t bracket = line.find(']');
    if (bracket == std::string_view::npos) return malformed(tLineKind::headerNotClosed);
    const std::string_view name = trim(line.substr(1, bracket - 1));
    if (name.empty()) return malformed(tLineKind::headerWithoutName);
    return {tLineKind::header, 0, name, {}};
}

/// Quotes with nothing between them are not an empty value.
tLine readKey(std::string_view line, std::uint32_t flags) noexcept {
    const bool colon = (flags & colonSeparates) != 0;
    const std::size_t separator = colon ? line.find_first_of("=:") : line.find('=');
    if (separator == std::string_view::npos) {
        return malformed(line.empty() ? tLineKind::blank : tLineKind::noSeparator);
    }
    const std::string_view name = trimEnd(line.substr(0, separator));
    const std::string_view rest = line.substr(separator);
    std::string_view value = trim(rest.substr(rest.starts_with(":=") ? 2 : 1));
    if (name.empty()) return malformed(tLineKind::keyWithoutName);
    if (value.empty() && (flags & acceptEmptyValues) == 0) return malformed(tLineKind::keyWithoutValue);
    const char quote = stripQuotes(value, flags);
    return {tLineKind::key, quote, name, value};
}

}  // namespace

tLine readLine(std::string_view line, std::uint32_t flags) noexcept {
    line = trimStart(line);
    if (line.starts_with(';')) return {tLineKind::comment, 0, {}, {}};
    return line.starts_with('[') ? readHeader(line) : readKey(line, flags);
}

std::optional<tContinuation> toContinuation(std::string_view name) noexcept {
    constexpr std::string_view word = " Line";
    const std::size_t wordEnd = name.find_last_not_of("0123456789") + 1;  // 0 if there are only digits
    if (wordEnd == name.size() || !name.substr(0, wordEnd).ends_with(word)) return std::nullopt;
    const std::string_view number = name.substr(wordEnd);
    const bool isOne = number.ends_with('1') && number.find_first_not_of('0') == number.size() - 1;
    return tContinuation{name.substr(0, wordEnd - word.size()), isOne};
}

bool isWide(std::string_view start) noexcept {
    using std::string_view_literals::operator""sv;
    return start.starts_with("\xFF\xFE"sv) || start.starts_with("\xFE\xFF"sv) || start == "\0\0\xFE\xFF"sv;
}

std::string_view withoutByteOrderMark(std::string_view text) noexcept {
    return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

}  // namespace nIni
