// Conversions between UTF-16 and UTF-8. The input is treated first as UTF-16, then as UTF-8.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "stdpath/utf.h"

namespace {

/// A plain decoder of UTF-16. A high surrogate is joined with any unit that follows it, or only with a low surrogate.
std::vector<std::uint32_t> codePoints(const std::u16string& text, bool withLowOnly) {
    std::vector<std::uint32_t> result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t codePoint = text[i];
        if (codePoint >= 0xD800 && codePoint <= 0xDBFF && i + 1 < text.size()) {
            const std::uint32_t next = text[i + 1];
            const bool joined = !withLowOnly || (next >= 0xDC00 && next <= 0xDFFF);
            if (joined) codePoint = codePoint * 1024 + next - 0x35FDC00;
            if (joined) ++i;
        }
        result.push_back(codePoint);
    }
    return result;
}

/// The number of bytes after the first one in the shortest form.
int tailSize(std::uint32_t codePoint) {
    return codePoint < 0x80 ? 0 : codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
}

/// Reads well-formed UTF-8, including surrogates and code points above U+10FFFF.
std::vector<std::uint32_t> decoded(std::string_view utf8) {
    std::vector<std::uint32_t> result;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<std::uint8_t>(utf8[i++]);
        const int tail = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        check(lead < 0x80 || (lead >= 0xC2 && lead < 0xF8), "first byte");
        std::uint32_t codePoint = tail == 0 ? lead : lead & (0x3FU >> tail);
        for (int left = tail; left > 0; --left) {
            check(i < utf8.size() && (static_cast<std::uint8_t>(utf8[i]) & 0xC0) == 0x80, "next byte");
            codePoint = codePoint << 6 | (static_cast<std::uint8_t>(utf8[i++]) & 0x3F);
        }
        check(tail == tailSize(codePoint), "shortest form");
        result.push_back(codePoint);
    }
    return result;
}

/// Returns the length of the character at the beginning of the text, by the table of well-formed sequences (extended by
/// lone surrogates), or 0 if there is none.
std::size_t characterSize(std::string_view text) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0; };
    const auto isTail = [&](std::size_t i) { return byte(i) >= 0x80 && byte(i) <= 0xBF; };
    if (byte(0) <= 0x7F) return 1;
    if (byte(0) >= 0xC2 && byte(0) <= 0xDF) return isTail(1) ? 2 : 0;
    if (byte(0) >= 0xE0 && byte(0) <= 0xEF) {
        return isTail(1) && isTail(2) && (byte(0) != 0xE0 || byte(1) >= 0xA0) ? 3 : 0;
    }
    const bool second = (byte(0) == 0xF0 && byte(1) >= 0x90 && isTail(1)) || (byte(0) == 0xF4 && byte(1) <= 0x8F) ||
                        (byte(0) >= 0xF1 && byte(0) <= 0xF3);
    return second && isTail(1) && isTail(2) && isTail(3) ? 4 : 0;
}

/// Converts each character to its units, and each byte that begins none to U+FFFD.
std::u16string expectedUnits(std::string_view text) {
    std::u16string result;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        const std::uint32_t codePoint = size == 0 ? 0xFFFD : decoded(text.substr(0, size))[0];
        if (codePoint >= 0x10000) result += static_cast<char16_t>((codePoint - 0x10000) / 1024 + 0xD800);
        result += static_cast<char16_t>(codePoint < 0x10000 ? codePoint : codePoint % 1024 + 0xDC00);
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of the exact size, so that an access beyond it is detected.
    std::vector<char16_t> wide(size / sizeof(char16_t));
    if (!wide.empty()) std::memcpy(wide.data(), data, wide.size() * sizeof(char16_t));
    const std::u16string units(wide.begin(), wide.end());

    std::string text;
    nStdPath::wideToUtf8(wide.data(), wide.data() + wide.size(), text);
    check(decoded(text) == codePoints(units, false), "the text of a wide text");

    const std::string name = nStdPath::fileNameToUtf8(units);
    check(decoded(name) == codePoints(units, true), "the text of a file name");
    check(nStdPath::fileNameFromUtf8(name) == units, "the file name after the round trip");

    const std::vector<char> narrow(reinterpret_cast<const char*>(data), reinterpret_cast<const char*>(data) + size);
    const std::string_view bytes(narrow.data(), narrow.size());
    const std::u16string fromBytes = nStdPath::fileNameFromUtf8(bytes);
    check(fromBytes == expectedUnits(bytes), "the file name of any bytes");
    // Halves of a pair, each encoded in three bytes, become one character.
    check(decoded(nStdPath::fileNameToUtf8(fromBytes)) == codePoints(fromBytes, true), "the text of that file name");
    return 0;
}
