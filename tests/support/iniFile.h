#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>

#include "ini/parser.h"
#include "tests/support/folder.h"

/// A file for one test, in its own folder.
class tIniFile {
public:
    explicit tIniFile(std::string_view content, const std::filesystem::path& name = "test.ini")
        : path_(folder_.path() / name) {
        write(content);
    }

    void write(std::string_view content) const { folder_.write(path_, content); }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    /// Returns the path in the parser's form. wstring() would depend on the locale natively.
    [[nodiscard]] std::wstring widePath() const {
        const std::u32string path = path_.u32string();
        return {path.begin(), path.end()};
    }
    [[nodiscard]] int parseInto(nIni::tDocument& document) const {
        return nIni::parseFile(document, widePath().c_str());
    }

private:
    support::tFolder folder_{"ini"};
    std::filesystem::path path_;
};

/// Returns the document as text, one line for each section and key: "[Service]@1", "Name=value@2", with the quote after
/// the value if one was stripped, and "error@3" at the end if a line is malformed. Each ends with a line feed.
inline std::string describe(const nIni::tDocument& document) {
    std::ostringstream text;
    for (const nIni::tSection& section : document.sections) {
        text << '[' << section.name << "]@" << section.line << '\n';
        for (const nIni::tKey& key : section.keys) {
            text << key.name << '=' << key.value;
            if (key.quote != 0) text << key.quote;
            text << '@' << key.line << '\n';
        }
    }
    if (document.firstErrorLine != -1) text << "error@" << document.firstErrorLine << '\n';
    return text.str();
}

/// Returns the result of `describe` for a text parsed with these flags, or the code of a failed parse.
inline std::string parsed(std::string_view content, std::uint32_t flags = 3) {
    nIni::tDocument document;
    document.flags = flags;
    const int result = tIniFile(content).parseInto(document);
    return result == 0 ? describe(document) : std::to_string(result);
}
