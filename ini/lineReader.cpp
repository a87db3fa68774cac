#include "ini/lineReader.h"

#include <algorithm>
#include <limits>

namespace nIni {
namespace {

constexpr bool isTerminator(char c) noexcept { return c == '\n' || c == '\r' || c == 0; }

}  // namespace

bool tLineReader::skipByteOrderMark() noexcept {
    using std::string_view_literals::operator""sv;
    readChunk(markSize);
    // FF FE opens little-endian UTF-32 (FF FE 00 00) as well.
    if (rest_.starts_with("\xFF\xFE"sv) || rest_.starts_with("\xFE\xFF"sv) || rest_ == "\0\0\xFE\xFF"sv) return false;
    if (rest_.starts_with("\xEF\xBB\xBF"sv)) rest_.remove_prefix(3);
    return true;
}

std::optional<std::string_view> tLineReader::next() {
    line_.clear();
    if (rest_.empty() && !readChunk(chunkSize)) return std::nullopt;
    if (isTerminator(rest_.front()) && rest_.front() != lastTerminator_) rest_.remove_prefix(1);
    for (;;) {
        const auto end = std::find_if(rest_.begin(), rest_.end(), isTerminator);
        const std::string_view piece(rest_.begin(), end);
        if (end != rest_.end()) {
            lastTerminator_ = *end;
            rest_.remove_prefix(piece.size() + 1);
            return finish(piece);
        }
        line_.append(piece);
        if (!readChunk(chunkSize)) break;
    }
    if (failed_ || line_.empty()) return std::nullopt;
    return finish({});
}

/// Makes the chunk that much of what follows in the file. False when that is nothing.
bool tLineReader::readChunk(std::size_t size) noexcept {
    // A file that grows meanwhile ends where it was first seen to end.
    const std::size_t count = atEnd_ ? 0 : std::fread(chunk_.data(), 1, size, file_);
    atEnd_ = count < size;
    failed_ = std::ferror(file_) != 0;
    rest_ = {chunk_.data(), count};
    return count > 0 && !failed_;
}

std::string_view tLineReader::finish(std::string_view lastPiece) {
    if (lineNumber_ < std::numeric_limits<std::int32_t>::max()) ++lineNumber_;
    if (line_.empty()) return lastPiece;
    return line_.append(lastPiece);
}

}  // namespace nIni
