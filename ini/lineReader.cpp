#include "ini/lineReader.h"

#include <algorithm>
#include <limits>

namespace nIni {
namespace {

constexpr bool isTerminator(char c) noexcept { return c == '\n' || c == '\r' || c == 0; }

}  // namespace

bool tLineReader::skipByteOrderMark() noexcept {
    using std::string_view_literals::operator""sv;
    rest_ = {mark_.data(), read(mark_.data(), mark_.size())};
    // FF FE opens little-endian UTF-32 (FF FE 00 00) as well.
    if (rest_.starts_with("\xFF\xFE"sv) || rest_.starts_with("\xFE\xFF"sv) || rest_ == "\0\0\xFE\xFF"sv) return false;
    if (rest_.starts_with("\xEF\xBB\xBF"sv)) rest_.remove_prefix(3);
    return true;
}

std::optional<std::string_view> tLineReader::next() {
    if (text_.empty()) startBlock();
    if (rest_.empty() && !readChunk()) return std::nullopt;
    if (isTerminator(rest_.front()) && rest_.front() != lastTerminator_) rest_.remove_prefix(1);
    const char* end = firstTerminator();
    for (bool more = true; end == restEnd() && more;) {
        more = readChunk();
        end = firstTerminator();
    }
    if (end == restEnd() && (failed_ || rest_.empty())) return std::nullopt;
    return cutLine(end);
}

/// Adds to the rest, which has no terminator any more, what follows in the file. False when that is nothing.
bool tLineReader::readChunk() {
    if (roomBehind_ < chunkSize) startBlock();
    const std::size_t before = rest_.size();
    const std::size_t count = read(text_.back().get() + (restEnd() - text_.back().get()), chunkSize);
    rest_ = {rest_.data(), before + count};
    roomBehind_ -= count;
    findTerminators(before);
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
    findTerminators(0);
}

/// Looks for all kinds from there on.
void tLineReader::findTerminators(std::size_t from) noexcept {
    for (tTerminator& terminator : terminators_) findNext(terminator, from);
}

void tLineReader::findNext(tTerminator& terminator, std::size_t from) const noexcept {
    terminator.next = rest_.data() + std::min(rest_.find(terminator.character, from), rest_.size());
}

/// The first terminator of the rest, or its end.
const char* tLineReader::firstTerminator() noexcept {
    const char* first = restEnd();
    for (tTerminator& terminator : terminators_) {
        if (terminator.next < rest_.data()) findNext(terminator, 0);
        first = std::min(first, terminator.next);
    }
    return first;
}

std::string_view tLineReader::cutLine(const char* end) noexcept {
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
