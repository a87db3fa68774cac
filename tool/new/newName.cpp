#include "tool/new/newName.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "tool/check/similarNames.h"
#include "tool/format.h"
#include "tool/pe/systemLibraries.h"
#include "tool/plainText.h"

namespace nNew {
namespace {

/// The name occurs four times in the path of an object file, and most of Windows' paths have at most 260 characters.
constexpr std::size_t longestName = 48;

// A plug-in may be rewritten in another language, so what one of them reserves is reserved. Words that begin with an
// underscore are not names anyway.
constexpr auto keywords = std::to_array<std::string_view>(
    {// C++, with those of C
     "alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "case", "catch", "char",
     "char8_t", "char16_t", "char32_t", "class", "compl", "concept", "const", "consteval", "constexpr", "constinit",
     "const_cast", "continue", "co_await", "co_return", "co_yield", "decltype", "default", "delete", "do", "double",
     "dynamic_cast", "else", "enum", "explicit", "export", "extern", "false", "float", "for", "friend", "goto", "if",
     "inline", "int", "long", "mutable", "namespace", "new", "noexcept", "not", "not_eq", "nullptr", "operator", "or",
     "or_eq", "private", "protected", "public", "register", "reinterpret_cast", "requires", "restrict", "return",
     "short", "signed", "sizeof", "static", "static_assert", "static_cast", "struct", "switch", "template", "this",
     "thread_local", "throw", "true", "try", "typedef", "typeid", "typename", "typeof", "typeof_unqual", "union",
     "unsigned", "using", "virtual", "void", "volatile", "wchar_t", "while", "xor", "xor_eq",
     // Rust
     "Self", "abstract", "as", "async", "await", "become", "box", "crate", "dyn", "final", "fn", "gen", "impl", "in",
     "let", "loop", "macro", "match", "mod", "move", "mut", "override", "priv", "pub", "ref", "self", "super", "trait",
     "type", "unsafe", "unsized", "use", "where", "yield",
     // what the headers that a source includes declare, as far as it is a word
     "FILE", "NULL", "Sleep", "WIN32", "WIN64", "WINNT", "abort", "clock", "errno", "exit", "main", "raise", "remove",
     "rename", "rewind", "signal", "stat", "std", "stderr", "stdin", "stdout", "system", "time", "timezone", "tm",
     "unlink", "ziptra"});

// In lower case: with Visual Studio they are also files, whose case does not matter.
constexpr auto targets = std::to_array<std::string_view>(
    {"all", "all_build", "clean", "depend", "edit_cache", "help", "install", "list_install_components", "package",
     "package_source", "preinstall", "rebuild_cache", "run_tests", "test", "zero_check"});

// Windows has functions that a plug-in of this name would export: CoInitialize, WSACleanup.
constexpr auto prefixesOfWindows = std::to_array<std::string_view>({"Co", "Ole", "Ro", "WSA"});

template <std::size_t Size>
bool contains(const std::array<std::string_view, Size>& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// Not those of <cctype>, which depend on the locale.
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isLetterOrDigit(char c) { return isLetter(c) || isDigit(c); }

/// Returns whether Windows opens a device under this name, whatever its case and extension.
bool isDevice(std::string_view lowerCase) {
    if (lowerCase == "con" || lowerCase == "prn" || lowerCase == "aux" || lowerCase == "nul") return true;
    return lowerCase.size() == 4 && (lowerCase.starts_with("com") || lowerCase.starts_with("lpt")) &&
           isDigit(lowerCase[3]);
}

/// Returns what is wrong with a name that is not empty, or an empty text.
std::string_view faultOf(const std::string& name) {
    const auto allowed = [](char c) { return isLetterOrDigit(c) || c == '_'; };
    if (!std::ranges::all_of(name, allowed)) return "it may contain only the letters A to Z, digits and underscores";
    if (!isLetter(name.front())) return "it must begin with a letter";
    if (name.find("__") != std::string::npos) return "C++ reserves names with two underscores in a row";
    if (name.size() > longestName) return "it may have at most 48 characters";
    if (contains(keywords, name)) return "the word has a meaning of its own in C, C++ or Rust";
    const std::string lowerCase = nSimilarNames::withoutCase(name);
    if (contains(targets, lowerCase)) return "CMake uses the name itself";
    if (isDevice(lowerCase)) return "Windows reserves it for a device";
    if (nPe::isInEveryWindows(lowerCase + ".dll")) return "a library of Windows has this name";
    if (contains(prefixesOfWindows, name)) return "Windows has functions of this name";
    return {};
}

/// Returns the parts of the name that consist of letters and digits, joined, each with a capital at the beginning.
std::string joinedParts(const std::string& name) {
    std::string joined;
    bool begins = true;
    for (const char c : name) {
        if (isLetterOrDigit(c)) joined += begins && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        begins = !isLetterOrDigit(c);
    }
    return joined;
}

/// Returns a name without a fault that is as similar as possible.
std::string proposalFor(const std::string& name) {
    constexpr std::string_view word = "Plugin";
    std::string proposal = joinedParts(name);
    if (proposal.empty()) return "Heartbeat";
    if (isDigit(proposal.front())) proposal.insert(0, word);
    proposal.resize(std::min(proposal.size(), longestName));
    return faultOf(proposal).empty() ? proposal : proposal.append(word);
}

}  // namespace

std::string problemWith(const std::string& name) {
    if (name.empty()) return "The name is empty; try Heartbeat";
    const std::string_view fault = faultOf(name);
    if (fault.empty()) return {};
    constexpr std::size_t mostColumns = 60;
    return fmt::format("A plug-in cannot have the name '{}': {}; try {}",
                       nPlainText::shortened(nPlainText::printable(name), mostColumns), fault, proposalFor(name));
}

}  // namespace nNew
