#include "ini/parser.h"

#include <algorithm>
#include <new>

#include "ini/file.h"
#include "ini/lineReader.h"

namespace nIni {
namespace {

/// What isspace says in the C locale. The same for bytes above 127: none of them is a space.
constexpr bool isSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimStart(std::string_view text) {
    return {std::find_if_not(text.begin(), text.end(), isSpace), text.end()};
}

std::string_view trimEnd(std::string_view text) {
    return {text.begin(), std::find_if_not(text.rbegin(), text.rend(), isSpace).base()};
}

std::string_view trim(std::string_view text) { return trimEnd(trimStart(text)); }

void openSection(tDocument& document, std::string_view name, std::int32_t line) {
    if (document.mergeDuplicates != 0) {
        if (tSection* const section = findSection(document, name)) {
            section->line = line;
            return;
        }
    }
    document.sections.push_back({std::string(name), {}, line, {}});
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

void addKey(tDocument& document, std::string_view name, std::string_view value, std::int32_t line) {
    if (document.currentSection == nullptr) {
        if ((document.flags & colonSeparates) == 0) return;
        openSection(document, "(null)", -1);
    }
    tSection& section = *document.currentSection;
    const char quote = stripQuotes(value, document.flags);
    if (document.mergeDuplicates != 0) {
        if (tKey* const key = findKey(section, document.caseSensitive != 0, name)) {
            key->value = value;
            key->quote = quote;
            key->line = line;
            return;
        }
    }
    section.keys.push_back({std::string(name), std::string(value), quote, line});
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
    const auto separator =
        std::find_if(line.begin(), line.end(), [colon](char c) { return c == '=' || (colon && c == ':'); });
    if (separator == line.end()) return false;
    const std::string_view name = trimEnd({line.begin(), separator});
    const std::string_view rest(separator, line.end());
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

/// A name like "Text Line12" in its parts.
struct tContinuation {
    std::size_t stemSize;     ///< that of "Text"
    std::string_view number;  ///< "12", without leading zeros
};

/// Nothing when the name does not end in " Line" and digits. Case counts here.
std::optional<tContinuation> splitContinuation(std::string_view name) {
    constexpr std::string_view mark = " Line";
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const std::string_view digits(std::find_if_not(name.rbegin(), name.rend(), isDigit).base(), name.end());
    const std::size_t markEnd = name.size() - digits.size();
    if (digits.empty() || !name.substr(0, markEnd).ends_with(mark)) return std::nullopt;
    return tContinuation{markEnd - mark.size(), digits.substr(std::min(digits.find_first_not_of('0'), digits.size()))};
}

/// Joins each run of continuation keys into its first key, which keeps its line and quote. A run begins with number 1
/// and lasts while such keys follow, whatever their stems and numbers are, up to the next number 1.
void joinContinuations(tSection& section) {
    tKey* run = nullptr;
    auto kept = section.keys.begin();
    for (tKey& key : section.keys) {
        const std::optional<tContinuation> continuation = splitContinuation(key.name);
        const bool first = continuation && continuation->number == "1";
        if (run != nullptr && continuation && !first) {
            run->value += key.value;
            continue;
        }
        if (&key != &*kept) *kept = std::move(key);
        run = first ? &*kept : nullptr;
        if (first) {
            kept->name.resize(continuation->stemSize);
            section.keyIndex.reset();
        }
        ++kept;
    }
    section.keys.erase(kept, section.keys.end());
}

int parseStream(tDocument& document, std::FILE* file) {
    tLineReader lines(file);
    const bool narrow = lines.skipByteOrderMark();
    if (lines.failed()) return fileNotRead;
    if (!narrow) return wideText;

    document.currentSection = nullptr;
    document.sections.clear();
    document.sectionIndex.reset();
    document.firstErrorLine = -1;
    while (const std::optional<std::string_view> line = lines.next()) {
        const bool wellFormed = parseLine(document, *line, lines.lineNumber());
        if (!wellFormed && document.firstErrorLine == -1) document.firstErrorLine = lines.lineNumber();
    }
    if (lines.failed()) return fileNotRead;
    std::for_each(document.sections.begin(), document.sections.end(), joinContinuations);
    return 0;
}

void rememberFile(tDocument& document, const wchar_t* widePath, std::FILE* file) {
    document.fileTime = lastWriteTime(file);
    // By way of a copy: the path may be the document's own from the parse before.
    const std::wstring_view path(widePath);
    decltype(document.filePath) kept{};
    if (path.size() < kept.size()) path.copy(kept.data(), path.size());
    document.filePath = kept;
}

}  // namespace

int parseFile(tDocument& document, const wchar_t* widePath) noexcept try {
    const tFile file = openFile(widePath);
    if (!file) return exists(widePath) ? fileNotOpened : fileNotFound;
    const int result = parseStream(document, file.get());
    if (result == 0) rememberFile(document, widePath, file.get());
    return result;
} catch (const std::bad_alloc&) {
    return outOfMemory;
}

}  // namespace nIni
