#include "tool/install/installCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/toolRun.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;

TEST(nInstallCommand, ShowsTheHelpOfEachCommandWithAnExample) {
    EXPECT_THAT(tToolRun({"install", "--help"}).out, HasSubstr("Example: ziptra install --crash-dumps \""));
    EXPECT_THAT(tToolRun({"repair", "--help"}).out, HasSubstr("Example: ziptra repair --start auto\n"));
    EXPECT_THAT(tToolRun({"uninstall", "--help"}).out, HasSubstr("Example: ziptra uninstall --limit 30\n"));
}

TEST(nInstallCommand, RefusesBadArgumentsBeforeItLooksAtTheMachine) {
    const std::vector<std::vector<std::string>> rows = {
        {"install", "--start", "never"},
        {"install", "--print", "--json"},
        {"install", "C:\\"},
        {"install", "--limit", "0"},
        {"install", "--limit", "86401"},
        {"repair", "--limit", "9"},
        {"uninstall", "--shared-dir", "D:\\x"},
        {"uninstall", "--limit", "x"},
    };
    for (const std::vector<std::string>& arguments : rows) {
        const tToolRun run(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.error, HasSubstr("; see 'ziptra " + arguments[0] + " --help'\n")) << arguments[1];
    }
}

}  // namespace
