#include <cstring>

#include "tests/support/hostCalls_win32.h"

/// The program's main, compiled again under this name so that tests can call it.
int hostMain(int argumentCount, char** arguments);

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

constexpr const char* usage =
    "Usage: zuZiptraRemoteService.exe [OPTIONS]\n\nWhen launched by the Service Control Manager, this program runs as "
    "a service.\nOtherwise, such as when run from the command line, it runs in the foreground.\n\nMiscellaneous "
    "options:\n\n  -h, --help     display this help and exit\n";

class mainTest : public support::tHostCalls {
protected:
    void SetUp() override {
        tHostCalls::SetUp();
        failDispatcher(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
    }

    void failDispatcher(DWORD error) {
        imports::StartServiceCtrlDispatcherA.replace([this, error](auto...) {
            calls.emplace_back("dispatch");
            SetLastError(error);
            return FALSE;
        });
    }

    /// Returns the exit code and stores the program's output in `output` and `errors`.
    int run(std::vector<std::string> arguments) {
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        CaptureStdout();
        CaptureStderr();
        const int exitCode = hostMain(static_cast<int>(arguments.size()), pointers.data());
        output = GetCapturedStdout();
        errors = GetCapturedStderr();
        return exitCode;
    }

    /// Runs in the foreground and returns the exit code. Calls nothing after main, so that the last error stays
    /// unchanged.
    static int runInForeground() {
        char program[] = "host.exe";
        char* arguments[] = {program, nullptr};
        return hostMain(1, arguments);
    }

    std::string output;
    std::string errors;
};

// Service mode.

TEST_F(mainTest, PassesTheDispatcherOneNamedServiceAndATerminator) {
    imports::StartServiceCtrlDispatcherA.replace([](const SERVICE_TABLE_ENTRYA* table) {
        EXPECT_STREQ(table[0].lpServiceName, "zuZiptraRemoteService");
        EXPECT_EQ(table[0].lpServiceProc, &serviceMain);
        EXPECT_EQ(table[1].lpServiceName, nullptr);
        EXPECT_EQ(table[1].lpServiceProc, nullptr);
        return TRUE;
    });
    EXPECT_EQ(run({"host.exe"}), 0);
}

TEST_F(mainTest, ReturnsZeroAfterTheServiceHasStoppedAndIgnoresTheArguments) {
    imports::StartServiceCtrlDispatcherA.replace([](auto...) { return TRUE; });
    EXPECT_EQ(run({"host.exe", "--nonsense"}), 0);
    EXPECT_EQ(run({"host.exe", "--help"}), 0);
    EXPECT_EQ(output + errors, "");
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(mainTest, ReturnsAnyOtherDispatcherErrorBeforeExaminingTheArguments) {
    for (const DWORD error :
         {DWORD{ERROR_ACCESS_DENIED}, DWORD{ERROR_SERVICE_ALREADY_RUNNING}, DWORD{1064}, DWORD{0}, DWORD{0xC0000005}}) {
        failDispatcher(error);
        calls.clear();
        EXPECT_EQ(static_cast<DWORD>(run({"host.exe", "--help"})), error);
        EXPECT_EQ(output + errors, "");
        EXPECT_EQ(static_cast<DWORD>(run({"host.exe"})), error);
        EXPECT_THAT(calls, ElementsAre("dispatch", "dispatch"));
    }
}

// Arguments.

TEST_F(mainTest, PrintsTheUsageForEitherHelpArgument) {
    for (const char* help : {"-h", "--help"}) {
        EXPECT_EQ(run({"host.exe", help}), 0);
        EXPECT_EQ(output, usage);
        EXPECT_EQ(errors, "");
    }
}

TEST_F(mainTest, RecognisesAHelpArgumentInAnyPosition) {
    EXPECT_EQ(run({"host.exe", "x", "--help"}), 0);
    EXPECT_EQ(output, usage);
    EXPECT_EQ(run({"host.exe", "-h", "x"}), 0);
    EXPECT_EQ(output, usage);
    EXPECT_EQ(run({"host.exe", "x", "y", "-H", "-h", "--help"}), 0);
    EXPECT_EQ(output, usage);
}

TEST_F(mainTest, RejectsArgumentsThatOnlyResembleHelp) {
    for (const char* argument : {"-help", "-H", "--HELP", "--hel", "--helpx", "-hx", "-?", "/h", "h", " -h", "-", ""}) {
        EXPECT_EQ(run({"host.exe", argument}), -1) << argument;
        EXPECT_EQ(output, "");
        EXPECT_EQ(errors, "Try `host.exe --help' for more information.\n");
    }
}

TEST_F(mainTest, DoesNotTreatTheProgramNameAsAnArgument) {
    EXPECT_EQ(run({"--help", "x"}), -1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "Try `--help --help' for more information.\n");
}

TEST_F(mainTest, PrintsPercentSignsInTheProgramNameUnchanged) {
    EXPECT_EQ(run({"C:\\100%s%n %d\\host.exe", "x"}), -1);
    EXPECT_EQ(errors, "Try `C:\\100%s%n %d\\host.exe --help' for more information.\n");
}

TEST_F(mainTest, DoesNotStartTheServiceIfThereAreArguments) {
    run({"host.exe", "--help"});
    run({"host.exe", "x"});
    EXPECT_THAT(calls, ElementsAre("dispatch", "dispatch"));
}

// The foreground.

TEST_F(mainTest, RunsInTheForegroundBetweenItsConsoleHandlers) {
    runInForeground();
    EXPECT_THAT(calls, ElementsAre("dispatch", "add-early", "create-event", "add-run", "list", "remove-run",
                                   "close-event", "remove-early"));
    EXPECT_EQ(gService, nullptr);
}

TEST_F(mainTest, RunsInTheForegroundEvenWithoutAProgramName) {
    char* arguments[] = {nullptr};
    hostMain(0, arguments);
    EXPECT_THAT(calls, testing::Contains("list"));
}

TEST_F(mainTest, ReturnsTheLastErrorThatIsSetAfterTheStop) {
    imports::SetConsoleCtrlHandler.replace([](PHANDLER_ROUTINE handler, BOOL add) {
        SetLastError(handler == earlyConsoleHandler && add == FALSE ? 4711 : 13);
        return TRUE;
    });
    EXPECT_EQ(runInForeground(), 4711);
}

TEST_F(mainTest, ReturnsALargeLastErrorWithTheSame32Bits) {
    imports::SetConsoleCtrlHandler.replace([](auto...) {
        SetLastError(0xE0000123);
        return TRUE;
    });
    EXPECT_EQ(static_cast<DWORD>(runInForeground()), 0xE0000123);
}

TEST_F(mainTest, ReturnsTheLastErrorAtOnceWhenTheFirstHandlerIsRefused) {
    imports::SetConsoleCtrlHandler.replace([this](PHANDLER_ROUTINE handler, BOOL add) {
        calls.emplace_back(std::string(add == TRUE ? "add-" : "remove-") + nameOf(handler));
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    });
    EXPECT_EQ(runInForeground(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(calls, ElementsAre("dispatch", "add-early"));
}

TEST_F(mainTest, ReturnsMinusOneWhenTheStartFails) {
    refuseEvents();
    EXPECT_EQ(runInForeground(), -1);
    EXPECT_THAT(calls, ElementsAre("dispatch", "add-early", "create-event", "remove-early"));
}

TEST_F(mainTest, SetsTheStartResultAsTheLastErrorThenRemovesTheHandlerThenReadsTheErrorBack) {
    refuseEvents();
    imports::SetConsoleCtrlHandler.replace([](PHANDLER_ROUTINE, BOOL add) {
        if (add == FALSE) {
            EXPECT_EQ(GetLastError(), 0xFFFFFFFFU);
            SetLastError(99);
        }
        return TRUE;
    });
    EXPECT_EQ(runInForeground(), 99);
}

TEST_F(mainTest, SkipsTheRunButStopsIfTheSecondHandlerIsRefused) {
    imports::SetConsoleCtrlHandler.replace([this](PHANDLER_ROUTINE handler, BOOL add) {
        calls.emplace_back(std::string(add == TRUE ? "add-" : "remove-") + nameOf(handler));
        return handler == runConsoleHandler ? FALSE : TRUE;
    });
    runInForeground();
    EXPECT_THAT(calls, ElementsAre("dispatch", "add-early", "create-event", "add-run", "close-event", "remove-early"));
    EXPECT_EQ(gService, nullptr);
}

TEST_F(mainTest, SkipsTheRunButStopsAfterAConsoleEventDuringTheStart) {
    imports::OpenProcess.replace([](auto...) -> HANDLE {  // during the start
        EXPECT_EQ(earlyConsoleHandler(CTRL_C_EVENT), TRUE);
        return nullptr;
    });
    runInForeground();
    EXPECT_THAT(calls, ElementsAre("dispatch", "add-early", "create-event", "add-run", "remove-run", "close-event",
                                   "remove-early"));
    EXPECT_EQ(gService, nullptr);
}

TEST_F(mainTest, EndsTheRunOnAConsoleEvent) {
    imports::RegOpenKeyExW.replace([this](auto...) {  // during the run
        calls.emplace_back("list");
        EXPECT_EQ(runConsoleHandler(CTRL_C_EVENT), TRUE);
        return LSTATUS{ERROR_FILE_NOT_FOUND};
    });
    runInForeground();
    EXPECT_THAT(calls, ElementsAre("dispatch", "add-early", "create-event", "add-run", "list", "remove-run",
                                   "set-event", "remove-run", "close-event", "remove-early"));
}

}  // namespace
