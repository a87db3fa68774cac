#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tFolder;
using support::tToolRun;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A plug-in directory with Settings, which Transport needs.
class nGraphCommand : public testing::Test {
protected:
    void SetUp() override {
        folder.write("a.ini", "[Service]\nName=Transport\nDependencies=Settings\nPath=C:\\p\\t.dll\n");
        folder.write("b.ini", "[Service]\nName=Settings\nPath=C:\\p\\s.dll\nRequires=2\n");
    }

    [[nodiscard]] tToolRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"graph", folder.utf8()});
        return tToolRun(arguments);
    }

    tFolder folder;
};

TEST_F(nGraphCommand, WritesDotUnlessAskedForAnotherFormat) {
    const tToolRun result = run({});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, StartsWith("digraph"));
    EXPECT_THAT(result.out, HasSubstr("1. Settings"));
    EXPECT_THAT(result.error, IsEmpty());
    EXPECT_EQ(run({"--dot"}).out, result.out);
}

TEST_F(nGraphCommand, WritesEachFormat) {
    EXPECT_THAT(run({"--mermaid"}).out, StartsWith("flowchart"));
    EXPECT_THAT(run({"--svg"}).out, StartsWith("<svg"));
    EXPECT_THAT(run({"--json"}).out, StartsWith("{\n  \"schema\": 1,"));
}

TEST_F(nGraphCommand, WritesOneFormatAtATime) {
    for (const auto& formats : {std::vector<std::string>{"--svg", "--json"},
                                {"--dot", "--mermaid"},
                                {"--mermaid", "--svg"},
                                {"--json", "--dot"}}) {
        EXPECT_EQ(run(formats).exitCode, 2);
    }
}

TEST_F(nGraphCommand, ReplacesAFile) {
    const tToolRun result = run({"--output", folder.utf8("graph.dot")});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(folder.read("graph.dot"), run({}).out);
}

TEST_F(nGraphCommand, AssumesTheFeaturesThatItIsTold) {
    EXPECT_THAT(run({"--allowed", "0xFFFFFFFD"}).out, HasSubstr("Settings\\nfails -52002"));
    EXPECT_EQ(run({"--allowed", "none"}).exitCode, 2);
}

TEST_F(nGraphCommand, FollowsTheMap) {
    folder.write("libraries/t.dll", "not a library");
    EXPECT_THAT(run({"--map", "C:\\p=" + folder.utf8("libraries")}).out, HasSubstr("Transport\\nfails -5200"));
    for (const char* const map : {"C:\\p", "=x", "x="}) EXPECT_EQ(run({"--map", map}).exitCode, 2) << map;
}

TEST_F(nGraphCommand, PassesOnWhatTheHostWillReport) {
    folder.write("c.ini", "\n\n");
    const tToolRun result = run({});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, StartsWith("ziptra: The host will report: Failed to parse service description file: "));
}

TEST_F(nGraphCommand, SaysThatItDoesNotDrawAFileThatIsNoDescription) {
    const std::string file = folder.write("notes.txt", "[Service]\nName=Notes\n");
    const tToolRun result({"graph", file});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.error, "ziptra: Not drawn: " + file +
                                ": the host does not see the file: its extension is not \".ini\" in lower case\n");
}

TEST_F(nGraphCommand, SaysWhatTheHostDoesNotSeeInADirectory) {
    folder.write("c.INI", "[Service]\nName=Capital\n");
    folder.makeFolder("d.ini");
    const tToolRun result = run({});
    EXPECT_THAT(result.error, HasSubstr("c.INI: the host does not see the file"));
    EXPECT_THAT(result.error, HasSubstr("d.ini: a folder named like a description"));
    EXPECT_THAT(result.out, testing::Not(HasSubstr("Capital")));
}

TEST(nGraphCommandWithout, ADirectoryEndsWithTwoAndASentence) {
    const tFolder folder;
    const tToolRun result({"graph", folder.utf8("missing")});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.error, StartsWith("ziptra: "));
    EXPECT_THAT(result.out, IsEmpty());
}

}  // namespace
