#include "ini/parser.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "ini/file.h"
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

/// Returns whether the text begins with a byte-order mark of UTF-16 or UTF-32; FF FE 00 00 begins with one of UTF-16.
bool isWide(std::string_view start) {
    using std::string_view_literals::operator""sv;
    return start.starts_with("\xFF\xFE"sv) || start.starts_with("\xFE\xFF"sv) || start == "\0\0\xFE\xFF"sv;
}

std::string_view withoutByteOrderMark(std::string_view start) {
    return start.starts_with("\xEF\xBB\xBF") ? start.substr(3) : start;
}

/// Like isspace in the C locale, where no byte above 127 is a space.
constexpr bool isSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimStart(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    return text;
}

std::string_view trimEnd(std::string_view text) {
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view trim(std::string_view text) { return trimEnd(trimStart(text)); }

/// A name like "Text Line12".
struct tContinuation {
    std::string_view stem;  ///< "Text"
    bool startsRun;         ///< the number is 1
};

std::optional<tContinuation> toContinuation(std::string_view name) {
    constexpr std::string_view word = " Line";
    const std::size_t wordEnd = name.find_last_not_of("0123456789") + 1;  // 0 if there are only digits
    if (wordEnd == name.size() || !name.substr(0, wordEnd).ends_with(word)) return std::nullopt;
    const std::string_view number = name.substr(wordEnd);
    const bool isOne = number.ends_with('1') && number.find_first_not_of('0') == number.size() - 1;
    return tContinuation{name.substr(0, wordEnd - word.size()), isOne};
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

/// Removes the quotes that the flags name from the value. Returns the quote character, or 0.
char stripQuotes(std::string_view& value, std::uint32_t flags) {
    if (value.size() < 2 || value.front() != value.back()) return 0;
    const char quote = value.front();
    if (!(quote == '"' && (flags & stripDoubleQuotes) != 0) && !(quote == '\'' && (flags & stripSingleQuotes) != 0)) {
        return 0;
    }
    value = value.substr(1, value.size() - 2);
    return quote;
}

void addKey(tDocument& document, std::string_view name, std::string_view value, std::int32_t line) {
    if (document.currentSection == nullptr) {
        if ((document.flags & colonSeparates) == 0) return;
        openSection(document, "(null)", -1);
    }
    tSection& section = *document.currentSection;
    if (document.mergeDuplicates != 0 && section.keys.size() >= section.mergeThreshold) {
        removeRepeatedKeys(section, document.caseSensitive != 0);
        section.mergeThreshold = std::max(section.mergeThreshold, 16 * section.keys.size());
    }
    const char quote = stripQuotes(value, document.flags);
    if (section.keys.empty()) section.keys.reserve(linearSearchLimit);
    section.keys.push_back({name, value, quote, line});
    if (name.ends_with('1') && toContinuation(name)) section.hasContinuations = true;
}

/// Requires: the line begins with "[". Returns false if it is malformed.
bool parseHeader(tDocument& document, std::string_view line, std::int32_t lineNumber) {
    const std::size_t bracket = line.find(']');
    if (bracket == std::string_view::npos) return false;
    const std::string_view name = trim(line.substr(1, bracket - 1));
    if (name.empty()) return false;
    openSection(document, name, lineNumber);
    return true;
}

/// Returns false if the line is malformed. Quotes with nothing between them are not an empty value.
bool parseKey(tDocument& document, std::string_view line, std::int32_t lineNumber) {
    const bool colon = (document.flags & colonSeparates) != 0;
    const std::size_t separator = colon ? line.find_first_of("=:") : line.find('=');
    if (separator == std::string_view::npos) return false;
    const std::string_view name = trimEnd(line.substr(0, separator));
    const std::string_view rest = line.substr(separator);
    const std::string_view value = trim(rest.substr(rest.starts_with(":=") ? 2 : 1));
    if (name.empty()) return false;
    if (value.empty() && (document.flags & acceptEmptyValues) == 0) return false;
    addKey(document, name, value, lineNumber);
    return true;
}

/// Returns false if the line is malformed.
bool parseLine(tDocument& document, std::string_view line, std::int32_t lineNumber) {
    line = trimStart(line);
    if (line.starts_with(';')) return true;
    if (line.starts_with('[')) return parseHeader(document, line, lineNumber);
    return parseKey(document, line, lineNumber);
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
