#include "tests/catalogues/catalogue.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace catalogues {
namespace {

constexpr std::size_t longestText = 2000;

std::string_view nameOf(tDeployment deployment) {
    constexpr std::array<std::string_view, 4> names{"allowed", "forbidden", "setting not found", "framework missing"};
    return names.at(static_cast<std::size_t>(deployment));
}

std::string_view nameOf(tEntry::tKind kind) {
    constexpr std::array<std::string_view, 3> names{"file", "folder", "locked file"};
    return names.at(static_cast<std::size_t>(kind));
}

std::string escaped(char c) {
    if ((c >= ' ' && c <= '~') || c == '\n') return {c};
    std::array<char, 5> text{};
    std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    return text.data();
}

}  // namespace

std::string printable(const std::string& bytes) {
    std::string text;
    for (const char c : bytes.substr(0, longestText)) text += escaped(c);
    if (bytes.size() > longestText) text += "... (" + std::to_string(bytes.size()) + " bytes)";
    return text;
}

std::string describe(const tCatalogue& catalogue) {
    std::string text = "seed " + std::to_string(catalogue.seed);
    text.append(catalogue.asService ? ", as a service" : ", in the foreground");
    text.append(", deployment ").append(nameOf(catalogue.deployment));
    text.append(", check").append(catalogue.givesAllowed ? " --allowed MASK" : "");
    text.append(catalogue.givesDirectory ? " DIRECTORY\n" : "\n");
    for (const tEntry& entry : catalogue.entries) {
        text.append("--- ").append(nameOf(entry.kind)).append(" ").append(printable(entry.name)).append("\n");
        text.append(printable(entry.bytes)).append("\n");
    }
    return text;
}

}  // namespace catalogues
