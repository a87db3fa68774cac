#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/scriptedMachine_win32.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tScriptedMachine;
using support::tToolRun;
using testing::HasSubstr;

constexpr const char* nothingFound = "Only administrators can change what the service trusts\n";

TEST(auditOnWindows, FindsNothingOnAMachineAsInstallLeavesIt) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    const tToolRun run({"audit", "--strict"});
    EXPECT_EQ(run.out, nothingFound);
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(machine.openHandles, 0);
}

TEST(auditOnWindows, FindsWhatOthersCanChange) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    const std::wstring users = tScriptedMachine::usualAccess + std::wstring(L"(A;;0x1301bf;;;BU)");
    const std::wstring plugins = L"F:\\Common\\Corvell\\ZiptraRemoteService\\plugins";
    for (const wchar_t* const path :
         {L"F:\\Common", plugins.c_str(), L"MACHINE\\SOFTWARE\\Corvell\\Common\\Installer", L"zuZiptraRemoteService"}) {
        machine.state.folders[path] = users;
    }
    const tToolRun run({"audit"});
    EXPECT_EQ(run.exitCode, 1) << run.error;
    for (const char* const line :
         {"F:\\Common: error: ", "\\plugins: error: ", "Installer: error: ", "zuZiptraRemoteService: error: "}) {
        EXPECT_THAT(run.out, HasSubstr(line));
    }
}

TEST(auditOnWindows, SaysWhereOthersCouldCreateWhatIsMissing) {
    tScriptedMachine machine;
    machine.state.folders[L"F:\\Data"] = tScriptedMachine::usualAccess + std::wstring(L"(A;;0x120116;;;BU)");
    EXPECT_THAT(tToolRun({"audit"}).out, HasSubstr("F:\\Data: warning: "));
}

TEST(auditOnWindows, FollowsACommandLineWithoutQuotesAsWindowsDoes) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.state.folders[L"F:\\Common\\a b"] = tScriptedMachine::usualAccess;
    machine.state.folders[L"F:\\Common"] = tScriptedMachine::usualAccess + std::wstring(L"(A;;0x120116;;;BU)");
    machine.service().commandLine = LR"("F:\Common\a b\x.exe")";
    EXPECT_EQ(tToolRun({"audit"}).exitCode, 0);
    machine.service().commandLine = LR"(F:\Common\a b\x.exe)";
    EXPECT_THAT(tToolRun({"audit"}).out, HasSubstr("F:\\Common: error: "));
}

TEST(auditOnWindows, NamesTheOwnerOfAStatusFileThatAUserHasPutThere) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    for (const wchar_t* const name : {L"zuZiptraRemoteService.status", L".zuZiptraRemoteService.status.tmp"}) {
        machine.state.folders[std::wstring(L"F:\\Data\\Corvell\\") + name] = L"O:BUD:(A;;FA;;;SY)";
    }
    const std::string folder = R"(F:\Data\Corvell\)";
    const std::string out = tToolRun({"audit"}).out;
    for (const std::string& file :
         {folder + "zuZiptraRemoteService.status", folder + ".zuZiptraRemoteService.status.tmp"}) {
        EXPECT_THAT(out, HasSubstr(file +
                                   ": warning: BUILTIN\\Users owns this and can change the access list "
                                   "[exposed-status]\n    fix: icacls '" +
                                   file + "' /setowner '*S-1-5-32-544'\n"));
    }
}

TEST(auditOnWindows, SaysThatAFolderIsALink) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.links = {L"F:\\Common\\Corvell"};
    EXPECT_EQ(tToolRun({"audit"}).out,
              "F:\\Common\\Corvell: warning: this is a link; what it leads to is not examined [unexamined-path]\n");
    EXPECT_EQ(tToolRun({"audit", "--strict"}).exitCode, 1);
}

TEST(auditOnWindows, SaysThatAFolderIsOnADriveOfAnotherMachineOrOfNone) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    for (const int type : {DRIVE_REMOTE, DRIVE_NO_ROOT_DIR, DRIVE_UNKNOWN}) {
        machine.driveType = static_cast<UINT>(type);
        EXPECT_THAT(tToolRun({"audit"}).out,
                    HasSubstr("F:\\Data\\Corvell: warning: this is on no drive of this machine; "));
    }
}

TEST(auditOnWindows, SetsTheListsOfTheFoldersThatTheHostOwns) {
    tScriptedMachine machine;
    ASSERT_EQ(tToolRun({"install"}).exitCode, 0);
    machine.state.folders[L"F:\\Data\\Corvell"] = L"O:BUD:(A;;FA;;;WD)";
    const tToolRun run({"audit", "--fix"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(run.out, std::string("Set the access list of F:\\Data\\Corvell\n") + nothingFound);
    EXPECT_EQ(machine.log.back(),
              "SetSecurityInfo F:\\Data\\Corvell, 1, 2147483653, "
              "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)");
}

}  // namespace
