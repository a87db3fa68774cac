#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/completion/scripts.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using tWords = std::vector<std::string>;

/// Returns the lines that the command writes to its standard output.
tWords linesOf(const std::string& command) {
    FILE* const pipe = popen(command.c_str(), "r");
    tWords lines;
    char line[1000];
    while (fgets(line, sizeof line, pipe) != nullptr) {
        lines.emplace_back(line);
        lines.back().pop_back();
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return lines;
}

/// Reads the script into a real shell and returns what that offers for the last of the words.
tWords offered(const std::string& script, const std::string& program, const tWords& words) {
    const support::tFolder folder;
    std::string test = "source '" + folder.write("completion", script) + "'\nCOMP_WORDS=(" + program;
    for (const std::string& word : words) test += " '" + word + "'";
    test += ")\nCOMP_CWORD=" + std::to_string(words.size()) + "\n";
    test += "complete -p " + program + " >/dev/null || exit 1\n_" + program + "\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
    tWords lines = linesOf("bash '" + folder.write("test", test) + "'");
    if (lines == tWords{""}) lines.clear();
    return lines;
}

class completionScriptsPosix : public testing::Test {
protected:
    static tWords offeredBySample(const tWords& words) {
        const nCompletion::tProgram program{
            "tool",
            {{{"--color"}, true, {"auto", "never"}, ""}},
            {{"look", "", {{{"-o", "--output"}, true, {}, ""}, {{"--json"}, false, {}, ""}}, {}},
             {"shell", "", {{{"--color-depth"}, true, {"8", "16"}, ""}}, {"bash", "fish"}}}};
        return offered(nCompletion::bashScript(program), "tool", words);
    }
};

TEST_F(completionScriptsPosix, ForBashOfferTheCommands) {
    EXPECT_THAT(offeredBySample({""}), ElementsAre("look", "shell"));
    EXPECT_THAT(offeredBySample({"l"}), ElementsAre("look"));
    EXPECT_THAT(offeredBySample({"x"}), IsEmpty());
    EXPECT_THAT(offeredBySample({"--color", "auto", "s"}), ElementsAre("shell"));
}

TEST_F(completionScriptsPosix, ForBashOfferTheOptionsOfTheCommandAndTheCommonOnes) {
    EXPECT_THAT(offeredBySample({"look", "-"}), ElementsAre("-o", "--output", "--json", "--color"));
    EXPECT_THAT(offeredBySample({"look", "a", "--j"}), ElementsAre("--json"));
    EXPECT_THAT(offeredBySample({"-"}), ElementsAre("--color"));
    EXPECT_THAT(offeredBySample({"shell", "--color"}), ElementsAre("--color-depth", "--color"));
}

TEST_F(completionScriptsPosix, ForBashOfferTheValuesOfAnOption) {
    EXPECT_THAT(offeredBySample({"--color", ""}), ElementsAre("auto", "never"));
    EXPECT_THAT(offeredBySample({"look", "--color", "n"}), ElementsAre("never"));
    EXPECT_THAT(offeredBySample({"shell", "--color-depth", ""}), ElementsAre("8", "16"));
    EXPECT_THAT(offeredBySample({"look", "--output", ""}), IsEmpty()) << "bash then offers files";
    EXPECT_THAT(offeredBySample({"look", "-o", "-"}), IsEmpty());
}

TEST_F(completionScriptsPosix, ForBashOfferTheArgumentsOfTheCommand) {
    EXPECT_THAT(offeredBySample({"shell", ""}), ElementsAre("bash", "fish"));
    EXPECT_THAT(offeredBySample({"look", ""}), IsEmpty()) << "bash then offers files";
}

TEST_F(completionScriptsPosix, OfTheProgramOfferItsCommandsAndOptions) {
    const std::string script = support::tToolRun({"completion", "bash"}).out;
    EXPECT_THAT(offered(script, "ziptra", {"compl"}), ElementsAre("completion"));
    EXPECT_THAT(offered(script, "ziptra", {"completion", "--c"}), ElementsAre("--color"));
    EXPECT_THAT(offered(script, "ziptra", {"completion", "--color", ""}), ElementsAre("auto", "always", "never"));
    EXPECT_THAT(offered(script, "ziptra", {"completion", "p"}), ElementsAre("powershell"));
}

/// Returns the options that the help lists, each at the beginning of a line: "  -h,--help".
tWords optionsInHelp(const tWords& arguments) {
    std::istringstream help(support::tToolRun(arguments).out);
    tWords options;
    for (std::string line; std::getline(help, line);) {
        if (!line.starts_with("  -")) continue;
        std::istringstream names(line.substr(2, line.find(' ', 2) - 2));
        for (std::string name; std::getline(names, name, ',');) options.push_back(name);
    }
    std::sort(options.begin(), options.end());
    options.erase(std::unique(options.begin(), options.end()), options.end());
    return options;
}

TEST_F(completionScriptsPosix, OfTheProgramForgetNoOptionThatTheHelpShows) {
    const std::string script = support::tToolRun({"completion", "bash"}).out;
    const tWords commands = offered(script, "ziptra", {""});
    ASSERT_THAT(commands, Contains("completion"));
    for (const std::string& command : commands) {
        const tWords shown = optionsInHelp({command, "--help"});
        ASSERT_THAT(shown, Contains("--help"));
        EXPECT_THAT(offered(script, "ziptra", {command, "-"}), IsSupersetOf(shown)) << command;
    }
}

}  // namespace
