#pragma once

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

/// A small check of XML for tests.
namespace support {

/// Returns what makes the text not well-formed, or an empty text. Knows elements, attributes in double quotes and the
/// predefined entities: what the tool writes.
inline std::string markupError(std::string_view text) {
    std::vector<std::string> open;
    const auto entityError = [](std::string_view content) -> std::string {
        for (std::size_t at = content.find('&'); at != std::string_view::npos; at = content.find('&', at + 1)) {
            const std::string_view entity = content.substr(at, content.find(';', at) - at + 1);
            if (entity != "&amp;" && entity != "&lt;" && entity != "&gt;" && entity != "&quot;" && entity != "&#39;") {
                return "entity " + std::string(entity.substr(0, 10));
            }
        }
        for (const char c : content) {
            if (static_cast<unsigned char>(c) < ' ' && c != '\n') return "control character";
        }
        return content.find('<') == std::string_view::npos ? "" : "< in text";
    };
    while (!text.empty()) {
        const std::size_t tag = text.find('<');
        if (const std::string error = entityError(text.substr(0, tag)); !error.empty()) return error;
        if (tag == std::string_view::npos) break;
        std::size_t end = tag + 1;
        for (bool quoted = false; end < text.size() && (quoted || text[end] != '>'); ++end) {
            if (text[end] == '"') quoted = !quoted;
        }
        if (end == text.size()) return "unfinished tag";
        std::string_view inside = text.substr(tag + 1, end - tag - 1);
        text.remove_prefix(end + 1);
        if (inside.starts_with('/')) {
            if (open.empty() || open.back() != inside.substr(1)) return "unexpected </" + std::string(inside.substr(1));
            open.pop_back();
            continue;
        }
        const bool empty = inside.ends_with('/');
        if (empty) inside.remove_suffix(1);
        const std::size_t name = inside.find(' ');
        if (inside.empty() || std::isalpha(static_cast<unsigned char>(inside.front())) == 0) return "bad element";
        if (!empty) open.emplace_back(inside.substr(0, name));
        while (name != std::string_view::npos && !inside.empty()) {
            const std::size_t value = inside.find("=\"");
            if (value == std::string_view::npos) break;
            const std::size_t close = inside.find('"', value + 2);
            const std::string_view content = inside.substr(value + 2, close - value - 2);
            if (const std::string error = entityError(content); !error.empty()) return error;
            inside.remove_prefix(close + 1);
        }
    }
    return open.empty() ? "" : "unclosed <" + open.back();
}

}  // namespace support
