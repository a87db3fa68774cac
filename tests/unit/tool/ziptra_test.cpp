#include "tool/ziptra.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>

#include "tests/unit/tool/toolRun.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;
using testing::StartsWith;

TEST(ziptra, DoesNotTakeTheNextArgumentForAMissingValue) {
    for (const char* const option : {"--output=", "--allowed=", "--map="}) {
        const tToolRun run({"graph", option, "plugins"});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        const std::string name = std::string(option).substr(0, std::string(option).size() - 1);
        EXPECT_EQ(run.error, "ziptra: " + name + ": a value is missing after '='; see 'ziptra --help'\n");
    }
}

TEST(ziptra, AcceptsAnyFileNameAfterTwoDashes) {
    EXPECT_THAT(tToolRun({"check", "--", "--name="}).error, HasSubstr("There is no file or directory"));
}

TEST(ziptra, ShowsItsVersionAndEndsWithZero) {
    const tToolRun run({"--version"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("ziptra "));
    EXPECT_EQ(run.out.find_first_not_of("0123456789.", 7), run.out.size() - 1);
    EXPECT_EQ(run.out.back(), '\n');
    EXPECT_EQ(run.error, "");
}

TEST(ziptra, ShowsWhatEachCommandIsFor) {
    for (const char* const option : {"-h", "--help"}) {
        const tToolRun run({option});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_THAT(run.out, HasSubstr("completion"));
        EXPECT_THAT(run.out, HasSubstr("Print a script that completes commands in a shell"));
        EXPECT_EQ(run.error, "");
    }
}

TEST(ziptra, ShowsTheHelpOfACommandWithAnExample) {
    const tToolRun run({"completion", "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("source <(ziptra completion bash)"));
}

struct tBadArguments {
    std::vector<std::string> arguments;
    const char* sentence;
};

TEST(ziptra, AnswersBadArgumentsWithOneSentenceAndTheRemedy) {
    const std::vector<tBadArguments> rows = {
        {{}, "ziptra: A command is missing; see 'ziptra --help'\n"},
        {{"complete"}, "ziptra: There is no command 'complete'; see 'ziptra --help'\n"},
        {{"插件 \xF0\x9F\x99\x82"}, "ziptra: There is no command '插件 \xF0\x9F\x99\x82'; see 'ziptra --help'\n"},
        {{"--colour"}, "ziptra: There is no option '--colour'; see 'ziptra --help'\n"},
        {{"--color"}, "ziptra: --color: 1 required WHEN:{auto,always,never} missing; see 'ziptra --help'\n"},
        {{"/h"}, "ziptra: There is no command '/h'; see 'ziptra --help'\n"},
        {{""}, "ziptra: There is no command ''; see 'ziptra --help'\n"},
        {{"completion"}, "ziptra: SHELL is required; see 'ziptra completion --help'\n"},
        {{"completion", "zsh"}, "ziptra: SHELL: zsh not in {bash,powershell}; see 'ziptra completion --help'\n"},
        {{"completion", "completion"},
         "ziptra: SHELL: completion not in {bash,powershell}; see 'ziptra completion --help'\n"},
        {{"completion", "bash", "--fast"},
         "ziptra: The following argument was not expected: --fast; see 'ziptra completion --help'\n"},
        {{"completion", "bash", "--color"},
         "ziptra: --color: 1 required WHEN:{auto,always,never} missing; see 'ziptra completion --help'\n"},
    };
    for (const tBadArguments& row : rows) {
        const tToolRun run(row.arguments);
        EXPECT_EQ(run.exitCode, 2) << row.sentence;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.error, row.sentence);
    }
}

/// Returns whether the text has colours after the program ran with these arguments.
bool colourAfter(const std::vector<std::string>& arguments, bool terminal) {
    std::ostringstream ignored;
    tContext context{ignored, ignored, terminal};
    EXPECT_EQ(runZiptra(arguments, context), 0);
    return context.colour;
}

TEST(ziptra, HasColoursAsAskedForBeforeOrAfterTheCommand) {
    for (const bool terminal : {false, true}) {
        EXPECT_EQ(colourAfter({"completion", "bash"}, terminal), terminal);
        EXPECT_EQ(colourAfter({"--color", "auto", "completion", "bash"}, terminal), terminal);
        EXPECT_TRUE(colourAfter({"--color", "always", "completion", "bash"}, terminal));
        EXPECT_TRUE(colourAfter({"completion", "bash", "--color=always"}, terminal));
        EXPECT_FALSE(colourAfter({"completion", "--color", "never", "bash"}, terminal));
    }
}

/// A device that is full, or that fails as the test wants.
struct tFailingBuffer : std::streambuf {
    explicit tFailingBuffer(void (*raise)()) : raise_(raise) {}

protected:
    int_type overflow(int_type /*character*/) override {
        if (raise_ != nullptr) raise_();
        return traits_type::eof();
    }

private:
    void (*raise_)();
};

/// Returns what the error stream shows if the output stream fails like this.
std::string errorAfterFailing(void (*raise)()) {
    tFailingBuffer buffer(raise);
    std::ostream out(&buffer);
    if (raise != nullptr) out.exceptions(std::ios::badbit);
    std::ostringstream error;
    tContext context{out, error};
    EXPECT_EQ(runZiptra({"--version"}, context), 2);
    return error.str();
}

TEST(ziptra, SaysThatTheResultIsIncomplete) {
    EXPECT_EQ(errorAfterFailing(nullptr), "ziptra: The result could not be written completely\n");
}

TEST(ziptra, RepeatsNoArgumentThatIsNotPrintable) {
    EXPECT_EQ(tToolRun({"a\x1B\xFF\u202E"}).error,
              "ziptra: There is no command 'a\uFFFD\uFFFD\uFFFD'; see 'ziptra --help'\n");
    EXPECT_EQ(tToolRun({"check", "a\x1B\xFF\u202E"}).error,
              "ziptra: There is no file or directory \"a\uFFFD\uFFFD\uFFFD\"\n");
}

TEST(ziptra, AnswersEveryExceptionWithASentence) {
    EXPECT_EQ(errorAfterFailing([] { throw std::bad_alloc(); }), "ziptra: There is not enough memory\n");
    EXPECT_EQ(errorAfterFailing([] { throw std::runtime_error("Cannot look"); }), "ziptra: Cannot look\n");
}

}  // namespace
