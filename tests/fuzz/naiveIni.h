#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A second, plain implementation of the rules for INI files, with none of the parser's code: it reads the whole text
/// character by character, and every search starts at the beginning of a list.

struct tNaiveKey {
    std::string name;
    std::string value;
    char quote;
    int line;
};

struct tNaiveSection {
    std::string name;
    int line;
    std::vector<tNaiveKey> keys;
};

struct tNaiveIni {
    unsigned flags = 0;
    bool merge = true;
    bool caseSensitive = false;
    std::vector<tNaiveSection> sections;
    int current = -1;
    int firstErrorLine = -1;

    /// The expected result of parseFile for a file with this text.
    int parse(std::string_view text);
    /// Positions, -1 for none.
    int findSection(const std::string& name);
    [[nodiscard]] static int findKey(const tNaiveSection& section, bool caseSensitive, const std::string& name);
    /// The value in the section that findSection finds; empty if it does not exist.
    std::string value(const std::string& section, const std::string& key);

private:
    bool line(std::string text, int number);
    void header(const std::string& name, int number);
    void key(tNaiveKey key);
};

namespace naive {

inline bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

inline std::string trim(std::string text) {
    while (!text.empty() && isSpace(text.front())) text.erase(0, 1);
    while (!text.empty() && isSpace(text.back())) text.pop_back();
    return text;
}

inline bool same(const std::string& a, const std::string& b, bool caseSensitive) {
    if (a.size() != b.size()) return false;
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (caseSensitive ? a[i] != b[i] : lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

template <class tRecord>
int find(const std::vector<tRecord>& records, bool caseSensitive, const std::string& name) {
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (same(records[i].name, name, caseSensitive)) return static_cast<int>(i);
    }
    return -1;
}

/// CR, LF and zero end a line. At the beginning of a line, one that differs from the last line end is skipped.
inline std::vector<std::string> split(std::string_view text) {
    const auto endsLine = [](char c) { return c == '\r' || c == '\n' || c == '\0'; };
    std::vector<std::string> lines;
    std::string line;
    char last = 0;
    bool atStart = true;
    for (const char c : text) {
        if (atStart && endsLine(c) && c != last) {
            atStart = false;  // only one is skipped
        } else if (endsLine(c)) {
            lines.push_back(std::exchange(line, ""));
            last = c;
            atStart = true;
        } else {
            line += c;
            atStart = false;
        }
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

/// Returns the length of the stem of "stem Line12", or -1, and whether the number is 1.
inline int stemSize(const std::string& name, bool& one) {
    std::size_t digits = name.size();
    while (digits > 0 && name[digits - 1] >= '0' && name[digits - 1] <= '9') --digits;
    if (digits == name.size() || digits < 5 || name.substr(digits - 5, 5) != " Line") return -1;
    std::string number = name.substr(digits);
    while (number.size() > 1 && number[0] == '0') number.erase(0, 1);
    one = number == "1";
    return static_cast<int>(digits) - 5;
}

inline std::vector<tNaiveKey> joined(const std::vector<tNaiveKey>& keys) {
    std::vector<tNaiveKey> result;
    bool inRun = false;
    for (const tNaiveKey& key : keys) {
        bool one = false;
        const int stem = stemSize(key.name, one);
        if (inRun && stem >= 0 && !one) {
            result.back().value += key.value;
            continue;
        }
        result.push_back(key);
        inRun = one;
        if (one) result.back().name.resize(static_cast<std::size_t>(stem));
    }
    return result;
}

}  // namespace naive

inline int tNaiveIni::findSection(const std::string& name) {
    if (current >= 0 && naive::same(sections[static_cast<std::size_t>(current)].name, name, caseSensitive)) {
        return current;
    }
    const int found = naive::find(sections, caseSensitive, name);
    if (found >= 0) current = found;
    return found;
}

inline int tNaiveIni::findKey(const tNaiveSection& section, bool caseSensitive, const std::string& name) {
    return naive::find(section.keys, caseSensitive, name);
}

inline std::string tNaiveIni::value(const std::string& section, const std::string& key) {
    const int found = findSection(section);
    if (found < 0) return "";
    const tNaiveSection& keys = sections[static_cast<std::size_t>(found)];
    const int position = findKey(keys, caseSensitive, key);
    return position < 0 ? "" : keys.keys[static_cast<std::size_t>(position)].value;
}

inline void tNaiveIni::header(const std::string& name, int number) {
    const int found = merge ? findSection(name) : -1;
    if (found >= 0) {
        sections[static_cast<std::size_t>(found)].line = number;
    } else {
        sections.push_back({name, number, {}});
        current = static_cast<int>(sections.size()) - 1;
    }
}

inline void tNaiveIni::key(tNaiveKey key) {
    if (current < 0 && (flags & 8U) == 0) return;
    if (current < 0) header("(null)", -1);
    tNaiveSection& section = sections[static_cast<std::size_t>(current)];
    const int found = merge ? findKey(section, caseSensitive, key.name) : -1;
    if (found >= 0) {
        tNaiveKey& earlier = section.keys[static_cast<std::size_t>(found)];
        key.name = earlier.name;
        earlier = key;
    } else {
        section.keys.push_back(key);
    }
}

/// Returns false for a malformed line.
inline bool tNaiveIni::line(std::string text, int number) {
    text = naive::trim(text);
    if (text.empty()) return false;
    if (text[0] == ';') return true;
    if (text[0] == '[') {
        const std::size_t end = text.find(']');
        const std::string name = end == std::string::npos ? "" : naive::trim(text.substr(1, end - 1));
        if (!name.empty()) header(name, number);
        return !name.empty();
    }
    const std::size_t end = text.find_first_of((flags & 8U) != 0 ? "=:" : "=");
    if (end == std::string::npos) return false;
    const bool pair = text.substr(end, 2) == ":=";
    const std::string name = naive::trim(text.substr(0, end));
    std::string value = naive::trim(text.substr(end + (pair ? 2 : 1)));
    if (name.empty() || (value.empty() && (flags & 1U) == 0)) return false;
    char quote = 0;
    if (value.size() >= 2 && value.front() == value.back()) {
        if (value.front() == '"' && (flags & 2U) != 0) quote = '"';
        if (value.front() == '\'' && (flags & 4U) != 0) quote = '\'';
    }
    key({name, quote == 0 ? value : value.substr(1, value.size() - 2), quote, number});
    return true;
}

inline int tNaiveIni::parse(std::string_view text) {
    using std::string_view_literals::operator""sv;
    for (const std::string_view mark : {"\xFF\xFE"sv, "\xFE\xFF"sv, "\0\0\xFE\xFF"sv}) {
        if (text.substr(0, mark.size()) == mark) return -3;
    }
    if (text.substr(0, 3) == "\xEF\xBB\xBF"sv) text.remove_prefix(3);
    sections.clear();
    current = -1;
    firstErrorLine = -1;
    int number = 0;
    for (const std::string& whole : naive::split(text)) {
        ++number;
        const bool wellFormed = line(whole, number);
        if (!wellFormed && firstErrorLine < 0) firstErrorLine = number;
    }
    for (tNaiveSection& section : sections) section.keys = naive::joined(section.keys);
    return 0;
}
