#include "tool/check/descriptionValues.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "tool/check/requiresValue.h"
#include "tool/check/wording.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nWording::quoted;

constexpr bool isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

constexpr bool isAscii(char c) noexcept { return static_cast<unsigned char>(c) < 0x80; }

/// Characters that look like a blank, or like nothing, but are none for the host: no-break, en to hair, zero-width,
/// narrow and ideographic spaces, and the byte-order mark.
constexpr std::array<std::string_view, 17> strangeBlanks{"\u00A0", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
                                                         "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A",
                                                         "\u200B", "\u202F", "\u205F", "\u3000", "\uFEFF"};

bool hasOuterBlank(std::string_view value) {
    if (value.empty()) return false;
    if (isBlank(value.front()) || isBlank(value.back())) return true;
    if (isAscii(value.front()) && isAscii(value.back())) return false;
    return std::any_of(strangeBlanks.begin(), strangeBlanks.end(),
                       [value](std::string_view blank) { return value.starts_with(blank) || value.ends_with(blank); });
}

bool hasOuterStrangeBlank(const std::vector<std::string>& names) {
    return std::any_of(names.begin(), names.end(), hasOuterBlank);
}

bool hasQuotes(std::string_view value) {
    const bool single = value.size() > 1 && value.starts_with('\'') && value.ends_with('\'');
    return single || value.find('"') != std::string_view::npos;
}

bool hasComment(std::string_view value) {
    const std::size_t semicolon = value.find(';');
    return semicolon == 0 || (semicolon != std::string_view::npos && isBlank(value[semicolon - 1]));
}

void checkValue(const nIni::tKey& key, std::string_view name, const tPluginDescription& description,
                tFileFindings& findings) {
    // Surrounding blanks of a name are a finding of their own, and the host removes those of dependencies.
    const bool outerBlank = name == nKeys::dependencies ? hasOuterStrangeBlank(description.dependencies)
                                                        : name != nKeys::name && hasOuterBlank(key.value);
    const auto add = [&](std::string_view rule, std::string_view what) {
        findings.add(rule, key.line, std::string(name) + " is " + quoted(key.value) + ", " + std::string(what));
    };
    if (outerBlank) add("blanks-in-value", "with a blank at an end");
    if (hasQuotes(key.value)) add("quote-in-value", "quotes included");
    if (hasComment(key.value)) add("comment-in-value", "comment included");
}

}  // namespace

void findInValues(const tKeys& keys, tPluginDescription& description, tFileFindings& findings) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const nIni::tKey* const key = keys[i];
        const std::string_view name = nKeys::all[i];
        if (key == nullptr) continue;
        if (name == nKeys::requiresMask) {
            findInRequires(key->value, key->line, description.requiresMask, findings);
        } else {
            checkValue(*key, name, description, findings);
        }
    }
}

}  // namespace nCheck
