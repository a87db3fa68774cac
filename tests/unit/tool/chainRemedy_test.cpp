#include "tool/check/chainRemedy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "source/nPluginOrder.h"
#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tCatalogue;
using nCheck::tChainRemedies;
using nCheck::tDescriptionFile;
using support::described;
using testing::HasSubstr;
using tDescriptions = std::vector<tPluginDescription>;

std::vector<tDescriptionFile> filesOf(const tDescriptions& descriptions) {
    std::vector<tDescriptionFile> files;
    for (const tPluginDescription& description : descriptions) {
        files.emplace_back(description.name + ".ini").description = description;
    }
    return files;
}

/// Returns the name of the first plug-in that comes before all plug-ins of a name on which it depends, or nothing.
std::string firstTooEarly(const tDescriptions& descriptions) {
    tDescriptions ordered = descriptions;
    nPluginOrder::sort(ordered);
    std::vector<std::string> before;
    for (const tPluginDescription& description : ordered) {
        for (const std::string& name : description.dependencies) {
            if (std::find(before.begin(), before.end(), name) == before.end()) return description.name;
        }
        before.push_back(description.name);
    }
    return {};
}

std::size_t positionOf(const tDescriptions& descriptions, const std::string& name) {
    return static_cast<std::size_t>(std::find_if(descriptions.begin(), descriptions.end(),
                                                 [&](const auto& description) { return description.name == name; }) -
                                    descriptions.begin());
}

std::string remedyFor(const tDescriptions& descriptions, const std::string& name) {
    const tCatalogue catalogue(filesOf(descriptions));
    tChainRemedies remedies(catalogue);
    return remedies.remedyFor(positionOf(descriptions, name));
}

// The host compares neighbours only: the first plug-in keeps the last one from coming before all.
const tDescriptions chain{described("Base"), described("Deployment", {"Scheduler"}),
                          described("Scheduler", {"Transport"}), described("Transport")};

TEST(tChainRemedies, AreNeededWhereTheHostsOrderIsNotThatOfTheDependencies) {
    EXPECT_EQ(firstTooEarly(chain), "Scheduler");
}

TEST(tChainRemedies, NameTheIndirectDependenciesAsWellIfThatHelps) {
    const tDescriptions descriptions{described("B"), described("D", {"B"}), described("C"), described("A", {"D"})};
    ASSERT_EQ(firstTooEarly(descriptions), "A");
    EXPECT_EQ(remedyFor(descriptions, "A"),
              "Write \"Dependencies=B, D\" in A.ini: with all indirect dependencies, the order is right.");
    tDescriptions changed = descriptions;
    changed[3].dependencies = {"B", "D"};
    EXPECT_EQ(firstTooEarly(changed), "");
}

TEST(tChainRemedies, ChangeNoOtherFileIfThePluginsOwnIsEnough) {
    const tDescriptions descriptions{described("P", {"V"}), described("A"), described("R", {"A"}),
                                     described("V", {"R"})};
    EXPECT_EQ(remedyFor(descriptions, "P"),
              "Write \"Dependencies=A, R, V\" in P.ini: with all indirect dependencies, the order is right.");
}

TEST(tChainRemedies, NameThemInOtherFilesOfTheChainTooIfOneFileIsNotEnough) {
    const tDescriptions descriptions{described("A", {"E", "I"}),
                                     described("F"),
                                     described("I"),
                                     described("G", {"C", "E"}),
                                     described("D", {"E", "F", "I"}),
                                     described("B", {"F", "G"}),
                                     described("E", {"C", "I"}),
                                     described("C"),
                                     described("H", {"E", "F"})};
    EXPECT_EQ(remedyFor(descriptions, "B"),
              "Write \"Dependencies=C, E, F, G, I\" in B.ini and \"Dependencies=C, E, I\" in G.ini: with all indirect "
              "dependencies, the order is right.");
}

TEST(tChainRemedies, NameThemInADependantIfThatKeepsThePluginInFront) {
    EXPECT_EQ(
        remedyFor(chain, "Scheduler"),
        "Write \"Dependencies=Scheduler, Transport\" in Deployment.ini: with all indirect dependencies, the order "
        "is right.");
    tDescriptions changed = chain;
    changed[1].dependencies = {"Scheduler", "Transport"};
    EXPECT_EQ(firstTooEarly(changed), "");
}

TEST(tChainRemedies, AdviseAnotherNameIfAllDependenciesAreNamedAlready) {
    const tDescriptions descriptions{described("L", {"I"}), described("H", {"J"}),
                                     described("D"),        described("A", {"B", "D", "E", "G"}),
                                     described("J", {"G"}), described("K", {"B", "E", "I"}),
                                     described("F", {"I"}), described("I", {"G"}),
                                     described("G"),        described("B", {"D"}),
                                     described("C", {"D"}), described("E", {"G", "I"})};
    EXPECT_EQ(remedyFor(descriptions, "F"),
              "Rename the plug-in, here and where others depend on it, so that its name follows \"I\" in the order of "
              "bytes, for example to \"I-F\".");
}

TEST(tChainRemedies, AdviseNamesInTheStartOrderIfNothingElseHelps) {
    const tDescriptions descriptions{described("O", {"A", "D"}), described("D", {"X"}), described("A"), described("Q"),
                                     described("X")};
    EXPECT_THAT(remedyFor(descriptions, "D"), HasSubstr("names whose order is the order in which they must start"));
}

/// Random plug-ins without circles. The first plug-in of the random order depends on none.
tDescriptions randomDescriptions(std::uint32_t seed) {
    const auto below = [&seed](std::uint32_t limit) {
        seed = seed * 1664525 + 1013904223;
        return static_cast<std::size_t>((seed >> 16) % limit);
    };
    tDescriptions descriptions;
    const std::size_t count = 3 + below(10);
    for (std::size_t i = 0; i < count; ++i) {
        std::string name(1, 'A');
        while (std::any_of(descriptions.begin(), descriptions.end(), [&](const auto& d) { return d.name == name; })) {
            name = std::string(1, static_cast<char>('A' + below(26)));
        }
        std::vector<std::string> dependencies;
        for (const tPluginDescription& earlier : descriptions) {
            if (below(4) == 0) dependencies.push_back(earlier.name);
        }
        std::sort(dependencies.begin(), dependencies.end());
        descriptions.insert(descriptions.begin() + static_cast<std::ptrdiff_t>(below(2) * descriptions.size()),
                            described(name, dependencies));
    }
    return descriptions;
}

/// Does what a remedy says: replaces the lists that it contains, or the name.
void follow(const std::string& remedy, const std::string& plugin, tDescriptions& descriptions) {
    const std::string line = "\"Dependencies=";
    for (std::size_t at = remedy.find(line); at != std::string::npos; at = remedy.find(line, at + 1)) {
        const std::size_t end = remedy.find('"', at + 1);
        const std::size_t file = end + std::string("\" in ").size();
        const std::string name = remedy.substr(file, remedy.find(".ini", file) - file);
        std::vector<std::string>& list = descriptions[positionOf(descriptions, name)].dependencies;
        nPluginData::splitDependencies(remedy.substr(at + line.size(), end - at - line.size()), list);
    }
    const std::size_t example = remedy.find("for example to \"");
    if (example == std::string::npos) return;
    const std::size_t start = remedy.find('"', example) + 1;
    const std::string name = remedy.substr(start, remedy.find('"', start) - start);
    for (tPluginDescription& description : descriptions) {
        if (description.name == plugin) description.name = name;
        std::replace(description.dependencies.begin(), description.dependencies.end(), plugin, name);
        std::sort(description.dependencies.begin(), description.dependencies.end());
    }
}

TEST(tChainRemedies, BringThePluginIntoOrderWheneverTheyNameAChange) {
    int written = 0;
    int renamed = 0;
    for (std::uint32_t seed = 0; seed < 2000; ++seed) {
        tDescriptions descriptions = randomDescriptions(seed);
        const std::string plugin = firstTooEarly(descriptions);
        if (plugin.empty()) continue;
        const std::string remedy = remedyFor(descriptions, plugin);
        if (!remedy.starts_with("Write") && !remedy.starts_with("Rename")) continue;
        ++(remedy.starts_with("Write") ? written : renamed);
        const std::size_t position = positionOf(descriptions, plugin);
        follow(remedy, plugin, descriptions);
        tDescriptions ordered = descriptions;
        nPluginOrder::sort(ordered);
        const auto rankOf = [&](const std::string& name) { return positionOf(ordered, name); };
        for (const std::string& name : descriptions[position].dependencies) {
            EXPECT_LT(rankOf(name), rankOf(descriptions[position].name)) << seed << ": " << remedy;
        }
    }
    EXPECT_GT(written, 50);
    EXPECT_GT(renamed, 50);
}

TEST(tChainRemedies, MayAlwaysBeNamesInTheStartOrder) {
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        tDescriptions descriptions = randomDescriptions(seed);
        for (char number = 'a'; number < static_cast<char>('a' + descriptions.size()); ++number) {
            // The next one whose dependencies are all numbered.
            const auto next = std::find_if(descriptions.begin(), descriptions.end(), [](const auto& description) {
                return description.name.size() == 1 &&
                       std::all_of(description.dependencies.begin(), description.dependencies.end(),
                                   [](const std::string& name) { return name.size() > 1; });
            });
            const std::string name = next->name;
            follow("for example to \"" + (number + name) + "\"", name, descriptions);
        }
        EXPECT_EQ(firstTooEarly(descriptions), "") << seed;
    }
}

TEST(tChainRemedies, AreNotLinesThatDependenciesCannotExpress) {
    for (const std::string name : {"B,C", "B ", "B\""}) {
        const tDescriptions descriptions{described(name), described("D", {name}), described("C"),
                                         described("A", {"D"})};
        EXPECT_EQ(firstTooEarly(descriptions), "A") << name;
        EXPECT_THAT(remedyFor(descriptions, "A"), testing::Not(HasSubstr("Write"))) << name;
    }
}

TEST(tChainRemedies, AreTriedForTheFirstFewPluginsOnly) {
    const tCatalogue catalogue(filesOf(chain));
    tChainRemedies remedies(catalogue);
    std::string remedy;
    for (int i = 0; i < 21; ++i) remedy = remedies.remedyFor(2);
    EXPECT_EQ(remedy, "Correct the other plug-ins that come too early first, then check again.");
}

}  // namespace
