#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/scriptedMachine_win32.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/install/lookAt.h"

namespace {

using support::tScriptedMachine;
using support::tToolRun;
using testing::HasSubstr;
using testing::IsEmpty;

/// Runs the command, which must refuse in one sentence and change nothing.
std::string refusalOf(tScriptedMachine& machine, const std::string& command) {
    const tScriptedMachine::tState before = machine.state;
    machine.log.clear();
    const tToolRun run({command});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(machine.state, before);
    EXPECT_THAT(machine.log, IsEmpty());
    EXPECT_EQ(machine.openHandles, 0);
    return run.error;
}

class refusalOnWindows : public testing::TestWithParam<const char*> {};

TEST_P(refusalOnWindows, SaysThatAdministratorRightsAreMissing) {
    tScriptedMachine machine;
    imports::OpenSCManagerW.replace([](auto...) -> SC_HANDLE {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    });
    EXPECT_EQ(refusalOf(machine, GetParam()),
              "ziptra: This needs administrator rights (5): use a console that was started with 'Run as "
              "administrator'\n");
}

TEST_P(refusalOnWindows, SaysThatTheManagerDoesNotAnswer) {
    tScriptedMachine machine;
    imports::OpenSCManagerW.replace([](auto...) -> SC_HANDLE {
        SetLastError(RPC_S_SERVER_UNAVAILABLE);
        return nullptr;
    });
    EXPECT_THAT(refusalOf(machine, GetParam()),
                testing::MatchesRegex("ziptra: The service manager could not be examined: .*\\(1722\\)\n"));
}

TEST_P(refusalOnWindows, SaysThatTheServiceIsMarkedForDeletion) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.service().marked = true;
    EXPECT_THAT(refusalOf(machine, GetParam()),
                HasSubstr("The service zuZiptraRemoteService is marked for deletion (1072): "));
}

TEST_P(refusalOnWindows, NamesTheOtherProgramThatTheServiceRuns) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    for (const wchar_t* const line : {LR"("%SystemRoot%\system32\services.exe" -k)",
                                      LR"(%SystemRoot%\system32\services -k)", L"services.exe", L"services"}) {
        machine.service().commandLine = line;
        EXPECT_THAT(refusalOf(machine, GetParam()),
                    testing::MatchesRegex("ziptra: The service zuZiptraRemoteService runs another program, "
                                          ".:.*.system32.services.exe: use .*\n"))
            << testing::PrintToString(line);
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, refusalOnWindows, testing::Values("install", "repair", "uninstall"));

TEST(lookAtMachine, ExpectsTheServiceWhereTheInstallerPutsIt) {
    const tScriptedMachine machine;
    nInstall::tAccess access{"install"};
    access.folder = R"(C:\Elsewhere)";
    EXPECT_EQ(nInstall::lookAt(access).program, R"(C:\Elsewhere\zuZiptraRemoteService.exe)");
}

}  // namespace
