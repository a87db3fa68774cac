#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/scriptedMachine_win32.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/install/perform.h"

namespace {

using support::tScriptedMachine;
using support::tToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::wstring parameters = L"SYSTEM\\CurrentControlSet\\Services\\zuZiptraRemoteService\\Parameters";
const std::wstring installer = L"SOFTWARE\\Corvell\\Common\\Installer";
const std::wstring dumps =
    L"SOFTWARE\\Microsoft\\Windows\\Windows Error Reporting\\LocalDumps\\zuZiptraRemoteService.exe";

/// The service's executable beside the test program.
std::string program() {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::string path = nStdPath::pathToUtf8(self);
    return path.substr(0, path.rfind('\\')) + "\\zuZiptraRemoteService.exe";
}

std::string quotedProgram() { return '"' + program() + '"'; }

void installWithFile(tScriptedMachine& machine, const std::wstring& name) {
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.state.files = {{L"F:\\Data\\Corvell\\" + name, FILE_ATTRIBUTE_NORMAL}};
}

TEST(installOnWindows, MakesEachCallWithTheRightArguments) {
    tScriptedMachine machine;
    const tToolRun run({"install", "--crash-dumps", "F:\\d 插"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    const std::string access = ", O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
    const std::string users = "(A;OICI;0x1200a9;;;BU)";
    EXPECT_THAT(
        machine.log,
        ElementsAre(
            "CreateDirectoryW F:\\Common\\Corvell" + access + users,
            "CreateDirectoryW F:\\Common\\Corvell\\ZiptraRemoteService" + access + users,
            "CreateDirectoryW F:\\Common\\Corvell\\ZiptraRemoteService\\plugins" + access + users,
            "CreateDirectoryW F:\\Data\\Corvell" + access + users,
            "CreateServiceW zuZiptraRemoteService, ZU-Ziptra Remote Service, 4, 16, 2, 1, " + quotedProgram() +
                ", -, -, -, -, -",
            "Delayed 1", "Recovery 86400, 1/5000 1/30000 1/120000, -, -", "RecoveryOnError 1",
            "Description Starts the plug-ins for remote configuration and deployment. 'ziptra status' shows what "
            "became of them.",
            "RegSetValueExW " + nStdPath::pathToUtf8(parameters) +
                ", InstalledSharedDirectory, 1:F:\\Common\\Corvell, 36",
            "RegSetValueExW " + nStdPath::pathToUtf8(installer) + ", ZUSHAREDDIR64, 1:F:\\Common\\Corvell, 36",
            "CreateDirectoryW F:\\d 插" + access,
            "RegSetValueExW " + nStdPath::pathToUtf8(dumps) + ", DumpFolder, 2:F:\\d 插, 14",
            "RegSetValueExW " + nStdPath::pathToUtf8(dumps) + ", DumpCount, 4:10, 4",
            "RegSetValueExW " + nStdPath::pathToUtf8(dumps) + ", DumpType, 4:1, 4", "StartServiceW 0 -"));
    EXPECT_EQ(machine.openHandles, 0);
}

TEST(installOnWindows, ChangesNothingTheSecondTime) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install", "--crash-dumps", "F:\\d"}).exitCode, 0);
    machine.log.clear();
    EXPECT_EQ(tToolRun({"install", "--crash-dumps", "F:\\d"}).out, "Nothing to do: everything is as requested\n");
    EXPECT_THAT(machine.log, IsEmpty());
    EXPECT_EQ(machine.openHandles, 0);
}

TEST(repairOnWindows, SetsEverythingAgain) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    const tScriptedMachine::tState installed = machine.state;
    machine.service() = {L"C:\\gone\\x.exe", SERVICE_DISABLED, SERVICE_RUNNING};
    machine.state.folders[L"F:\\Data\\Corvell"] = L"O:BUD:(A;;FA;;;WD)";
    machine.log.clear();
    EXPECT_EQ(tToolRun({"repair"}).exitCode, 0);
    EXPECT_EQ(machine.state.services, installed.services);
    EXPECT_EQ(machine.state.keys, installed.keys);
    // 1 is the owner, 4 the list, and the last bit protects it.
    EXPECT_THAT(machine.log, testing::Contains("SetSecurityInfo F:\\Data\\Corvell, 1, 2147483653, "
                                               "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)"));
    EXPECT_THAT(machine.log, testing::Contains("ChangeServiceConfigW -, -, -, " + quotedProgram()));
    EXPECT_THAT(machine.log, testing::Contains("ChangeServiceConfigW -, 2, -, -"));
}

TEST(repairOnWindows, SetsNoAccessListThroughAFolderThatHasBecomeALink) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    imports::GetFileInformationByHandleEx.replace(
        [&, usual = imports::GetFileInformationByHandleEx.current()](auto... arguments) {
            machine.links.insert(L"F:\\Data\\Corvell");
            return usual(arguments...);
        });
    machine.log.clear();
    const tToolRun run({"repair"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.error, HasSubstr("The access list of F:\\Data\\Corvell could not be set: "));
    EXPECT_THAT(machine.log, Not(testing::Contains(HasSubstr("F:\\Data\\Corvell"))));
    EXPECT_EQ(machine.openHandles, 0);
}

TEST(repairOnWindows, DeletesStatusFilesThatUsersHavePutThereEvenIfTheyAreReadOnly) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    const std::string status = "F:\\Data\\Corvell\\zuZiptraRemoteService.status";
    const std::string temporary = "F:\\Data\\Corvell\\.zuZiptraRemoteService.status.tmp";
    machine.state.files = {{nStdPath::widePathFromUtf8(status), FILE_ATTRIBUTE_READONLY},
                           {nStdPath::widePathFromUtf8(temporary), FILE_ATTRIBUTE_NORMAL}};
    machine.state.folders[nStdPath::widePathFromUtf8(status)] = L"O:BUD:(A;;FA;;;SY)";
    machine.log.clear();
    const tToolRun run({"repair"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out,
                HasSubstr("Deleted the file " + status + ": restart the service, which then writes it again\n"));
    machine.log.erase(machine.log.begin(), machine.log.begin() + 3);  // the access lists
    EXPECT_THAT(machine.log, ElementsAre("SetFileAttributesW " + status + ", 128", "DeleteFileW " + status,
                                         "DeleteFileW " + temporary));
}

TEST(repairOnWindows, KeepsAStatusFileThatOnlyAdministratorsCanChange) {
    tScriptedMachine machine;
    installWithFile(machine, L"zuZiptraRemoteService.status");
    EXPECT_EQ(tToolRun({"repair"}).exitCode, 0);
    EXPECT_EQ(machine.state.files.size(), 1U);
}

TEST(repairOnWindows, DeletesAStatusFileWhoseAccessListCannotBeRead) {
    tScriptedMachine machine;
    installWithFile(machine, L"zuZiptraRemoteService.status");
    imports::GetNamedSecurityInfoW.replace(
        [usual = imports::GetNamedSecurityInfoW.current()](const wchar_t* name, auto... arguments) -> DWORD {
            return std::wstring_view(name).ends_with(L".status") ? ERROR_ACCESS_DENIED : usual(name, arguments...);
        });
    EXPECT_EQ(tToolRun({"repair"}).exitCode, 0);
    EXPECT_EQ(machine.state.files.size(), 0U);
}

TEST(repairOnWindows, DoesNotMissATemporaryFileThatTheServiceHasRenamedMeanwhile) {
    tScriptedMachine machine;
    installWithFile(machine, L".zuZiptraRemoteService.status.tmp");
    imports::SetSecurityInfo.replace([&](auto...) -> DWORD {
        machine.state.files.clear();
        return ERROR_SUCCESS;
    });
    EXPECT_EQ(tToolRun({"repair"}).exitCode, 0);
}

TEST(uninstallOnWindows, RemovesWhatInstallHasSet) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install", "--crash-dumps", "F:\\d"}).exitCode, 0);
    machine.log.clear();
    imports::ControlService.replace([&, usual = imports::ControlService.current()](auto... arguments) {
        machine.state.files[L"F:\\Data\\Corvell\\zuZiptraRemoteService.status"] = FILE_ATTRIBUTE_NORMAL;
        return usual(arguments...);
    });
    EXPECT_EQ(tToolRun({"uninstall"}).exitCode, 0);
    EXPECT_THAT(machine.log,
                ElementsAre("ControlService 1", "DeleteFileW F:\\Data\\Corvell\\zuZiptraRemoteService.status",
                            "RegDeleteValueW " + nStdPath::pathToUtf8(installer) + ", ZUSHAREDDIR64", "DeleteService",
                            "RegDeleteTreeW " + nStdPath::pathToUtf8(dumps), "RemoveDirectoryW F:\\Data\\Corvell"));
    EXPECT_EQ(machine.openHandles, 0);
}

TEST(uninstallOnWindows, WaitsUntilOtherProgramsCloseTheStatusFile) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    int attempts = 0;
    const auto inUse = [&attempts](auto...) {
        ++attempts;
        SetLastError(ERROR_SHARING_VIOLATION);
        return FALSE;
    };
    imports::DeleteFileW.replace(inUse);
    const tToolRun held({"uninstall"});
    EXPECT_EQ(held.exitCode, 2);
    EXPECT_THAT(held.error, HasSubstr("zuZiptraRemoteService.status could not be deleted: "));
    EXPECT_GT(attempts, 10);
    attempts = 0;
    imports::DeleteFileW.replace([&](auto... arguments) { return attempts < 3 ? inUse(arguments...) : TRUE; });
    machine.service().state = SERVICE_RUNNING;
    EXPECT_EQ(tToolRun({"uninstall"}).exitCode, 0);
}

TEST(uninstallOnWindows, AsksAServiceThatIsStillStartingUntilItAccepts) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.log.clear();
    machine.controlError = ERROR_SERVICE_CANNOT_ACCEPT_CTRL;
    EXPECT_EQ(tToolRun({"uninstall"}).exitCode, 0);
    EXPECT_EQ(std::count(machine.log.begin(), machine.log.end(), "ControlService 1"), 2);
}

TEST(uninstallOnWindows, ChangesNothingIfTheServiceDoesNotStopWithinTheLimit) {
    tScriptedMachine machine;
    EXPECT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.stateAfterStop = SERVICE_STOP_PENDING;
    machine.log.clear();
    const tToolRun run({"uninstall", "--limit", "5"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.error, testing::MatchesRegex("ziptra: The service could not be stopped: .*\\(1053\\)\n"));
    EXPECT_THAT(machine.log, ElementsAre("ControlService 1"));
}

TEST(installOnWindows, SaysThatTheServiceDidNotStart) {
    tScriptedMachine machine;
    machine.stateAfterStart = SERVICE_STOPPED;
    machine.exitCode = ERROR_SERVICE_SPECIFIC_ERROR;
    EXPECT_THAT(tToolRun({"install"}).error, HasSubstr("(1066); run 'ziptra install' again to continue\n"));
    machine.exitCode = 0;
    EXPECT_THAT(tToolRun({"install"}).error, HasSubstr("The service could not be started: "));
    machine.stateAfterStart = SERVICE_START_PENDING;
    EXPECT_THAT(tToolRun({"install"}).error, HasSubstr("(1053)\n"));
}

}  // namespace
