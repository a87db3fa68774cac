#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

constexpr const char* usage =
    "Usage: zuZiptraRemoteService.exe [OPTIONS]\r\n\r\n"
    "When launched by the Service Control Manager, this program runs as a service.\r\n"
    "Otherwise, such as when run from the command line, it runs in the foreground.\r\n\r\n"
    "Miscellaneous options:\r\n\r\n"
    "  -h, --help     display this help and exit\r\n";

constexpr DWORD minusOne = 0xFFFFFFFF;

class CommandLine : public EndToEnd {
protected:
    struct Answer {
        DWORD exitCode;
        std::string output;
        std::string errors;
        bool operator==(const Answer&) const = default;
    };

    /// What the program answers to this command line, of which the first word is its name.
    [[nodiscard]] Answer ask(const wchar_t* commandLine) const {
        const tProcess process(executable(), commandLine);
        const DWORD exitCode = process.exitCode();
        return {exitCode, process.output(), process.errors()};
    }

    const Answer help{0, usage, ""};
    const Answer refusal{minusOne, "", "Try `host --help' for more information.\r\n"};
};

TEST_F(CommandLine, HelpIsPrintedToStandardOutputOnly) {
    EXPECT_EQ(ask(L"host --help"), help);
    EXPECT_EQ(ask(L"host -h"), help);
}

TEST_F(CommandLine, HelpIsHeardWhereverItStands) {
    EXPECT_EQ(ask(L"host x --help"), help);
    EXPECT_EQ(ask(L"host -h x"), help);
    EXPECT_EQ(ask(L"host -x \"\" --version --help -h"), help);
    EXPECT_EQ(ask(L"host \"--help\""), help);
}

TEST_F(CommandLine, OnlyTheWholeWordInItsOwnCaseAsksForHelp) {
    for (const wchar_t* commandLine : {L"host -H", L"host -help", L"host --HELP", L"host --hel", L"host --help=x",
                                       L"host \" -h\"", L"host /?", L"host \"\""}) {
        EXPECT_EQ(ask(commandLine), refusal) << utf8(commandLine);
    }
}

TEST_F(CommandLine, RefusingArgumentsTheProgramGoesByTheNameThatItWasCalled) {
    EXPECT_EQ(ask(L"\"C:\\Program Files\\host.exe\" x").errors,
              "Try `C:\\Program Files\\host.exe --help' for more information.\r\n");
}

TEST_F(CommandLine, APercentSignInTheProgramNameIsPrintedAsItIs) {
    EXPECT_EQ(ask(L"100%s%n%d.exe x").errors, "Try `100%s%n%d.exe --help' for more information.\r\n");
}

TEST_F(CommandLine, AskingOrRefusingStartsNothing) {
    static_cast<void>(ask(L"host --help"));
    static_cast<void>(ask(L"host x"));
    EXPECT_FALSE(std::filesystem::exists(tStatusFile::path()));
}

}  // namespace
}  // namespace endtoend
