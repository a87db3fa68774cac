#include "tests/catalogues/descriptionText.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace catalogues {
namespace {

using namespace std::string_literals;
using tLines = std::vector<std::string>;

/// The key, or what an author may have typed in its place.
std::string spelled(tRandom& random, std::string key, int accidents) {
    if (random.chance(accidents)) {
        switch (random.below(4)) {
            case 0: return key.substr(0, key.size() - 1);
            case 1: return key + "s";
            case 2: return "x" + key;
            default: return key + " Line1";  // a continuation key, which is joined to this very key
        }
    }
    if (random.chance(10)) std::ranges::transform(key, key.begin(), [](unsigned char c) { return std::toupper(c); });
    if (random.chance(10)) std::ranges::transform(key, key.begin(), [](unsigned char c) { return std::tolower(c); });
    return key;
}

std::string quoted(tRandom& random, const std::string& value, int accidents) {
    const bool needsQuotes = value.starts_with(' ') || value.ends_with(' ');
    if (random.chance(accidents)) return random.pick({"'" + value + "'", "\"" + value, "\" " + value + " \""});
    return needsQuotes || random.chance(15) ? "\"" + value + "\"" : value;
}

std::string keyLine(tRandom& random, const std::string& key, const std::string& value, int accidents) {
    const std::string name = spelled(random, key, accidents);
    const std::string text = quoted(random, value, accidents);
    std::string separator = random.pick({"="s, "="s, "="s, " = "s, "= "s, "\t=\t"s});
    if (random.chance(accidents)) separator = random.pick({":"s, " "s, "=="s});
    const std::string line = name + separator + text;
    return random.chance(accidents) ? line + " ; a remark" : line;
}

tLines keyLines(tRandom& random, const tDescription& description, int accidents) {
    const std::vector<std::pair<const char*, const std::string*>> keys{{"Name", &description.name},
                                                                       {"Dependencies", &description.dependencies},
                                                                       {"Requires", &description.requiresText},
                                                                       {"Path", &description.path},
                                                                       {"Initialize", &description.initialize},
                                                                       {"Stop", &description.stop},
                                                                       {"Cleanup", &description.cleanup}};
    tLines lines;
    for (const auto& [key, value] : keys) {
        if (!value->empty()) lines.push_back(keyLine(random, key, *value, accidents));
        if (value->empty() && random.chance(accidents)) lines.push_back(key + "="s);
    }
    if (random.chance(50)) random.shuffle(lines);
    return lines;
}

std::string header(tRandom& random, int accidents) {
    if (random.chance(accidents)) {
        return random.pick({"[Service"s, "[]"s, "[Services]"s, "Service"s, "(Service)"s, "[[Service]]"s});
    }
    return random.pick({"[Service]"s, "[Service]"s, "[Service]"s, "[service]"s, "[ Service ]"s, "  [SERVICE] text"s});
}

/// The dependencies in several keys, which the parser joins.
void addContinuations(tRandom& random, tLines& lines, const std::string& value) {
    const std::size_t half = value.size() / 2;
    lines.push_back("Dependencies Line1=" + value.substr(0, half));
    if (random.chance(30)) lines.push_back(random.pick({"; between"s, "Other=1"s, "Text Line1=x"s}));
    lines.push_back(random.pick({"Dependencies Line2="s, "Dependencies Line02="s, "Text Line7="s}) +
                    value.substr(half));
}

/// Lines that the parser, or the host, does not need.
void addExtras(tRandom& random, tLines& lines, const tDescription& description, int accidents) {
    const auto anywhere = [&] { return lines.begin() + static_cast<std::ptrdiff_t>(random.below(lines.size() + 1)); };
    const auto insert = [&](const std::string& line) { lines.insert(anywhere(), line); };
    if (random.chance(20)) insert(random.pick({"; a remark"s, ";"s, "  ;Name=C"s, "Description=text"s, "#a=b"s}));
    if (random.chance(accidents)) insert(random.pick({"Name=A"s, "Path=x.dll"s, "Requires=1"s, "Dependencies=B"s}));
    if (random.chance(accidents)) insert(random.pick({"[Other]"s, "[service]"s, "[Service]"s, "[ ]"s}));
    if (random.chance(accidents)) insert(random.pick({"nonsense"s, "=A"s, "# remark"s, "// remark"s, "\x01\x02"s}));
    if (random.chance(accidents)) insert(random.pick({""s, " "s, "\t"s, "\f"s}));
    if (random.chance(accidents)) lines.emplace_back();
    if (random.chance(accidents)) lines.insert(lines.begin(), "");
    if (random.chance(accidents)) lines.insert(lines.end(), {"[Other]", "Name=Z", "Dependencies=Nobody"});
    if (random.chance(accidents) && !description.dependencies.empty()) {
        addContinuations(random, lines, description.dependencies);
    }
}

std::string joined(tRandom& random, const tLines& lines, int accidents) {
    const bool mixed = random.chance(accidents);
    const auto lineEnd = [&] { return random.pick({"\r\n"s, "\r\n"s, "\r\n"s, "\n"s, "\n"s, "\n"s, "\r"s}); };
    std::string usual = lineEnd();
    if (random.chance(accidents)) usual = random.pick({"\n\r"s, "\0"s, "\r\r\n"s});
    std::string text;
    for (const std::string& line : lines) {
        if (&line != lines.data()) text += mixed ? lineEnd() : usual;
        text += line;
    }
    if (random.chance(70)) text += usual;
    return text;
}

std::string asUtf16(const std::string& text, bool bigEndian) {
    std::string wide;
    for (const char c : text) wide += bigEndian ? "\0"s + c : c + "\0"s;
    return wide;
}

std::string encoded(tRandom& random, const std::string& text, int accidents) {
    if (random.chance(accidents)) {
        switch (random.below(5)) {
            case 0: return "\xFF\xFE" + asUtf16(text, false);
            case 1: return "\xFE\xFF" + asUtf16(text, true);
            case 2: return asUtf16(text, false);
            case 3: return "\0\0\xFE\xFF"s + text;
            default: return "\xEF\xBB" + text;
        }
    }
    return random.chance(10) ? "\xEF\xBB\xBF" + text : text;
}

std::string noise(tRandom& random, std::size_t size, std::string_view alphabet) {
    std::string text;
    while (text.size() < size) text += alphabet.empty() ? static_cast<char>(random.below(256)) : random.pick(alphabet);
    return text;
}

/// A description of which one line is huge.
std::string hugeText(tRandom& random) {
    const std::size_t size = 1000 + random.below(100'000);
    const std::string filler(size, random.pick({'x', ' ', ',', ';', '\\'}));
    const std::string key =
        random.pick({"Name="s, "Path="s, "Dependencies=A,"s, "Requires="s, "; "s, "Initialize="s, ""s});
    return "[Service]\nName=A\n" + key + filler + "\n";
}

}  // namespace

std::string descriptionText(tRandom& random, const tDescription& description, int accidents) {
    tLines lines = keyLines(random, description, accidents);
    const std::string opening = header(random, accidents);
    const std::size_t before = random.chance(accidents) ? random.below(lines.size() + 1) : 0;
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(before), opening);
    addExtras(random, lines, description, accidents);
    const std::string text = joined(random, lines, accidents);
    return encoded(random, text, accidents);
}

std::string oddText(tRandom& random) {
    const std::size_t size = random.below(3000);
    switch (random.below(8)) {
        case 0: return "";
        case 1: return "\xEF\xBB\xBF";
        case 2:
            return random.pick({"[Service]"s, "[Other]\nName=A\n"s, "; only a remark\n"s, "Name=A\nPath=x\n"s, "\n"s});
        case 3: return noise(random, size, "");
        case 4: return "[Service]\n" + noise(random, size, "");
        case 5: return noise(random, size, "[]=; \n\r\"Service,NamePth1");
        case 6: return "[Service]\nName=" + noise(random, size % 20, "\xC3\xA9\xFF\xF0\x9F() A") + "\nRequires=1\n";
        default: return hugeText(random);
    }
}

}  // namespace catalogues
