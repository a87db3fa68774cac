#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace nIni {

/// Cuts a file into lines. A line ends with LF, CR or a zero byte; the last one may end with the file.
///
/// CR LF and LF CR end one line: when a line begins with a terminator other than the one that ended the line before,
/// that one character is skipped. Before the first line, a zero byte counts as the last terminator.
class tLineReader {
public:
    /// Borrows the file, which must stand at its beginning. Lines are numbered on from `linesBefore`.
    explicit tLineReader(std::FILE* file, std::int32_t linesBefore = 0) noexcept
        : file_(file), lineNumber_(linesBefore) {}
    ~tLineReader() = default;
    tLineReader(const tLineReader&) = delete;
    tLineReader& operator=(const tLineReader&) = delete;

    /// To be called first: steps behind the mark of a UTF-8 file. False when the mark is that of UTF-16 or UTF-32.
    bool skipByteOrderMark() noexcept;

    /// The next line without its terminator, valid until the next call. Nothing at the end of the file or when reading
    /// fails. Throws std::bad_alloc.
    std::optional<std::string_view> next();

    /// Of the line that next gave last, counted from 1. The count stays at the largest number that it can hold.
    [[nodiscard]] std::int32_t lineNumber() const noexcept { return lineNumber_; }

    [[nodiscard]] bool failed() const noexcept { return failed_; }

private:
    static constexpr std::size_t markSize = 4;
    static constexpr std::size_t chunkSize = 2084;

    bool readChunk(std::size_t size) noexcept;
    std::string_view finish(std::string_view lastPiece);

    std::FILE* file_;
    std::int32_t lineNumber_;
    std::array<char, chunkSize> chunk_{};
    std::string_view rest_;  ///< of the chunk
    std::string line_;       ///< what earlier chunks hold of the line
    char lastTerminator_ = 0;
    bool atEnd_ = false;
    bool failed_ = false;
};

}  // namespace nIni
