#include "tool/pe/symptoms.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool skip(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start)) return false;
    text.remove_prefix(start.size());
    return true;
}

void skipAny(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

/// Takes an identifier with its length in front of it, such as "4Name".
std::optional<std::string_view> takeCounted(std::string_view& text) {
    std::size_t length = 0;
    const auto [digitsEnd, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    const auto digits = static_cast<std::size_t>(digitsEnd - text.data());
    if (error != std::errc() || length > text.size() - digits) return std::nullopt;
    const std::string_view name = text.substr(digits, length);
    text.remove_prefix(digits + length);
    return name;
}

/// Returns the function's own name, without namespaces and classes, of a name as GCC and Clang mangle it, or nothing.
std::string_view unmangledItanium(std::string_view text) {
    if (!skip(text, "_Z") && !skip(text, "__Z")) return {};  // 32-bit compilers add an underscore
    skip(text, "L");                                         // internal
    if (!skip(text, "N")) return takeCounted(text).value_or(std::string_view());
    skipAny(text, "rVKRO");  // const and the like
    skip(text, "St");        // the namespace std
    std::string_view last;
    while (!text.empty() && isDigit(text.front())) {
        const std::optional<std::string_view> name = takeCounted(text);
        if (!name) return {};
        last = *name;
    }
    // What follows are template arguments or the end, unless it is a constructor or an operator.
    return text.starts_with('E') || text.starts_with('I') ? last : std::string_view();
}

/// Returns the same of a name as Microsoft's compiler mangles it.
std::string_view unmangledMicrosoft(std::string_view text) {
    if (!skip(text, "?")) return {};
    return text.substr(0, text.find('@'));
}

/// Removes an underscore or "@" in front, and "@8" or "@@8" at the end.
std::string_view undecorated(std::string_view text) {
    const std::size_t at = text.find_last_not_of("0123456789");
    if (at != std::string_view::npos && at + 1 < text.size() && text[at] == '@') {
        text = text.substr(0, text.find_last_not_of('@', at) + 1);
    }
    if (text.starts_with('@') || text.starts_with('_')) text.remove_prefix(1);
    return text;
}

std::string_view plainName(std::string_view text) {
    for (const auto unmangled : {unmangledItanium(text), unmangledMicrosoft(text)}) {
        if (!unmangled.empty()) return unmangled;
    }
    return undecorated(text);
}

bool isDebugRuntime(std::string_view library) {
    static constexpr std::array<std::string_view, 9> families{"ucrtbase", "vcruntime", "vccorlib", "vcomp", "msvcrt",
                                                              "msvcr",    "msvcp",     "concrt",   "mfc"};
    const std::string name = toLowerAscii(library);
    if (!name.ends_with("d.dll")) return false;
    return std::ranges::any_of(families, [&name](std::string_view family) {
        std::string_view rest = name;
        if (!skip(rest, family)) return false;
        skipAny(rest, "0123456789_mu");  // "140", "140_1", and in MFC's "m140u" what else a library is for
        return rest == "d.dll";
    });
}

}  // namespace

std::vector<std::string> nearMisses(const tLibrary& library, std::string_view entry) {
    const std::string meant = toLowerAscii(undecorated(entry));
    std::vector<std::string> found;
    if (meant.empty()) return found;
    for (const tExport& candidate : library.exports) {
        if (candidate.name.empty() || candidate.name == entry) continue;
        if (toLowerAscii(plainName(candidate.name)) == meant) found.push_back(candidate.name);
    }
    return found;
}

std::vector<std::string> debugRuntimes(const tLibrary& library) {
    std::vector<std::string> found;
    for (const tImport& import : library.imports) {
        if (isDebugRuntime(import.library)) found.push_back(import.library);
    }
    return found;
}

}  // namespace nPe
