// The answers to arguments if the console is gone: the exit code stays the same.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>

#include "tests/support/imports_win32.h"
#include "tests/sweep/figures.h"

int hostMain(int argumentCount, char** arguments);

namespace {

/// Whether calls of fprintf fail, and how many did.
bool printingFails = false;
int prints = 0;

/// Runs the host from a command line with one argument. Returns its exit code.
int answerTo(const char* argument) {
    imports::StartServiceCtrlDispatcherA.replace([](auto...) {
        imports::SetLastError.real(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
        return FALSE;
    });
    std::string program = "host.exe";
    std::string given = argument;
    char* arguments[] = {program.data(), given.data(), nullptr};
    return hostMain(2, arguments);
}

TEST(hostMain, ReturnsZeroWhenTheHelpCannotBeWritten) {
    int writes = 0;
    imports::fwrite.replace([&writes](auto...) {
        ++writes;
        return std::size_t{0};
    });
    EXPECT_EQ(answerTo("--help"), 0);
    imports::ImportBase::restoreAll();
    EXPECT_EQ(writes, 1);
    sweep::count("a system call, once", {.faults = writes});
}

TEST(hostMain, ReturnsMinusOneWhenTheComplaintCannotBeWritten) {
    prints = 0;
    printingFails = true;
    EXPECT_EQ(answerTo("--wrong"), -1);
    printingFails = false;
    EXPECT_EQ(prints, 1);
    sweep::count("a system call, once", {.faults = prints});
}

}  // namespace

// The program is linked with --wrap for this one, which MinGW's fprintf calls.
extern "C" {
int __real___mingw_vfprintf(std::FILE* file, const char* format, std::va_list arguments);

int __wrap___mingw_vfprintf(std::FILE* file, const char* format, std::va_list arguments) {
    if (!printingFails) return __real___mingw_vfprintf(file, format, arguments);
    ++prints;
    return -1;
}
}
