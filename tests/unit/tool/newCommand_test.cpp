#include "tool/new/newCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tFolder;
using support::tToolRun;
using testing::HasSubstr;
using testing::StartsWith;

TEST(nNewCommand, CreatesAProjectInEachLanguage) {
    const tFolder folder;
    const char* const rows[][3] = {{"A", "c", "A/A.c"}, {"B", "c++", "B/B.cpp"}, {"C", "rust", "C/C.rs"}};
    for (const auto& [name, language, source] : rows) {
        const tToolRun run({"new", name, "--language", language, "--directory", folder.utf8()});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.error, "");
        EXPECT_THAT(run.out, StartsWith("Created in " + folder.utf8(name) + ":\n"));
        EXPECT_TRUE(folder.has(source)) << source;
    }
}

TEST(nNewCommand, WritesCPlusPlusUnlessAskedForAnotherLanguage) {
    const tFolder folder;
    EXPECT_EQ(tToolRun({"new", "A", "--directory", folder.utf8()}).exitCode, 0);
    EXPECT_TRUE(folder.has("A/A.cpp"));
}

TEST(nNewCommand, WorksInAFolderWithANameInAnyScript) {
    const tFolder folder;
    const std::filesystem::path chinese(u"插件 🙂");
    folder.makeFolder(chinese);
    const tToolRun run({"new", "A", "--json", "--directory", folder.utf8(chinese)});
    EXPECT_EQ(run.error, "");
    EXPECT_EQ(nlohmann::json::parse(run.out).at("folder"), folder.utf8(chinese / "A"));
    EXPECT_TRUE(folder.has(chinese / "A" / "README.md"));
}

TEST(nNewCommand, OverwritesNeitherAFolderNorAFile) {
    const tFolder folder;
    folder.write("A", "mine");
    folder.makeFolder("B");
    for (const char* const name : {"A", "B"}) {
        const tToolRun run({"new", name, "--directory", folder.utf8()});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.error,
                  "ziptra: '" + folder.utf8(name) + "' exists already; choose another name or --directory\n");
    }
    EXPECT_EQ(folder.read("A"), "mine");
    EXPECT_TRUE(is_empty(folder.path() / "B"));
}

TEST(nNewCommand, SaysThatTheDirectoryIsMissing) {
    const tFolder folder;
    const tToolRun run({"new", "A", "--directory", folder.utf8("none")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.error, StartsWith("ziptra: Cannot create '" + folder.utf8("none")));
}

TEST(nNewCommand, RefusesBadArguments) {
    const std::vector<std::vector<std::string>> rows = {
        {"new"}, {"new", "A", "B"}, {"new", "A", "--language", "pascal"}, {"new", "A", "--strict"}};
    for (const std::vector<std::string>& arguments : rows) {
        const tToolRun run(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.error, HasSubstr("; see 'ziptra new --help'\n"));
    }
}

TEST(nNewCommand, AnswersABadNameWithOneSentence) {
    const tToolRun run({"new", "插件"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.error,
              "ziptra: A plug-in cannot have the name '插件': it may contain only the letters A to Z, digits and "
              "underscores; try Heartbeat\n");
}

TEST(nNewCommand, ShowsItsHelpWithAnExample) {
    EXPECT_THAT(tToolRun({"new", "--help"}).out, HasSubstr("Example: ziptra new Heartbeat --language c\n"));
}

TEST(nNewCommand, IsCompletedInAShell) {
    EXPECT_THAT(tToolRun({"completion", "bash"}).out, HasSubstr("new' --language') words='c c++ rust'; value=1 ;;\n"));
}

}  // namespace
