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

/// Returns which of all options the help of a command shows.
std::vector<std::string> optionsOf(const std::string& command) {
    std::vector<std::string> options;
    const std::string help = tToolRun({command, "--help"}).out;
    for (const char* const option : {"--print ", "--json ", "--shared-dir DIR ", "--start WHEN:{auto,delayed,demand}\n",
                                     "--crash-dumps DIR ", "--limit SECONDS:UINT in [1 - 86400]=120\n"}) {
        if (help.find(std::string("\n  ") + option) != std::string::npos) options.emplace_back(option);
    }
    return options;
}

TEST(nInstallCommand, HasTheSettingsForWhatMakesTheServiceAndALimitForWhatWaitsForIt) {
    using testing::ElementsAre;
    using testing::StartsWith;
    EXPECT_EQ(optionsOf("install").size(), 6U);
    EXPECT_THAT(optionsOf("repair"), ElementsAre("--print ", "--json ", "--shared-dir DIR ", StartsWith("--start WHEN"),
                                                 "--crash-dumps DIR "));
    EXPECT_THAT(optionsOf("uninstall"), ElementsAre("--print ", "--json ", StartsWith("--limit SECONDS")));
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
