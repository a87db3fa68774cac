#include "ini/parser.h"

#include <algorithm>
#include <new>
#include <numeric>

#include "ini/file.h"
#include "ini/lineReader.h"

namespace nIni {
namespace {

/// What isspace says in the C locale. The same for bytes above 127: none of them is a space.
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

/// Takes the quotes that the flags name off the value; gives the quote character, or 0.
char stripQuotes(std::string_view& value, std::uint32_t flags) {
    if (value.size() < 2 || value.front() != value.back()) return 0;
    const char quote = value.front();
    if (!(quote == '"' && (flags & stripDoubleQuotes) != 0) && !(quote == '\'' && (flags & stripSingleQuotes) != 0)) {
        return 0;
    }
    value = value.substr(1, value.size() - 2);
    return quote;
}

constexpr std::string_view continuationMark = " Line";

/// The size of "Text" in a name like "Text Line12"; nothing when the name does not end in " Line" and digits. Case
/// counts here.
std::optional<std::size_t> continuationStem(std::string_view name) {
    const std::size_t markEnd = name.find_last_not_of("0123456789") + 1;  // 0 when there is nothing else
    if (markEnd == name.size() || !name.substr(0, markEnd).ends_with(continuationMark)) return std::nullopt;
    return markEnd - continuationMark.size();
}

/// Whether it is a continuation with number 1. As the parser asks this of every name, most get away at the first look.
bool startsRun(std::string_view name) {
    if (!name.ends_with('1')) return false;
    name.remove_suffix(1);
    while (name.ends_with('0')) name.remove_suffix(1);
    return name.ends_with(continuationMark);
}

bool goesOnWithRun(std::string_view name) { return continuationStem(name) && !startsRun(name); }

void addKey(tDocument& document, std::string_view name, std::string_view value, std::int32_t line) {
    if (document.currentSection == nullptr) {
        if ((document.flags & colonSeparates) == 0) return;
        openSection(document, "(null)", -1);
    }
    const char quote = stripQuotes(value, document.flags);
    tSection& section = *document.currentSection;
    section.keys.push_back({name, value, quote, line});
    if (startsRun(name)) section.hasContinuations = true;
}

/// `line` begins with "[". False when it is malformed.
bool parseHeader(tDocument& document, std::string_view line, std::int32_t lineNumber) {
    const std::size_t bracket = line.find(']');
    if (bracket == std::string_view::npos) return false;
    const std::string_view name = trim(line.substr(1, bracket - 1));
    if (name.empty()) return false;
    openSection(document, name, lineNumber);
    return true;
}

/// False when the line is malformed. Quotes with nothing between them are no empty value: something follows the "=".
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

/// False when the line is malformed.
bool parseLine(tDocument& document, std::string_view line, std::int32_t lineNumber) {
    line = trimStart(line);
    if (line.starts_with(';')) return true;
    if (line.starts_with('[')) return parseHeader(document, line, lineNumber);
    return parseKey(document, line, lineNumber);
}

/// The last one's value takes the place of the first one's.
void mergeRepeatedKeys(tSection& section, bool caseSensitive) {
    section.keyIndex.removeRepeated(section.keys, caseSensitive, [](tKey& first, const tKey& repeated) {
        first.value = repeated.value;
        first.quote = repeated.quote;
        first.line = repeated.line;
    });
}

using tKeyIterator = std::vector<tKey>::iterator;

/// The values of the keys, one behind the other, as a block of the text.
std::string_view joinValues(tText& text, tKeyIterator first, tKeyIterator last) {
    const std::size_t size = std::accumulate(first, last, std::size_t{0},
                                             [](std::size_t sum, const tKey& key) { return sum + key.value.size(); });
    char* const block = text.emplace_back(std::make_unique_for_overwrite<char[]>(size)).get();
    char* end = block;
    for (; first != last; ++first) end += first->value.copy(end, first->value.size());
    return {block, size};
}

/// Joins each run of continuation keys into its first key, which keeps its line and quote. A run begins with number 1
/// and lasts while such keys follow, whatever their stems and numbers are, up to the next number 1.
void joinContinuations(tText& text, tSection& section) {
    const auto end = section.keys.end();
    auto kept = section.keys.begin();
    for (auto key = kept; key != end; ++kept) {
        const auto first = key++;
        if (startsRun(first->name)) {
            while (key != end && goesOnWithRun(key->name)) ++key;
            first->name = first->name.substr(0, *continuationStem(first->name));
            if (key - first > 1) first->value = joinValues(text, first, key);
        }
        if (kept != first) *kept = *first;
    }
    section.keys.erase(kept, end);
}

void rememberFile(tDocument& document, const wchar_t* widePath) {
    document.fileTime = lastWriteTime(widePath).value_or(0);
    // By way of a copy: the path may be the document's own from the parse before.
    const std::wstring_view path(widePath);
    decltype(document.filePath) kept{};
    if (path.size() < kept.size()) path.copy(kept.data(), path.size());
    document.filePath = kept;
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
    tLineReader lines(file, document.text);
    const bool narrow = lines.skipByteOrderMark();
    if (lines.failed()) return fileNotRead;
    if (!narrow) return wideText;

    document.currentSection = nullptr;
    document.sections.clear();
    document.sectionIndex.reset();
    document.text.clear();
    document.firstErrorLine = -1;
    while (const std::optional<std::string_view> line = lines.next()) {
        const bool wellFormed = parseLine(document, *line, lines.lineNumber());
        if (!wellFormed && document.firstErrorLine == -1) document.firstErrorLine = lines.lineNumber();
    }
    if (document.mergeDuplicates != 0) {
        for (tSection& section : document.sections) mergeRepeatedKeys(section, document.caseSensitive != 0);
    }
    if (lines.failed()) return fileNotRead;
    for (tSection& section : document.sections) {
        if (section.hasContinuations) joinContinuations(document.text, section);
    }
    return 0;
}

int parseFile(tDocument& document, const wchar_t* widePath) noexcept { return parse(document, widePath, true); }

int parseContent(tDocument& document, const wchar_t* widePath) noexcept { return parse(document, widePath, false); }

}  // namespace nIni
