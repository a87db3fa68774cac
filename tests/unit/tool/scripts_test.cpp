#include "tool/completion/scripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

nCompletion::tProgram sample() {
    return {"tool",
            {{{"--color"}, true, {"auto", "never"}, "Whether"}},
            {{"look",
              "Looks at \"it\"",
              {{{"-o", "--output"}, true, {}, "Where to"}, {{"--json"}, false, {}, "As JSON"}},
              {}},
             {"shell", "Prints", {}, {"bash", "fish"}}}};
}

TEST(completionScripts, ForPowershellHaveARowForEachWordWithItsPurpose) {
    const std::string script = nCompletion::powershellScript(sample());
    EXPECT_THAT(script, HasSubstr("Register-ArgumentCompleter -Native -CommandName 'tool' -ScriptBlock {\n"));
    EXPECT_THAT(script, HasSubstr("    $rows = @'\n"
                                  "\"\",\"\",\"look\",\"Looks at \"\"it\"\"\"\n"
                                  "\"look\",\"\",\"-o\",\"Where to\"\n"
                                  "\"look\",\"-o\",\"\",\"Where to\"\n"
                                  "\"look\",\"\",\"--output\",\"Where to\"\n"
                                  "\"look\",\"--output\",\"\",\"Where to\"\n"
                                  "\"look\",\"\",\"--json\",\"As JSON\"\n"
                                  "\"\",\"\",\"shell\",\"Prints\"\n"
                                  "\"shell\",\"\",\"bash\",\"bash\"\n"
                                  "\"shell\",\"\",\"fish\",\"fish\"\n"
                                  "\"*\",\"\",\"--color\",\"Whether\"\n"
                                  "\"*\",\"--color\",\"auto\",\"Whether\"\n"
                                  "\"*\",\"--color\",\"never\",\"Whether\"\n"
                                  "'@ | ConvertFrom-Csv -Header Command, After, Word, Purpose\n"));
}

TEST(completionScripts, ForPowershellHaveBalancedBraces) {
    const std::string script = nCompletion::powershellScript(sample());
    for (const auto& [open, close] : {std::pair{'{', '}'}, std::pair{'(', ')'}, std::pair{'[', ']'}}) {
        EXPECT_EQ(std::count(script.begin(), script.end(), open), std::count(script.begin(), script.end(), close));
    }
}

}  // namespace
