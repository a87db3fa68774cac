#include "tool/completion/completionCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/toolRun.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;
using testing::StartsWith;

TEST(nCompletion, PrintsTheScriptOfTheShellAskedFor) {
    const tToolRun bash({"completion", "bash"});
    EXPECT_EQ(bash.exitCode, 0);
    EXPECT_THAT(bash.out, StartsWith("# Completion of ziptra for bash: "));
    const tToolRun powershell({"completion", "powershell"});
    EXPECT_EQ(powershell.exitCode, 0);
    EXPECT_THAT(powershell.out, StartsWith("# Completion of ziptra for PowerShell: "));
}

TEST(nCompletion, KnowsWhichValuesAnOptionTakes) {
    const std::string script = tToolRun({"completion", "powershell"}).out;
    EXPECT_THAT(script, HasSubstr(R"("*","--color","auto","Whether the text has colours")"));
    EXPECT_THAT(script, HasSubstr(R"("completion","","bash","bash")"));
    EXPECT_THAT(script, HasSubstr(R"("","","completion","Print a script that completes commands in a shell")"));
    EXPECT_THAT(script, HasSubstr(R"("*","","-h",)"));
    EXPECT_THAT(script, testing::Not(HasSubstr(R"("*","-h",)")));
}

}  // namespace
