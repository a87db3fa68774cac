#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
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
    /// Where a character comes next in the rest: its end when it does not. Looked for anew when it has been passed.
    struct tTerminator {
        char character;
        const char* next;
    };

    static constexpr std::size_t chunkSize = 2084;
    static constexpr std::size_t blockSize = 65536;  ///< a line may need a larger one

    bool readChunk();
    std::size_t read(char* room, std::size_t size) noexcept;
    void startBlock();
    void findTerminators(std::size_t from) noexcept;
    void findNext(tTerminator& terminator, std::size_t from) const noexcept;
    const char* firstTerminator() noexcept;
    std::string_view cutLine(const char* end) noexcept;
    [[nodiscard]] const char* restEnd() const noexcept { return rest_.data() + rest_.size(); }

    std::FILE* file_;
    tText& text_;
    std::int32_t lineNumber_;
    std::array<char, 4> mark_{};
    std::string_view rest_;       ///< of what has been read, in the last block; in the mark before there is one
    std::size_t roomBehind_ = 0;  ///< the rest, in its block
    std::array<tTerminator, 3> terminators_{{{'\n', nullptr}, {'\r', nullptr}, {'\0', nullptr}}};
    char lastTerminator_ = 0;
    bool atEnd_ = false;
    bool failed_ = false;
};

}  // namespace nIni
