#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

/// A small check of XML for tests.
namespace support {

/// Returns what is wrong with text between tags or quotes, or an empty text.
inline std::string textError(std::string_view text) {
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
        const std::string_view entity = text.substr(at, text.find(';', at) - at + 1);
        if (entity != "&amp;" && entity != "&lt;" && entity != "&gt;" && entity != "&quot;") {
            return "entity " + std::string(entity.substr(0, 10));
        }
    }
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < ' ' && c != '\n') return "control character";
    }
    return text.find('<') == std::string_view::npos ? "" : "< in text";
}

/// Returns what is wrong with the rest of a tag after its name, or an empty text.
inline std::string attributesError(std::string_view attributes) {
    for (;;) {
        const std::size_t value = attributes.find("=\"");
        if (value == std::string_view::npos) return "";
        const std::size_t close = attributes.find('"', value + 2);
        if (close == std::string_view::npos) return "unfinished attribute";
        std::string error = textError(attributes.substr(value + 2, close - value - 2));
        if (!error.empty()) return error;
        attributes.remove_prefix(close + 1);
    }
}

/// Returns the position of the > that ends the tag at the text's beginning, or the text's size.
inline std::size_t endOfTag(std::string_view text) {
    bool quoted = false;
    const auto end = std::find_if(text.begin(), text.end(), [&quoted](char c) {
        if (c == '"') quoted = !quoted;
        return c == '>' && !quoted;
    });
    return static_cast<std::size_t>(end - text.begin());
}

/// Reads a tag, without its brackets. Adds the element to the open ones or removes it. Returns what is wrong with it,
/// or an empty text.
inline std::string tagError(std::string_view tag, std::vector<std::string>& open) {
    if (tag.starts_with('/')) {
        if (open.empty() || open.back() != tag.substr(1)) return "unexpected <" + std::string(tag);
        open.pop_back();
        return "";
    }
    const bool empty = tag.ends_with('/');
    if (empty) tag.remove_suffix(1);
    if (tag.empty() || std::isalpha(static_cast<unsigned char>(tag.front())) == 0) return "bad element";
    const std::size_t name = std::min(tag.find(' '), tag.size());
    if (!empty) open.emplace_back(tag.substr(0, name));
    return attributesError(tag.substr(name));
}

/// Returns what makes the text not well-formed, or an empty text. Knows elements, attributes in double quotes and the
/// predefined entities: what the tool writes.
inline std::string markupError(std::string_view text) {
    std::vector<std::string> open;
    while (!text.empty()) {
        const std::size_t tag = std::min(text.find('<'), text.size());
        std::string error = textError(text.substr(0, tag));
        text.remove_prefix(tag);
        if (error.empty() && !text.empty()) {
            const std::size_t end = endOfTag(text);
            if (end == text.size()) return "unfinished tag";
            error = tagError(text.substr(1, end - 1), open);
            text.remove_prefix(end + 1);
        }
        if (!error.empty()) return error;
    }
    return open.empty() ? "" : "unclosed <" + open.back();
}

}  // namespace support
