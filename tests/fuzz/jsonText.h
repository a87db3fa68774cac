#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "check.h"

/// JSON texts by the writer's rules written plainly, and another library's opinion of them.
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

/// The writer copies other control characters, which no reader takes.
inline bool holdsControlCharacter(const std::string& text) {
    for (const char character : text) {
        if (character >= 0 && character < ' ') return true;
    }
    return false;
}

/// ASCII, and no control character that is not escaped: what every reader takes.
inline bool isReadable(char character) { return character >= ' ' && character <= '~'; }

/// The other library takes the text, once what it does not take is replaced.
inline void check(std::string text) {
    for (char& character : text) character = isReadable(character) ? character : '?';
    ::check(nlohmann::json::accept(text), "JSON");
}

}  // namespace jsonText
