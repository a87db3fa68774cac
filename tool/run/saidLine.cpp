#include "tool/run/saidLine.h"

#include <algorithm>
#include <cstdio>

namespace nRun {
namespace {

bool isControl(char c) noexcept { return (c >= 0 && c < ' ') || c == '\x7F'; }

/// Returns whether the byte continues a character of UTF-8.
bool isContinuation(char c) noexcept { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

bool isWhite(char c) noexcept { return isControl(c) || c == ' '; }

/// Returns the text without the white space at its ends.
std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
    while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
    return text;
}

/// Returns the size up to which the text is shown: the end of a character.
std::size_t shownSize(std::string_view text) noexcept {
    std::size_t size = std::min(text.size(), tSaidLine::longestText);
    while (size < text.size() && size > 0 && isContinuation(text[size])) --size;
    return size;
}

}  // namespace

tSaidLine::tSaidLine(std::size_t plugin, nStatus::tPhase phase, bool byHostThread, std::string_view text) noexcept {
    text = text.substr(0, text.find('\0'));
    const bool isCut = text.size() > longestText;
    text = trimmed(text.substr(0, shownSize(text)));
    empty_ = text.empty() && !isCut;
    const int written =
        std::snprintf(line_.data(), line_.size(), "%c %llu %u %d 0 %.*s%s", static_cast<char>(tEventKind::said),
                      static_cast<unsigned long long>(plugin), static_cast<unsigned>(phase), byHostThread ? 0 : 1,
                      static_cast<int>(text.size()), text.data(), isCut ? "\xE2\x80\xA6" : "");
    size_ = static_cast<std::size_t>(written);
    std::replace_if(line_.begin(), line_.begin() + written, isControl, ' ');
    line_[size_++] = '\n';
}

}  // namespace nRun
