#include "tests/catalogues/generator.h"

#include <algorithm>
#include <string_view>

#include "tests/catalogues/descriptionText.h"

namespace catalogues {
namespace {

using namespace std::string_literals;
using tNames = std::vector<std::string>;

/// How one directory's plug-ins depend on each other, and how carefully all that was written.
struct tManner {
    tNames names;       ///< of the plug-ins that are described or depended upon
    int shape = 0;      ///< see dependencyNames
    int accidents = 0;  ///< of a hundred opportunities
};

tNames manyNames(std::size_t count) {
    tNames names;
    for (std::size_t i = 0; i < count; ++i) names.push_back((i % 7 == 0 ? "p" : "P") + std::to_string(i * 37 % count));
    return names;
}

/// A few names, some of which differ only in case, or contain what the formats use themselves.
tNames fewNames(tRandom& random) {
    tNames names{"A",  "B",   "C", "D",         "a",         "b",        "AB",
                 "Ab", "A B", "Z", "Transport", "transport", "\xC3\xA9", "\xE5\x90\x8D\xE5\x89\x8D"};
    if (random.chance(20)) names.insert(names.end(), {" A", "A,B", "A (depends on B)", "\"A\"", "C.dll", "Name=A"});
    random.shuffle(names);
    names.resize(1 + random.below(names.size()));
    return names;
}

std::string otherCase(std::string name) {
    std::ranges::transform(name, name.begin(), [](char c) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        return letter ? static_cast<char>(c ^ 0x20) : c;
    });
    return name;
}

tNames randomNames(tRandom& random, const tManner& manner) {
    tNames names;
    while (random.chance(45) && names.size() < 6) names.push_back(random.pick(manner.names));
    return names;
}

/// The dependencies of the plug-in with this index, by the shape: 0 random, 1 a chain, 2 a chain in which all earlier
/// ones are named, 3 a circle, 4 all on the first, 5 on the next, which is a chain against the order of the list,
/// 6 none.
tNames dependencyNames(tRandom& random, const tManner& manner, std::size_t index) {
    const tNames& names = manner.names;
    const std::size_t place = index % names.size();
    switch (manner.shape) {
        case 0: return randomNames(random, manner);
        case 1: return place == 0 ? tNames() : tNames{names[place - 1]};
        case 2: return {names.begin(), names.begin() + static_cast<std::ptrdiff_t>(place)};
        case 3: return {names[(place + 1) % names.size()]};
        case 4: return place == 0 ? tNames() : tNames{names[0]};
        case 5: return place + 1 == names.size() ? tNames() : tNames{names[place + 1]};
        default: return {};
    }
}

void addAccidents(tRandom& random, tNames& dependencies, const std::string& self, int accidents) {
    if (random.chance(accidents)) dependencies.push_back(self);
    if (random.chance(accidents)) dependencies.emplace_back("Nobody");
    if (random.chance(accidents) && !dependencies.empty()) dependencies.push_back(dependencies.front());
    if (random.chance(accidents) && !dependencies.empty()) dependencies.back() = otherCase(dependencies.back());
}

std::string listText(tRandom& random, const tNames& dependencies) {
    std::string text;
    for (const std::string& name : dependencies) {
        if (!text.empty()) text += random.pick({","s, ", "s, ", "s, " , "s, "\t,"s, ",,"s});
        text += name;
    }
    return random.chance(5) ? text + "," : text;
}

std::string requiresText(tRandom& random, int accidents) {
    if (random.chance(accidents)) {
        return random.pick({"0"s, "0x2"s, "-1"s, "4294967296"s, "2x"s, "x"s, "+2"s, " 2"s, "-2"s,
                            "99999999999999999999"s, "1 ; text"s, "1,2"s, "2 3"s, "\xC2\xB2"s, "4294967294"s,
                            "-4294967295"s});
    }
    return random.chance(50) ? "" : random.pick({"1"s, "2"s, "3"s, "2"s, "6"s, "4294967293"s});
}

std::string entryName(tRandom& random, const tNames& usual, int accidents) {
    if (random.chance(accidents))
        return random.pick({"NoSuchEntry"s, "initok"s, "_Z6InitOkv"s, "InitOk@0"s, "#1"s, "?"s});
    return random.pick(usual);
}

void chooseLibrary(tRandom& random, tDescription& description, const tLibraryPaths& libraries, int accidents) {
    description.path = writtenPath(random, random.pick(libraries.working));
    description.initialize = entryName(
        random, {"", "InitOk", "InitOk", "InitOk", "InitWarning3", "InitFails7", "InitThrowsOwnException"}, accidents);
    description.stop = entryName(random, {"", "", "StopOk"}, accidents / 2);
    description.cleanup = entryName(random, {"", "", "CleanupOk", "CleanupThrowsRuntimeError"}, accidents / 2);
    if (random.chance(accidents)) description.path = writtenPath(random, random.pick(libraries.broken));
    if (random.chance(accidents)) description.path = random.pick(libraries.relative);
    if (random.chance(accidents / 2)) description.path.clear();
    if (random.chance(8)) {
        description.path = libraries.entryless.front();
        description.initialize = description.stop = description.cleanup = "";
    }
    if (random.chance(accidents)) {
        description.path = writtenPath(random, random.pick(libraries.entryless));
        if (random.chance(80)) description.initialize = description.stop = description.cleanup = "";
    }
}

tDescription randomDescription(tRandom& random, const tManner& manner, const tLibraryPaths& libraries,
                               std::size_t index) {
    tDescription description;
    description.name = manner.names[index % manner.names.size()];
    if (random.chance(manner.accidents)) description.name = random.pick(manner.names);
    if (random.chance(manner.accidents / 2)) description.name.clear();
    tNames dependencies = dependencyNames(random, manner, index);
    addAccidents(random, dependencies, description.name, manner.accidents);
    description.dependencies = listText(random, dependencies);
    description.requiresText = requiresText(random, manner.accidents);
    chooseLibrary(random, description, libraries, manner.accidents);
    return description;
}

/// The name begins with something unique, so that it can be used on any file system.
std::string fileName(tRandom& random, std::size_t index, int accidents) {
    const std::string unique = random.pick({"a"s, "B"s, "c"s, "9"s, "\xC3\xA9"s, "_"s}) + std::to_string(index);
    if (random.chance(accidents)) {
        return unique + random.pick({".INI"s, ".Ini"s, ".txt"s, ".ini.bak"s, "ini"s, ".in"s, ".inix"s});
    }
    const std::string middle = random.pick({""s, ""s, ""s, ""s, " with blanks"s, ".b"s, "\xE5\x90\x8D"s,
                                            "\xF0\x9F\x98\x80"s, " 100% & (more)"s, "[x]"s, " "s, ".."s});
    return unique + middle + ".ini";
}

tEntry randomEntry(tRandom& random, const tManner& manner, const tLibraryPaths& libraries, std::size_t index) {
    const tDescription description = randomDescription(random, manner, libraries, index);
    tEntry entry;
    entry.name = fileName(random, index, manner.accidents);
    entry.bytes = descriptionText(random, description, manner.accidents / 2);
    if (random.chance(manner.accidents)) entry.bytes = oddText(random);
    if (random.chance(manner.accidents / 2)) entry.kind = random.pick({tEntry::tKind::folder, tEntry::tKind::locked});
    return entry;
}

std::size_t randomCount(tRandom& random) {
    if (random.chance(3)) return 40 + random.below(60);
    return random.below(13);
}

tDeployment randomDeployment(tRandom& random) {
    if (random.chance(40)) return tDeployment::allowed;
    if (random.chance(60)) return tDeployment::forbidden;
    return random.pick({tDeployment::notFound, tDeployment::noFramework});
}

}  // namespace

tCatalogue generate(std::uint64_t seed, const tLibraryPaths& libraries) {
    tRandom random(seed);
    tCatalogue catalogue;
    catalogue.seed = seed;
    catalogue.asService = seed % 5 == 4;
    catalogue.givesDirectory = random.chance(50);
    catalogue.givesAllowed = random.chance(30);
    catalogue.deployment = randomDeployment(random);
    const std::size_t count = randomCount(random);
    tManner manner;
    manner.names = count > 12 ? manyNames(count) : fewNames(random);
    manner.shape = random.pick({0, 0, 0, 1, 2, 3, 4, 5, 6});
    manner.accidents = random.pick({0, 0, 2, 5, 10, 30});
    for (std::size_t i = 0; i < count; ++i) catalogue.entries.push_back(randomEntry(random, manner, libraries, i));
    if (random.chance(5)) catalogue.entries.push_back({".ini", "[Service]\nName=Hidden\n"});
    return catalogue;
}

}  // namespace catalogues
