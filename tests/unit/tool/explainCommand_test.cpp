#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/explainedMachine.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/explain/explainText.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(nExplainCommand, ExplainsACodeInEachForm) {
    for (const char* const code : {"-52002", "0xFFFF34DE", "4294915294"}) {
        const tToolRun run({"explain", code});
        EXPECT_EQ(run.exitCode, 0) << code;
        EXPECT_THAT(run.out, StartsWith("-52002 (0xFFFF34DE, 4294915294)\n")) << code;
        EXPECT_THAT(run.error, IsEmpty());
    }
    EXPECT_THAT(tToolRun({"explain", "-52002", "--json"}).out, HasSubstr("\"code\": -52002"));
}

TEST(nExplainCommand, ExplainsAFinding) {
    const tToolRun run({"explain", "blank-line"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("blank-line (error): "));
    EXPECT_THAT(tToolRun({"explain", "blank-line", "--json"}).out, HasSubstr("\"kind\": \"finding\""));
}

TEST(nExplainCommand, FindsAFindingWhateverTheCaseOfItsId) {
    EXPECT_EQ(tToolRun({"explain", "Blank-Line"}).out, tToolRun({"explain", "blank-line"}).out);
}

TEST(nExplainCommand, SaysThatANumberIsTooLargeForACode) {
    for (const char* const number : {"99999999999", "0x1FFFFFFFF"}) {
        const tToolRun run({"explain", number});
        EXPECT_EQ(run.exitCode, 2) << number;
        EXPECT_THAT(run.error, StartsWith("ziptra: '" + std::string(number) + "' is too large for a code"));
        EXPECT_THAT(run.error, HasSubstr("--plugin"));
        EXPECT_THAT(run.out, IsEmpty());
    }
}

TEST(nExplainCommand, PrintsTheTableOfAllCodes) {
    const tToolRun run({"explain", "--markdown"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, nExplain::codesAsMarkdown());
}

TEST(nExplainCommand, NeedsACodeOrAName) {
    const tToolRun run({"explain"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.error, StartsWith("ziptra: CODE or NAME is required"));
}

using support::nExplainCommandOfPlugins;

TEST_F(nExplainCommandOfPlugins, CombinesTheStatusFileAndTheDescriptions) {
    const tToolRun run(with({"Transport"}, true, true));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("Transport did not start: -52006"));
    EXPECT_THAT(run.out, HasSubstr("    Settings (-52002) requires no feature"));
    EXPECT_THAT(run.out, HasSubstr("[requires-zero]"));
    EXPECT_THAT(run.error, IsEmpty());
}

TEST_F(nExplainCommandOfPlugins, TakesANumberForANameIfAskedTo) {
    const tToolRun run(with({"--plugin", "99999999999"}, true, true));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, StartsWith("Nothing is known about 99999999999."));
}

TEST_F(nExplainCommandOfPlugins, EndsWithTwoIfWhatTheUserNamedCannotBeRead) {
    EXPECT_EQ(tToolRun({"explain", "A", "--status", folder.utf8("missing")}).exitCode, 2);
    auto arguments = with({"A"}, true, false);
    arguments.insert(arguments.end(), {"--directory", folder.utf8("missing")});
    EXPECT_EQ(tToolRun(arguments).exitCode, 2);
}

TEST_F(nExplainCommandOfPlugins, EndsWithOneIfNothingIsKnown) {
    const tToolRun run(with({"transport"}, true, true));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("Similar names:\n  Transport\n"));
    EXPECT_EQ(tToolRun(with({"transport", "--json"}, true, true)).exitCode, 1);
}

TEST_F(nExplainCommandOfPlugins, TakesANumberForAPluginIfToldSo) {
    EXPECT_THAT(tToolRun(with({"-7"}, false, true)).out, StartsWith("-7 (0xFFFFFFF9"));
    EXPECT_THAT(tToolRun(with({"--plugin", "-7"}, false, true)).out, StartsWith("-7 will "));
    EXPECT_EQ(tToolRun(with({"--plugin", "blank-line"}, false, true)).exitCode, 1);
}

TEST_F(nExplainCommandOfPlugins, PredictsForTheFeaturesThatTheStatusFileShows) {
    folder.write("plugins/b.ini", "[Service]\nName=Settings\nPath=C:\\p\\s.dll\nRequires=2\n");
    EXPECT_THAT(tToolRun(with({"Settings", "--json"}, true, true)).out,
                HasSubstr("\"code\": -52002,\n    \"mayStart\""));
}

TEST_F(nExplainCommandOfPlugins, FollowsTheMap) {
    folder.write("libraries/s.dll", "not a library");
    folder.write("plugins/b.ini", "[Service]\nName=Settings\nPath=C:\\p\\s.dll\n");
    const auto arguments = with({"Settings", "--map", "C:\\p=" + folder.utf8("libraries")}, false, true);
    EXPECT_THAT(tToolRun(arguments).out, StartsWith("Settings will fail with -52005"));
}

TEST_F(nExplainCommandOfPlugins, WritesJson) {
    EXPECT_THAT(tToolRun(with({"Transport", "--json"}, true, true)).out, HasSubstr("\"verdict\": \"failed\""));
}

}  // namespace
