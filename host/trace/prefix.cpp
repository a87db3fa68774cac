#include "trace/prefix.h"

#include <algorithm>
#include <cstring>

namespace nTrace {
namespace {

static_assert(offsetof(tIndentation, threadId) == 0 && offsetof(tIndentation, depth) == 4);
static_assert(offsetof(tIndentation, inUse) == 8 && sizeof(tIndentationTable) == std::size_t{16} * 12);
static_assert(offsetof(tSite, file) == 0 && offsetof(tSite, component) == 8 && sizeof(tSite::line) == 4);

constexpr std::size_t componentWidth = 10;
constexpr std::size_t fileWidth = 32;
constexpr std::size_t lineDigits = 4;

char* writeRun(char* out, std::size_t size, char character, std::size_t count) noexcept {
    const std::size_t written = std::min(count, size - 1);
    std::memset(out, character, written);
    out[written] = 0;
    return out + written;
}

char* writeBytes(char* out, std::size_t size, const char* bytes, std::size_t count) noexcept {
    const std::size_t written = std::min(count, size - 1);
    std::memcpy(out, bytes, written);
    out[written] = 0;
    return out + written;
}

}  // namespace

char* writeText(char* out, std::size_t size, const char* text) noexcept {
    return writeBytes(out, size, text, std::strlen(text));
}

char* writeAligned(char* out, std::size_t size, const char* text, std::size_t width) noexcept {
    const std::size_t length = std::strlen(text);
    const std::size_t kept = std::min(length, width);
    char* const end = writeRun(out, size, ' ', width - kept);
    return writeBytes(end, size - static_cast<std::size_t>(end - out), text + length - kept, kept);
}

char* writeLineNumber(char* out, std::size_t size, std::uint32_t line) noexcept {
    std::array<char, lineDigits> digits{};
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, line /= 10) {
        *digit = static_cast<char>('0' + line % 10);
    }
    return writeBytes(out, size, digits.data(), digits.size());
}

char* writeIndentation(char* out, std::size_t size, const tIndentationTable& table, std::uint32_t threadId) noexcept {
    const auto slot = std::find_if(table.begin(), table.end(), [threadId](const tIndentation& candidate) {
        return candidate.inUse != 0 && candidate.threadId == threadId;
    });
    return writeRun(out, size, ' ', slot == table.end() ? 0 : slot->depth);
}

char* writePrefix(char* out, std::size_t size, const tSite& site, const tIndentationTable& table,
                  std::uint32_t threadId) noexcept {
    char* const last = out + size;
    const auto remaining = [&] { return static_cast<std::size_t>(last - out); };
    out = writeText(out, remaining(), "[");
    out = writeAligned(out, remaining(), site.component, componentWidth);
    out = writeText(out, remaining(), "|");
    out = writeAligned(out, remaining(), site.file, fileWidth);
    out = writeText(out, remaining(), "|");
    out = writeLineNumber(out, remaining(), site.line);
    out = writeText(out, remaining(), "] ");
    return writeIndentation(out, remaining(), table, threadId);
}

}  // namespace nTrace
