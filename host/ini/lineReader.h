#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace nIni {

/// A file's text, in blocks that stay where they are.
using tText = std::vector<std::unique_ptr<char[]>>;

/// Reads a file block by block and cuts it into lines. A line ends with LF, CR or a zero byte; the last one may end
/// with the file.
///
/// CR LF and LF CR end one line: when a line begins with a terminator other than the one that ended the line before,
/// that one character is skipped. Before the first line, a zero byte counts as the last terminator.
class tLineReader {
public:
    /// Borrows the file, which must stand at its beginning, and the text, which must be empty when the first line is
    /// asked for and is added to then. Lines are numbered on from `linesBefore`.
    tLineReader(std::FILE* file, tText& text, std::int32_t linesBefore = 0) noexcept
        : file_(file), text_(text), lineNumber_(linesBefore) {}
    ~tLineReader() = default;
    tLineReader(const tLineReader&) = delete;
    tLineReader& operator=(const tLineReader&) = delete;

    /// To be called first: steps behind the mark of a UTF-8 file. False when the mark is that of UTF-16 or UTF-32.
    bool skipByteOrderMark() noexcept;

    /// The next line without its terminator, valid as long as the text. Nothing at the end of the file, or of what can
    /// be read of it. Throws std::bad_alloc.
    std::optional<std::string_view> next();

    /// Of the line that next gave last, counted from 1. The count stays at the largest number that it can hold.
    [[nodiscard]] std::int32_t lineNumber() const noexcept { return lineNumber_; }

    [[nodiscard]] bool failed() const noexcept { return failed_; }

private:
    static constexpr std::size_t chunkSize = 2084;
    static constexpr std::size_t blockSize = 65536;  ///< a line may need a larger one

    const char* readToTerminator();
    bool readChunk();
    std::size_t read(char* room, std::size_t size) noexcept;
    void startBlock();
    static bool isTerminator(char c) noexcept { return c == '\n' || c == '\r' || c == 0; }
    static const char* findTerminator(const char* from, const char* end) noexcept;
    std::string_view cutLine(const char* end) noexcept;
    [[nodiscard]] const char* restEnd() const noexcept { return rest_.data() + rest_.size(); }

    std::FILE* file_;
    tText& text_;
    std::int32_t lineNumber_;
    std::array<char, 4> mark_{};
    std::string_view rest_;       ///< of what has been read, in the last block; in the mark before there is one
    std::size_t roomBehind_ = 0;  ///< the rest, in its block
    char lastTerminator_ = 0;
    bool atEnd_ = false;
    bool failed_ = false;
};

// What is done for every line is inline.

inline std::optional<std::string_view> tLineReader::next() {
    if (text_.empty()) startBlock();
    if (rest_.empty() && !readChunk()) return std::nullopt;
    if (isTerminator(rest_.front()) && rest_.front() != lastTerminator_) rest_.remove_prefix(1);
    const char* end = findTerminator(rest_.data(), restEnd());
    if (end == restEnd()) end = readToTerminator();
    if (end == restEnd() && (failed_ || rest_.empty())) return std::nullopt;
    return cutLine(end);
}

/// The first terminator, or the end. SSE2, which every x86-64 processor has, looks at sixteen characters at once.
inline const char* tLineReader::findTerminator(const char* from, const char* end) noexcept {
    const __m128i lineFeeds = _mm_set1_epi8('\n');
    const __m128i returns = _mm_set1_epi8('\r');
    const __m128i zeros = _mm_setzero_si128();
    for (; end - from >= 16; from += 16) {
        const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i breaks = _mm_or_si128(_mm_cmpeq_epi8(characters, lineFeeds), _mm_cmpeq_epi8(characters, returns));
        const int found = _mm_movemask_epi8(_mm_or_si128(breaks, _mm_cmpeq_epi8(characters, zeros)));
        if (found != 0) return from + std::countr_zero(static_cast<unsigned>(found));
    }
    return std::find_if(from, end, isTerminator);
}

inline std::string_view tLineReader::cutLine(const char* end) noexcept {
    if (lineNumber_ < std::numeric_limits<std::int32_t>::max()) ++lineNumber_;
    const std::string_view line(rest_.data(), static_cast<std::size_t>(end - rest_.data()));
    rest_.remove_prefix(line.size());
    if (!rest_.empty()) {
        lastTerminator_ = rest_.front();
        rest_.remove_prefix(1);
    }
    return line;
}

}  // namespace nIni
