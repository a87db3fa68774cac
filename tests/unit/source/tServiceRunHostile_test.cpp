// Runs over plug-in directories with extreme or hostile contents.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/descriptionReads.h"
#include "tests/support/failure.h"
#include "tests/support/plugins.h"
#include "tests/support/serviceWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

constexpr const char* noFramework = "Cannot init system framework\n";

class tServiceRunHostile : public testing::Test {
protected:
    tServiceRunHostile() { startService(); }

    /// Runs the service from the listing to the clean-up.
    static void run() {
        signalServiceStop();
        runService();
    }

    /// Returns "name code" of each plug-in in start order.
    static std::vector<std::string> outcome() {
        std::vector<std::string> outcome;
        for (const tPluginEntry& entry : gService->pluginManager.entries()) {
            outcome.push_back(entry.description.name + " " + std::to_string(entry.initCode));
        }
        return outcome;
    }

    static std::vector<std::string> messageLines() {
        std::vector<std::string> lines;
        std::istringstream text(gService->messages);
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }

    static std::string rejection(const std::string& path) {
        return "Failed to parse service description file: " + path + "\n";
    }

    support::tServiceWorld world;
};

std::string numbered(std::size_t number) { return std::to_string(100'000 + number).substr(1); }

// Many.

TEST_F(tServiceRunHostile, EachGoodFileOfManyIsStartedAndEachBadOneIsNamed) {
    std::vector<std::string> started;
    std::vector<std::string> messages{"Cannot init system framework"};
    std::string before;
    for (std::size_t i = 0; i < support::manyFiles; ++i) {
        const std::string name = numbered(i);
        const std::string keys = before.empty() ? "" : "Dependencies=" + before + "\n";
        if (i % 10 == 7) {
            const std::string path = world.describe(name + ".ini", world.calling(name) + "nonsense");
            messages.push_back("Failed to parse service description file: " + path);
        } else {
            world.describe(name + ".ini", world.calling(name, keys));
            started.push_back(name + " 3");
            before = name;
        }
    }
    run();
    EXPECT_EQ(outcome(), started);
    EXPECT_THAT(messageLines(), UnorderedElementsAreArray(messages));
    const std::string status = world.status();
    EXPECT_THAT(status, HasSubstr(numbered(support::manyFiles - 1) + " (depends on " +
                                  numbered(support::manyFiles - 2) + ")\n"));
    EXPECT_EQ(std::count(status.begin(), status.end(), '('), static_cast<std::ptrdiff_t>(started.size()));
}

TEST_F(tServiceRunHostile, AHundredThousandMissingDependenciesFailOnlyThatPlugin) {
    std::string names;
    for (std::size_t i = 0; i < 100'000; ++i) names += (i == 0 ? "" : ", ") + numbered(i);
    world.describe("a.ini", world.calling("A", "Dependencies=" + names + "\n"));
    world.describe("b.ini", world.calling("B"));
    run();
    EXPECT_THAT(outcome(), ElementsAre("A -52006", "B 3"));
    EXPECT_NE(world.status().find("\nA (depends on " + names + ")\n"), std::string::npos);
}

TEST_F(tServiceRunHostile, AHundredThousandMentionsOfOneNameAreADependencyThatIsNeverMet) {
    std::string names;
    for (int i = 0; i < 100'000; ++i) names += "A,";
    world.describe("a.ini", world.calling("A"));
    world.describe("b.ini", world.calling("B", "Dependencies=" + names + "\n"));
    run();
    EXPECT_THAT(outcome(), ElementsAre("A 3", "B -52006"));
    EXPECT_EQ(gService->pluginManager.entries()[1].description.dependencies.size(), 100'000U);
}

TEST_F(tServiceRunHostile, AMillionCommasAndBlanksContainNoDependency) {
    std::string gaps;
    for (int i = 0; i < 1'000'000; ++i) gaps += i % 2 == 0 ? ", " : ",\t\v";
    world.describe("a.ini", world.calling("A", "Dependencies=" + gaps + "\n"));
    run();
    EXPECT_THAT(outcome(), ElementsAre("A 3"));
}

TEST_F(tServiceRunHostile, NoPluginOfACycleOfAThousandStartsAndNoOtherIsAffected) {
    constexpr std::size_t count = 1000;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = numbered(i);
        world.describe(name + ".ini", world.calling(name, "Dependencies=" + numbered((i + 1) % count) + "\n"));
    }
    world.describe("free.ini", world.calling("Free"));
    world.describe("itself.ini", world.calling("Itself", "Dependencies=Itself\n"));
    world.describe("on.ini", world.calling("OnTheCycle", "Dependencies=" + numbered(500) + "\n"));
    run();
    std::vector<std::string> expected{"Free 3", "Itself -52006", "OnTheCycle -52006"};
    for (std::size_t i = 0; i < count; ++i) expected.push_back(numbered(i) + " -52006");
    EXPECT_THAT(outcome(), UnorderedElementsAreArray(expected));
}

// Long.

TEST_F(tServiceRunHostile, ANameMayHave50Megabytes) {
    const std::string name(50'000'000, 'x');
    world.describe("a.ini", "[Service]\nName=" + name + "\nRequires=0\n");
    run();
    ASSERT_EQ(gService->pluginManager.entries().size(), 1U);
    EXPECT_EQ(gService->pluginManager.entries()[0].initCode, -52002);
    EXPECT_NE(world.status().find("\n" + name + " (depends on )\n"), std::string::npos);
}

TEST_F(tServiceRunHostile, ALibraryPathOf5000CharactersFailsItsPluginAndIsShownWhole) {
    std::string path = support::testProgramFolder();
    while (path.size() < 5000) path += "/folder";
    world.describe("a.ini", "[Service]\nName=A\nPath=" + path + "/a.dll\n");
    world.describe("b.ini", world.calling("B"));
    run();
    EXPECT_THAT(outcome(), ElementsAre("A -52005", "B 3"));
    EXPECT_THAT(world.status(), HasSubstr("\nLoaded From: " + path + "/a.dll\n"));
}

TEST_F(tServiceRunHostile, AnEntryNameOf5000CharactersIsAMissingEntry) {
    const std::string entry(5000, 'e');
    for (const char* const key : {"Initialize", "Stop", "Cleanup"}) {
        world.describe(std::string(key) + ".ini", world.calling(key, std::string(key) + "=" + entry + "\n"));
    }
    run();
    EXPECT_THAT(outcome(), ElementsAre("Cleanup -52005", "Initialize -52005", "Stop -52005"));
    EXPECT_THAT(world.status(), HasSubstr("\n" + entry + " Code: -52005\n"));
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

TEST_F(tServiceRunHostile, ASharedDirectoryWithAZeroIsNotCutAtTheZero) {
    // Such as a registry value of several texts.
    const std::string shared = *world.places.sharedDirectory;
    std::ofstream(shared + "/astray.ini") << world.calling("Astray");
    for (const std::string& behind : {std::string("D:\\Other"), std::string("x")}) {
        world.places.sharedDirectory = shared + '\0' + behind + std::string(2, '\0');
        gService->messages.clear();
        run();
        EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n");
        EXPECT_THAT(outcome(), testing::IsEmpty());
    }
}

TEST_F(tServiceRunHostile, AStatusFolderOf5000CharactersCannotBeOpened) {
    std::string folder = world.statusFolder.string();
    while (folder.size() < 5000) folder += "\\folder";
    EXPECT_EQ(support::failureOf([&] { WriteStatusFile(folder, "s", "text"); }), support::openFailed);
}

// Odd.

TEST_F(tServiceRunHostile, NamesMayContainAnyBytesAndAreShownUnchanged) {
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
        "\xE4\xB8",  // not UTF-8
        "=",
        "a;b",
        "[Service]",
        "%s%n%d",
        "..\\..",
        "%",  // special elsewhere
    };
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string dependant = std::string("\xFF\xFF").append(numbered(i));  // sorts after all of them
        world.describe(numbered(i) + ".ini", world.calling(names[i]));
        world.describe(numbered(i) + "on.ini", world.calling(dependant, "Dependencies=" + names[i] + "\n"));
        expected.insert(expected.end(), {names[i] + " 3", dependant + " 3"});
    }
    run();
    EXPECT_EQ(gService->messages, noFramework);
    EXPECT_THAT(outcome(), UnorderedElementsAreArray(expected));
    const std::string status = world.status();
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_THAT(status, HasSubstr("\n" + names[i] + " (depends on )\n"));
        EXPECT_THAT(status, HasSubstr(numbered(i) + " (depends on " + names[i] + ")\n"));
    }
}

TEST_F(tServiceRunHostile, PathsAndEntriesOfAnyBytesFailOnlyTheirPlugin) {
    int files = 0;
    for (const char* const odd : {"\x01", "\"", "\xFF", "%s%n", "|", "*", "?", "\\\\", "//", "..", ".", "a:b:c"}) {
        world.describe("path" + std::to_string(++files) + ".ini",
                       "[Service]\nName=" + std::string(odd) + "\nPath=" + odd + "\n");
        world.describe("entry" + std::to_string(files) + ".ini",
                       world.calling(odd, "Initialize=" + std::string(odd) + "\n"));
    }
    world.describe("free.ini", world.calling("Free"));
    run();
    for (const tPluginEntry& entry : gService->pluginManager.entries()) {
        EXPECT_EQ(entry.initCode, entry.description.name == "Free" ? 3 : -52005) << entry.description.name;
    }
    EXPECT_EQ(outcome().size(), 25U);
}

// Changed between listing and reading.

TEST_F(tServiceRunHostile, APluginDirectoryThatIsDeletedBeforeItsFilesAreReadFailsOnlyItsPlugins) {
    std::string expected;
    for (const char* const name : {"a", "b", "c"}) world.describe(std::string(name) + ".ini", world.calling(name));
    const support::tDescriptionReads reads([&](const std::string& path) {
        std::filesystem::remove_all(world.plugins);
        expected += rejection(path);
    });
    run();
    EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), 3);
    EXPECT_EQ(gService->messages, expected + noFramework);
    EXPECT_THAT(outcome(), testing::IsEmpty());
    EXPECT_THAT(world.status(), HasSubstr(expected + noFramework)) << "the run continued";
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
    run();
    EXPECT_THAT(outcome(), ElementsAre(" -52005", "Changed 3"));
    std::vector<std::string> lines = messageLines();
    EXPECT_THAT(lines, testing::UnorderedElementsAre("Cannot init system framework",
                                                     "Failed to parse service description file: " + gone,
                                                     "Failed to parse service description file: " + folder));
}

TEST_F(tServiceRunHostile, DirectoriesInPlaceOfDescriptionFilesAreSkipped) {
    for (std::size_t i = 0; i < 200; ++i) std::filesystem::create_directory(world.plugins / (numbered(i) + ".ini"));
    world.describe("a.ini", world.calling("A"));
    run();
    EXPECT_THAT(outcome(), ElementsAre("A 3"));
    EXPECT_EQ(gService->messages, noFramework);
}

TEST_F(tServiceRunHostile, TheRunContinuesIfTheStatusFolderDisappears) {
    world.describe("a.ini", world.calling("A"));
    std::filesystem::remove_all(world.statusFolder);
    run();
    EXPECT_THAT(outcome(), ElementsAre("A 3"));
    EXPECT_EQ(gService->pluginManager.entries()[0].cleanupCode, -52003);
}

}  // namespace
