// Compares the parser with the plain implementation in naiveIni.h: sections, keys, quotes, lines and all look-ups must
// be the same, and fields that parsing does not set must be unchanged.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "ini/parser.h"
#include "naiveIni.h"
#include "temporaryFile.h"

namespace {

using std::string_view_literals::operator""sv;

void compareKeys(const std::vector<nIni::tKey>& keys, const std::vector<tNaiveKey>& expected) {
    check(keys.size() == expected.size(), "number of keys");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        check(keys[i].name == expected[i].name, "key name");
        check(keys[i].value == expected[i].value, "value");
        check(keys[i].quote == expected[i].quote, "quote");
        check(keys[i].line == expected[i].line, "key line");
    }
}

void compare(const nIni::tDocument& document, const tNaiveIni& expected) {
    check(document.firstErrorLine == expected.firstErrorLine, "first error line");
    check(document.sections.size() == expected.sections.size(), "number of sections");
    const auto current = document.currentSection == nullptr ? -1 : document.currentSection - document.sections.data();
    check(current == expected.current, "current section");
    for (std::size_t i = 0; i < document.sections.size(); ++i) {
        check(document.sections[i].name == expected.sections[i].name, "section name");
        check(document.sections[i].line == expected.sections[i].line, "section line");
        compareKeys(document.sections[i].keys, expected.sections[i].keys);
    }
}

void compareOptions(const nIni::tDocument& document, const tNaiveIni& expected) {
    check(document.flags == expected.flags, "flags");
    check((document.mergeDuplicates != 0) == expected.merge, "merge duplicates");
    check((document.caseSensitive != 0) == expected.caseSensitive, "case-sensitive names");
    check(document.lastKeyLine == -1, "last key line");
    check(document.layout == std::array<std::int32_t, 2>{80, 14}, "layout");
}

/// Returns the name itself, or another one that is equal, or almost equal, if case is ignored.
std::string variant(std::string name, std::size_t kind) {
    if (name.empty()) return name;
    switch (kind % 4) {
        case 0: name.back() = static_cast<char>(name.back() ^ 0x20); break;  // letters, and bytes that resemble them
        case 1: name.front() = static_cast<char>(name.front() ^ 0x20); break;
        case 2: name.pop_back(); break;
        default: name += name.front(); break;
    }
    return name;
}

std::vector<std::string> namesToLookUp(const tNaiveIni& expected) {
    std::set<std::string> names{"", "x", "(null)", "service"};
    for (const tNaiveSection& section : expected.sections) {
        names.insert(section.name);
        for (const tNaiveKey& key : section.keys) names.insert(key.name);
    }
    std::vector<std::string> list(names.begin(), names.end());
    for (const std::string& name : names) list.push_back(variant(name, list.size()));
    return list;
}

void compareKeyLookUps(nIni::tSection& section, const tNaiveSection& expected, bool caseSensitive,
                       const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const nIni::tKey* const key = findKey(section, caseSensitive, name);
        check((key == nullptr ? -1 : key - section.keys.data()) == tNaiveIni::findKey(expected, caseSensitive, name),
              "findKey");
    }
}

/// Looks up every name in the document, and some that may not be in it; keys both with and without case.
void compareLookUps(nIni::tDocument& document, tNaiveIni& expected) {
    const std::vector<std::string> names = namesToLookUp(expected);
    for (const std::string& name : names) {
        const nIni::tSection* const found = findSection(document, name);
        check((found == nullptr ? -1 : found - document.sections.data()) == expected.findSection(name), "findSection");
    }
    // Only some of many sections, so that an input takes less than a second.
    const std::size_t step = 1 + names.size() * document.sections.size() / 2000;
    for (std::size_t i = 0; i < document.sections.size(); i += step) {
        compareKeyLookUps(document.sections[i], expected.sections[i], expected.caseSensitive, names);
        compareKeyLookUps(document.sections[i], expected.sections[i], !expected.caseSensitive, names);
    }
}

/// Composes a text from one byte per part, so that small changes of the input produce other well-formed files.
std::string textFromParts(std::string_view bytes) {
    constexpr std::array parts{"\n"sv,     "\r"sv,      "\r\n"sv,   "\n\r"sv,        "\0"sv,   "["sv,      "]"sv,
                               "="sv,      ":"sv,       ":="sv,     ";"sv,           R"(")"sv, "'"sv,      " "sv,
                               "\t"sv,     "\v\f"sv,    "a"sv,      "A"sv,           "b"sv,    " Line1"sv, "@"sv,
                               " Line2"sv, " Line01"sv, " line1"sv, "`"sv,           "0"sv,    "\xC4"sv,   "(null)]"sv,
                               "\xE4"sv,   "service"sv, "{"sv,      "\xEF\xBB\xBF"sv};
    std::string text;
    for (const char byte : bytes) {
        const unsigned code = static_cast<unsigned char>(byte);
        const std::string number = std::to_string(code % 32 / 2);
        const bool odd = code % 2 != 0;
        switch (code / 32) {
            case 0: text += parts[code]; break;
            case 1: text += (odd ? "Key" : "kEY") + number + "=" + number + "\n"; break;
            case 2: text += (odd ? "key" : "KEYS") + number + "='" + number + "'\n"; break;
            case 3: text += (odd ? "[Part" : "[pART") + number + "]\n"; break;
            case 4: text += (odd ? "x Line" : "y Line") + number + "=" + number + "\n"; break;
            case 5: text += text.size() < 1024 ? text.substr(text.size() * (code % 32) / 32) : ""; break;
            default: text += static_cast<char>(code - 6 * 32 + ' '); break;
        }
    }
    return text;
}

/// A comment that moves the following text to the end of a reader's buffer. One input in eight gets one.
std::string padding(std::size_t code) {
    constexpr std::size_t line = 2084;
    constexpr std::array<std::size_t, 8> sizes{4 + line, line, 4 + 2 * line,  31 * line,
                                               4096,     8192, 4 + 31 * line, 65536};
    return code < 224 ? "" : std::string(sizes[code % 8] - 1 - code / 8 % 4 * 3, ';') + '\n';
}

void parseBoth(nIni::tDocument& document, tNaiveIni& expected, std::string_view text) {
    static const tTemporaryFile file;
    file.write(text);
    const std::wstring path = file.widePath();
    document.filePath[0] = 0;
    const int result = parseFile(document, path.c_str());
    check(result == expected.parse(text), "result");
    check(document.filePath.data() == (result == 0 ? path : L""), "path");
    compare(document, expected);
    compareOptions(document, expected);
}

}  // namespace

/// The input: one byte of options, one that selects the padding and whether the document had content before, then the
/// text or the codes of its parts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const unsigned options = data[0];
    std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    if ((options & 64U) != 0) text = textFromParts(text);
    text.insert(0, padding(data[1]));

    nIni::tDocument document;
    tNaiveIni expected;
    expected.flags = document.flags = options & 15U;
    expected.merge = (options & 16U) == 0;
    document.mergeDuplicates = expected.merge ? 1 : 0;
    expected.caseSensitive = (options & 32U) != 0;
    document.caseSensitive = expected.caseSensitive ? 1 : 0;

    if (data[1] % 4 == 1) {
        parseBoth(document, expected, std::string_view(text).substr(text.size() / 2));
        compareLookUps(document, expected);
    }
    parseBoth(document, expected, text);
    compareLookUps(document, expected);
    compareOptions(document, expected);
    return 0;
}
