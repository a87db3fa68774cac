// Runs over hostile plug-in directories. Smaller rules are tested where they are implemented.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/descriptionReads.h"
#include "tests/support/plugins.h"
#include "tests/support/runTest.h"

namespace {

using support::noFramework;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

using tServiceRunHostile = support::tRunTest;

std::vector<std::string> messageLines() {
    std::vector<std::string> lines;
    std::istringstream text(gService->messages);
    for (std::string line; std::getline(text, line);) lines.push_back(line + "\n");
    return lines;
}

std::string numbered(std::size_t number) { return std::to_string(100'000 + number).substr(1); }

TEST_F(tServiceRunHostile, OfManyDescriptionFilesEachGoodOneStartsAndEachBadOneIsNamed) {
    std::vector<std::string> started;
    std::vector<std::string> messages{noFramework};
    std::string before;
    for (std::size_t i = 0; i < support::manyFiles; ++i) {
        const std::string name = numbered(i);
        const std::string keys = before.empty() ? "" : "Dependencies=" + before + "\n";
        if (i % 10 == 7) {
            messages.push_back(rejection(world.describe(name + ".ini", world.calling(name) + "nonsense")));
        } else {
            world.describe(name + ".ini", world.calling(name, keys));
            started.push_back(name + " 3");
            before = name;
        }
    }
    runWithoutWaiting();
    EXPECT_EQ(outcome(), started);
    EXPECT_THAT(messageLines(), UnorderedElementsAreArray(messages));
    const std::string status = world.status();
    EXPECT_THAT(status, HasSubstr(numbered(support::manyFiles - 1) + " (depends on " +
                                  numbered(support::manyFiles - 2) + ")\n"));
    EXPECT_EQ(std::count(status.begin(), status.end(), '('), static_cast<std::ptrdiff_t>(started.size()));
}

TEST_F(tServiceRunHostile, AHundredThousandMissingDependenciesFailTheirPluginAlone) {
    std::string names;
    for (std::size_t i = 0; i < 100'000; ++i) names += (i == 0 ? "" : ", ") + numbered(i);
    world.describe("a.ini", world.calling("A", "Dependencies=" + names + "\n"));
    world.describe("b.ini", world.calling("B"));
    runWithoutWaiting();
    EXPECT_THAT(outcome(), ElementsAre("A -52006", "B 3"));
    EXPECT_NE(world.status().find("\nA (depends on " + names + ")\n"), std::string::npos);
}

TEST_F(tServiceRunHostile, ACycleOfAThousandFailsItsMembersAndTheirDependantsAlone) {
    constexpr std::size_t count = 1000;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = numbered(i);
        world.describe(name + ".ini", world.calling(name, "Dependencies=" + numbered((i + 1) % count) + "\n"));
    }
    world.describe("free.ini", world.calling("Free"));
    world.describe("itself.ini", world.calling("Itself", "Dependencies=Itself\n"));
    world.describe("on.ini", world.calling("OnTheCycle", "Dependencies=" + numbered(500) + "\n"));
    runWithoutWaiting();
    std::vector<std::string> expected{"Free 3", "Itself -52006", "OnTheCycle -52006"};
    for (std::size_t i = 0; i < count; ++i) expected.push_back(numbered(i) + " -52006");
    EXPECT_THAT(outcome(), UnorderedElementsAreArray(expected));
}

TEST_F(tServiceRunHostile, ASharedDirectoryOf5000CharactersCannotBeOpened) {
    for (const char* const part : {"/folder", "/.", "/..", "\\folder", "/x/../y"}) {
        std::string path = *world.places.sharedDirectory;
        while (path.size() < 5000) path += part;
        world.places.sharedDirectory.emplace(path + "/none");
        gService->messages.clear();
        runService();
        EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n") << part;
    }
}

TEST_F(tServiceRunHostile, ASharedDirectoryWithAZeroInItIsNotCutAtTheZero) {
    // A registry value of several texts contains such zeros.
    const std::string shared = *world.places.sharedDirectory;
    std::ofstream(shared + "/astray.ini") << world.calling("Astray");
    for (const std::string& rest : {std::string("D:\\Other"), std::string("x")}) {
        world.places.sharedDirectory = shared + '\0' + rest + std::string(2, '\0');
        gService->messages.clear();
        runWithoutWaiting();
        EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n");
        EXPECT_THAT(outcome(), testing::IsEmpty());
    }
}

TEST_F(tServiceRunHostile, NamesOfAnyBytesAreNamesAndShownAsTheyAre) {
    const std::vector<std::string> names{
        std::string("\x01\x02\x07\b\x1A\x1B[31m\x7F"),  // control characters
        "\"",
        "a\"b",
        "'",
        "\\\"",
        "{\"a\":1}",  // quotes
        "\xFF\xFE",
        "\xC0\xAF",
        "\xED\xA0\x80",
        "\xE4\xB8",  // no UTF-8
        "=",
        "a;b",
        "[Service]",
        "%s%n%d",
        "..\\..",
        "%",  // what means something elsewhere
    };
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string dependant = std::string("\xFF\xFF").append(numbered(i));  // sorted after all of them
        world.describe(numbered(i) + ".ini", world.calling(names[i]));
        world.describe(numbered(i) + "on.ini", world.calling(dependant, "Dependencies=" + names[i] + "\n"));
        expected.insert(expected.end(), {names[i] + " 3", dependant + " 3"});
    }
    runWithoutWaiting();
    EXPECT_EQ(gService->messages, noFramework);
    EXPECT_THAT(outcome(), UnorderedElementsAreArray(expected));
    const std::string status = world.status();
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_THAT(status, HasSubstr("\n" + names[i] + " (depends on )\n"));
        EXPECT_THAT(status, HasSubstr(numbered(i) + " (depends on " + names[i] + ")\n"));
    }
}

TEST_F(tServiceRunHostile, PathsAndEntriesOfAnyBytesOrLengthFailTheirPluginAlone) {
    int files = 0;
    const std::string odds[] = {
        "\x01", "\"", "\xFF", "%s%n", "|", "*", "?", "\\\\", "//", "..", ".", "a:b:c", std::string(5000, 'x')};
    for (const std::string& odd : odds) {
        world.describe("path" + std::to_string(++files) + ".ini", "[Service]\nName=" + odd + "\nPath=" + odd + "\n");
        world.describe("entry" + std::to_string(files) + ".ini", world.calling(odd, "Initialize=" + odd + "\n"));
    }
    world.describe("free.ini", world.calling("Free"));
    runWithoutWaiting();
    for (const tPluginEntry& entry : gService->pluginManager.entries()) {
        EXPECT_EQ(entry.initCode, entry.description.name == "Free" ? 3 : -52005) << entry.description.name;
    }
    EXPECT_EQ(outcome().size(), 27U);
}

TEST_F(tServiceRunHostile, APluginDirectoryThatIsRemovedBeforeItsFilesAreReadCostsItsPluginsAlone) {
    std::string expected;
    for (const char* const name : {"a", "b", "c"}) world.describe(std::string(name) + ".ini", world.calling(name));
    const support::tDescriptionReads reads([&](const std::string& path) {
        std::filesystem::remove_all(world.plugins);
        expected += rejection(path);
    });
    runWithoutWaiting();
    EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), 3);
    EXPECT_EQ(gService->messages, expected + noFramework);
    EXPECT_THAT(outcome(), testing::IsEmpty());
    EXPECT_THAT(world.status(), HasSubstr(expected + noFramework)) << "the run went on";
}

TEST_F(tServiceRunHostile, FilesThatChangeAfterTheListingAreReadAsTheyAreThen) {
    const std::string gone = world.describe("gone.ini", world.calling("Gone"));
    const std::string folder = world.describe("folder.ini", world.calling("Folder"));
    const std::string other = world.describe("other.ini", world.calling("Other"));
    const std::string empty = world.describe("empty.ini", world.calling("Empty"));
    const support::tDescriptionReads reads([&](const std::string& path) {
        if (path == gone || path == folder) std::filesystem::remove(path);
        if (path == folder) std::filesystem::create_directory(path);
        if (path == other) world.describe("other.ini", world.calling("Changed"));
        if (path == empty) world.describe("empty.ini", "");
    });
    runWithoutWaiting();
    EXPECT_THAT(outcome(), ElementsAre(" -52005", "Changed 3"));
    EXPECT_THAT(messageLines(), testing::UnorderedElementsAre(noFramework, rejection(gone), rejection(folder)));
}

}  // namespace
