#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "check.h"

/// JSON texts composed plainly by the writer's rules, and checks of them with another library.
namespace jsonText {

inline std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        const std::size_t found = std::string("\b\t\n\f\r\"\\").find(character);
        if (found == std::string::npos) {
            result += character;
        } else {
            result += '\\';
            result += "btnfr\"\\"[found];
        }
    }
    return result + "\"";
}

/// The writer copies other control characters, which no JSON reader accepts.
inline bool containsControlCharacter(const std::string& text) {
    return std::ranges::any_of(text, [](char character) { return character >= 0 && character < ' '; });
}

/// Printable ASCII, which every reader accepts.
inline bool isReadable(char character) { return character >= ' ' && character <= '~'; }

/// Checks that the other library accepts the text once the bytes that it cannot accept are replaced.
inline void check(std::string text) {
    for (char& character : text) character = isReadable(character) ? character : '?';
    ::check(nlohmann::json::accept(text), "JSON");
}

}  // namespace jsonText
