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

class commandLine : public tEndToEnd {
protected:
    struct tAnswer {
        DWORD exitCode;
        std::string output;
        std::string errors;
        bool operator==(const tAnswer&) const = default;
    };

    /// The program's answer to a command line, whose first word is the program's name.
    [[nodiscard]] tAnswer ask(const wchar_t* line) const {
        const tProcess process(executable(), line);
        const DWORD exitCode = process.exitCode();
        return {exitCode, process.output(), process.errors()};
    }
};

TEST_F(commandLine, HelpIsPrintedToStandardOutputAndNothingIsStarted) {
    EXPECT_EQ(ask(L"host x --help"), (tAnswer{0, usage, ""}));
    EXPECT_FALSE(std::filesystem::exists(tStatusFile::path()));
}

TEST_F(commandLine, OtherArgumentsAreRefusedUnderTheNameThatTheProgramWasCalledBy) {
    const DWORD minusOne = 0xFFFFFFFF;
    EXPECT_EQ(ask(L"\"C:\\Program Files\\100%s%n.exe\" \"\""),
              (tAnswer{minusOne, "", "Try `C:\\Program Files\\100%s%n.exe --help' for more information.\r\n"}));
    EXPECT_FALSE(std::filesystem::exists(tStatusFile::path()));
}

}  // namespace
}  // namespace endtoend
