// The parser against its rules written down once more in the plainest way: the whole text at once, every search from
// the beginning of a list. Sections, keys, quotes, lines and all look-ups have to be the same.
#include <sys/mman.h>
#include <unistd.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ini/parser.h"

namespace {

using std::string_view_literals::operator""sv;

struct tExpectedKey {
    std::string name;
    std::string value;
    char quote;
    int line;
};

struct tExpectedSection {
    std::string name;
    int line;
    std::vector<tExpectedKey> keys;
};

/// The same fields as a document, none of its code.
struct tExpected {
    unsigned flags = 0;
    bool merge = true;
    bool caseSensitive = false;
    std::vector<tExpectedSection> sections;
    int current = -1;
    int firstErrorLine = -1;

    bool same(const std::string& a, const std::string& b) const {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const auto left = static_cast<unsigned char>(a[i]);
            const auto right = static_cast<unsigned char>(b[i]);
            if (caseSensitive ? left != right : std::tolower(left) != std::tolower(right)) return false;
        }
        return true;
    }

    template <class tRecord>
    int find(const std::vector<tRecord>& records, const std::string& name) const {
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (same(records[i].name, name)) return static_cast<int>(i);
        }
        return -1;
    }

    int findSection(const std::string& name) {
        if (current >= 0 && same(sections[static_cast<std::size_t>(current)].name, name)) return current;
        const int found = find(sections, name);
        if (found >= 0) current = found;
        return found;
    }

    void header(const std::string& name, int line) {
        const int found = merge ? findSection(name) : -1;
        if (found >= 0) {
            sections[static_cast<std::size_t>(found)].line = line;
        } else {
            sections.push_back({name, line, {}});
            current = static_cast<int>(sections.size()) - 1;
        }
    }

    void key(tExpectedKey key) {
        if (current < 0 && (flags & 8U) == 0) return;
        if (current < 0) header("(null)", -1);
        std::vector<tExpectedKey>& keys = sections[static_cast<std::size_t>(current)].keys;
        const int found = merge ? find(keys, key.name) : -1;
        if (found >= 0) {
            key.name = keys[static_cast<std::size_t>(found)].name;
            keys[static_cast<std::size_t>(found)] = key;
        } else {
            keys.push_back(key);
        }
    }
};

std::vector<std::string> split(std::string_view text) {
    std::vector<std::string> lines;
    char last = 0;
    std::size_t i = 0;
    const auto terminator = [&] { return i < text.size() && (text[i] == '\r' || text[i] == '\n' || text[i] == '\0'); };
    while (i < text.size()) {
        if (terminator() && text[i] != last) ++i;
        if (i == text.size()) break;
        std::string line;
        while (i < text.size() && !terminator()) line += text[i++];
        lines.push_back(line);
        if (i < text.size()) last = text[i++];
    }
    return lines;
}

std::string trim(std::string text) {
    const auto space = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    while (!text.empty() && space(text.front())) text.erase(0, 1);
    while (!text.empty() && space(text.back())) text.pop_back();
    return text;
}

/// False for a malformed line.
bool expectLine(tExpected& expected, const std::string& whole, int number) {
    const std::string line = trim(whole);
    if (line.empty()) return false;
    if (line[0] == ';') return true;
    if (line[0] == '[') {
        std::string name;
        for (std::size_t i = 1;; ++i) {
            if (i == line.size()) return false;
            if (line[i] == ']') break;
            name += line[i];
        }
        name = trim(name);
        if (name.empty()) return false;
        expected.header(name, number);
        return true;
    }
    std::size_t end = 0;
    while (end < line.size() && line[end] != '=' && (line[end] != ':' || (expected.flags & 8U) == 0)) ++end;
    if (end == line.size()) return false;
    std::size_t start = end + 1;
    if (line[end] == ':' && start < line.size() && line[start] == '=') ++start;
    const std::string name = trim(line.substr(0, end));
    std::string value = trim(line.substr(start));
    if (name.empty() || (value.empty() && (expected.flags & 1U) == 0)) return false;
    char quote = 0;
    for (const auto& [character, flag] : {std::pair{'"', 2U}, std::pair{'\'', 4U}}) {
        const bool enclosed = value.size() >= 2 && value.front() == character && value.back() == character;
        if (quote != 0 || !enclosed || (expected.flags & flag) == 0) continue;
        value = value.substr(1, value.size() - 2);
        quote = character;
    }
    expected.key({name, value, quote, number});
    return true;
}

/// The length of the stem of "stem Line12", or -1; whether the number is 1.
int stemSize(const std::string& name, bool& one) {
    std::size_t digits = name.size();
    while (digits > 0 && std::isdigit(static_cast<unsigned char>(name[digits - 1])) != 0) --digits;
    if (digits == name.size() || digits < 5 || name.substr(digits - 5, 5) != " Line") return -1;
    std::string number = name.substr(digits);
    while (number.size() > 1 && number[0] == '0') number.erase(0, 1);
    one = number == "1";
    return static_cast<int>(digits) - 5;
}

void expectJoined(std::vector<tExpectedKey>& keys) {
    std::vector<tExpectedKey> joined;
    bool inRun = false;
    for (const tExpectedKey& key : keys) {
        bool one = false;
        const int stem = stemSize(key.name, one);
        if (inRun && stem >= 0 && !one) {
            joined.back().value += key.value;
            continue;
        }
        joined.push_back(key);
        inRun = one;
        if (one) joined.back().name.resize(static_cast<std::size_t>(stem));
    }
    keys = joined;
}

int expect(tExpected& expected, std::string_view text) {
    for (const std::string_view mark : {"\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv, "\xFF\xFE"sv, "\xFE\xFF"sv}) {
        if (text.substr(0, mark.size()) == mark) return -3;
    }
    if (text.substr(0, 3) == "\xEF\xBB\xBF"sv) text.remove_prefix(3);
    int number = 0;
    for (const std::string& line : split(text)) {
        ++number;
        const bool wellFormed = expectLine(expected, line, number);
        if (!wellFormed && expected.firstErrorLine < 0) expected.firstErrorLine = number;
    }
    for (tExpectedSection& section : expected.sections) expectJoined(section.keys);
    return 0;
}

void demand(bool truth, const char* what) {
    if (truth) return;
    std::fprintf(stderr, "not as expected: %s\n", what);
    std::abort();
}

void compare(const nIni::tDocument& document, const tExpected& expected) {
    demand(document.firstErrorLine == expected.firstErrorLine, "first error line");
    demand(document.sections.size() == expected.sections.size(), "number of sections");
    demand((document.currentSection == nullptr ? -1 : document.currentSection - document.sections.data()) ==
               expected.current,
           "current section");
    for (std::size_t s = 0; s < document.sections.size(); ++s) {
        const nIni::tSection& section = document.sections[s];
        demand(section.name == expected.sections[s].name, "section name");
        demand(section.line == expected.sections[s].line, "section line");
        demand(section.keys.size() == expected.sections[s].keys.size(), "number of keys");
        for (std::size_t k = 0; k < section.keys.size(); ++k) {
            demand(section.keys[k].name == expected.sections[s].keys[k].name, "key name");
            demand(section.keys[k].value == expected.sections[s].keys[k].value, "value");
            demand(section.keys[k].quote == expected.sections[s].keys[k].quote, "quote");
            demand(section.keys[k].line == expected.sections[s].keys[k].line, "key line");
        }
    }
}

/// Looks up every name that the document holds, and some that it may not.
void compareLookUps(nIni::tDocument& document, tExpected& expected) {
    std::set<std::string> names{"", "x", "(null)"};
    for (const tExpectedSection& section : expected.sections) {
        names.insert(section.name);
        for (const tExpectedKey& key : section.keys) names.insert(key.name);
    }
    for (std::string name : std::set<std::string>(names)) {
        for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        names.insert(name);
    }
    for (const std::string& name : names) {
        const nIni::tSection* const found = findSection(document, name);
        demand((found == nullptr ? -1 : found - document.sections.data()) == expected.findSection(name), "findSection");
        for (std::size_t s = 0; s < document.sections.size(); ++s) {
            nIni::tSection& section = document.sections[s];
            const nIni::tKey* const key = findKey(section, expected.caseSensitive, name);
            const int position = expected.find(expected.sections[s].keys, name);
            demand((key == nullptr ? -1 : key - section.keys.data()) == position, "findKey");
        }
    }
}

/// A file in memory with a path to open it by.
class tMemoryFile {
public:
    void write(std::string_view text) const {
        demand(ftruncate(descriptor_, 0) == 0, "ftruncate");
        demand(pwrite(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()), "pwrite");
    }
    std::wstring path() const { return L"/proc/self/fd/" + std::to_wstring(descriptor_); }

private:
    int descriptor_ = memfd_create("ini", 0);
};

}  // namespace

/// Two bytes of options and then the text. Some texts get a comment before them that brings them to the end of the
/// first chunk that the parser reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const unsigned options = data[0];
    std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    if ((options & 64U) != 0) text.insert(0, std::string(1900U + data[1], ';') + '\n');

    static const tMemoryFile file;
    file.write(text);
    nIni::tDocument document;
    document.flags = options & 15U;
    document.mergeDuplicates = (options & 16U) == 0 ? 1 : 0;
    document.caseSensitive = (options & 32U) == 0 ? 0 : 1;
    const int result = parseFile(document, file.path().c_str());

    tExpected expected;
    expected.flags = document.flags;
    expected.merge = document.mergeDuplicates != 0;
    expected.caseSensitive = document.caseSensitive != 0;
    demand(result == expect(expected, text), "result");
    compare(document, expected);
    compareLookUps(document, expected);
    return 0;
}
