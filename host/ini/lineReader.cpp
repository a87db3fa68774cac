#include "ini/lineReader.h"

#include <algorithm>

namespace nIni {
bool tLineReader::skipByteOrderMark() noexcept {
    using std::string_view_literals::operator""sv;
    rest_ = {mark_.data(), read(mark_.data(), mark_.size())};
    // FF FE opens little-endian UTF-32 (FF FE 00 00) as well.
    if (rest_.starts_with("\xFF\xFE"sv) || rest_.starts_with("\xFE\xFF"sv) || rest_ == "\0\0\xFE\xFF"sv) return false;
    if (rest_.starts_with("\xEF\xBB\xBF"sv)) rest_.remove_prefix(3);
    return true;
}

/// Of the rest, which has none yet; its end when there is nothing more to read.
const char* tLineReader::readToTerminator() {
    for (bool more = true; more;) {
        const std::size_t searched = rest_.size();
        more = readChunk();
        const char* const end = findTerminator(rest_.data() + searched, restEnd());
        if (end != restEnd()) return end;
    }
    return restEnd();
}

/// Adds to the rest, which has no terminator any more, what follows in the file. False when that is nothing.
bool tLineReader::readChunk() {
    if (roomBehind_ < chunkSize) startBlock();
    const std::size_t before = rest_.size();
    const std::size_t count = read(text_.back().get() + (restEnd() - text_.back().get()), chunkSize);
    rest_ = {rest_.data(), before + count};
    roomBehind_ -= count;
    return count > 0;
}

/// Gives 0 at the end and when reading fails. A file that grows meanwhile ends where it was first seen to end.
std::size_t tLineReader::read(char* room, std::size_t size) noexcept {
    const std::size_t count = atEnd_ ? 0 : std::fread(room, 1, size, file_);
    atEnd_ = count < size;
    failed_ = std::ferror(file_) != 0;
    return failed_ ? 0 : count;
}

/// Moves the rest into a new block. The longer it is, the larger is the block: no line is moved often.
void tLineReader::startBlock() {
    const std::size_t size = std::max(blockSize, 2 * rest_.size() + chunkSize);
    char* const block = text_.emplace_back(std::make_unique_for_overwrite<char[]>(size)).get();
    rest_ = {block, rest_.copy(block, rest_.size())};
    roomBehind_ = size - rest_.size();
}

}  // namespace nIni
