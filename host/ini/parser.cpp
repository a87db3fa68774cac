#include "ini/parser.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "ini/file.h"
#include "ini/line.h"
#include "ini/lineReader.h"

namespace nIni {
namespace {

constexpr std::size_t chunkSize = 2084;
constexpr std::size_t blockSize = 65536;

/// Appends up to `size` bytes of the file to the text. Returns false at the end of the file and after a read error.
/// Requires: the size is at most that of a chunk.
bool read(std::FILE* file, std::size_t size, std::string& text) {
    char chunk[chunkSize];  // not initialised, unlike the characters by which a string grows
    const std::size_t count = std::fread(chunk, 1, size, file);
    text.append(chunk, count);
    return count == size;
}

/// Fills the block, which contains the start of a line. The longer the start, the larger the block, so that no line is
/// copied often. Returns false at the end of the file and after a read error.
bool readBlock(std::FILE* file, std::string& block) {
    const std::size_t size = std::max(blockSize, 2 * block.size() + chunkSize);
    if (!read(file, chunkSize, block)) return false;  // a small file needs a small block
    block.reserve(size);
    while (block.size() + chunkSize <= size) {
        if (!read(file, chunkSize, block)) return false;
    }
    return true;
}

/// The last value of a repeated key replaces the first one.
void removeRepeatedKeys(tSection& section, bool caseSensitive) {
    removeRepeated(section.keys, caseSensitive, [](tKey& first, const tKey& repeated) {
        first.value = repeated.value;
        first.quote = repeated.quote;
        first.line = repeated.line;
    });
}

/// Joins each run of continuation keys into its first key, which keeps its line and quote. A run begins with number 1
/// and extends to the next number 1 or the first other key, whatever the stems and numbers between are.
void joinContinuations(std::list<std::string>& texts, tSection& section) {
    const auto end = section.keys.end();
    auto kept = section.keys.begin();
    for (auto key = kept; key != end; ++kept) {
        *kept = *key++;
        const std::optional<tContinuation> first = toContinuation(kept->name);
        if (!first || !first->startsRun) continue;
        std::string& joined = texts.emplace_back(kept->value);
        for (; key != end; ++key) {
            const std::optional<tContinuation> next = toContinuation(key->name);
            if (!next || next->startsRun) break;
            joined += key->value;
        }
        kept->name = first->stem;
        kept->value = joined;
    }
    section.keys.erase(kept, end);
}

void openSection(tDocument& document, std::string_view name, std::int32_t line) {
    if (document.mergeDuplicates != 0) {
        if (tSection* const section = findSection(document, name)) {
            section->line = line;
            return;
        }
    }
    document.sections.push_back({name, {}, line, {}});
    document.currentSection = &document.sections.back();
}

void addKey(tDocument& document, const tLine& line, std::int32_t lineNumber) {
    if (document.currentSection == nullptr) {
        if ((document.flags & colonSeparates) == 0) return;
        openSection(document, "(null)", -1);
    }
    tSection& section = *document.currentSection;
    if (document.mergeDuplicates != 0 && section.keys.size() >= section.mergeThreshold) {
        removeRepeatedKeys(section, document.caseSensitive != 0);
        section.mergeThreshold = std::max(section.mergeThreshold, 16 * section.keys.size());
    }
    if (section.keys.empty()) section.keys.reserve(linearSearchLimit);
    section.keys.push_back({line.name, line.value, line.quote, lineNumber});
    if (line.name.ends_with('1') && toContinuation(line.name)) section.hasContinuations = true;
}

/// Returns false if the line is malformed.
bool parseLine(tDocument& document, std::string_view text, std::int32_t lineNumber) {
    const tLine line = readLine(text, document.flags);
    if (line.kind == tLineKind::header) openSection(document, line.name, lineNumber);
    if (line.kind == tLineKind::key) addKey(document, line, lineNumber);
    return !isMalformed(line.kind);
}

void parseBlock(tDocument& document, tLineReader& lines) {
    while (const std::optional<std::string_view> line = lines.next()) {
        const bool wellFormed = parseLine(document, *line, lines.lineNumber());
        if (!wellFormed && document.firstErrorLine == -1) document.firstErrorLine = lines.lineNumber();
    }
}

/// Completes what had to wait for the end of the file.
void finish(tDocument& document) {
    for (tSection& section : document.sections) {
        if (document.mergeDuplicates != 0) removeRepeatedKeys(section, document.caseSensitive != 0);
        if (section.hasContinuations) joinContinuations(document.texts, section);
        section.keyIndex.reset();
    }
}

void rememberFile(tDocument& document, const wchar_t* widePath) {
    document.fileTime = lastWriteTime(widePath).value_or(0);
    // Through a copy: the path may be the document's own, from the previous parse.
    const std::wstring_view path(widePath);
    decltype(document.filePath) copy{};
    if (path.size() < copy.size()) path.copy(copy.data(), path.size());
    document.filePath = copy;
}

int parse(tDocument& document, const wchar_t* widePath, bool remembering) noexcept try {
    const tFile file = openFile(widePath);
    if (!file) return lastWriteTime(widePath) ? fileNotOpened : fileNotFound;
    const int result = parseStream(document, file.get());
    if (result == 0 && remembering) rememberFile(document, widePath);
    return result;
} catch (const std::bad_alloc&) {
    return outOfMemory;
}

}  // namespace

int parseStream(tDocument& document, std::FILE* file) {
    std::string start;
    bool more = read(file, 4, start);
    bool failed = !more && std::ferror(file) != 0;
    if (failed) return fileNotRead;
    if (isWide(start)) return wideText;

    document.currentSection = nullptr;
    document.sections.clear();
    document.sectionIndex.reset();
    document.texts.clear();
    document.firstErrorLine = -1;
    tLineReader lines;
    lines.setBlock(withoutByteOrderMark(start), false);
    do {
        std::string& block = document.texts.emplace_back(lines.rest());
        more = more && readBlock(file, block);
        failed = !more && std::ferror(file) != 0;
        lines.setBlock(block, !more && !failed);
        parseBlock(document, lines);
    } while (more);
    if (failed) return fileNotRead;
    finish(document);
    return 0;
}

int parseFile(tDocument& document, const wchar_t* widePath) noexcept { return parse(document, widePath, true); }

int parseContent(tDocument& document, const wchar_t* widePath) noexcept { return parse(document, widePath, false); }

}  // namespace nIni
