#include "tool/install/step.h"

#include <gtest/gtest.h>

#include "tool/install/settings.h"

namespace {

using namespace nInstall;
struct tRow {
    tStep step;
    const char* done;
    const char* notDone;
    std::vector<std::string> lines;
};

const std::string installer = R"(HKLM\SOFTWARE\Corvell\Common\Installer)";
constexpr const char* addUsers = " '*S-1-5-32-545:(OI)(CI)RX'";

std::string grant(const std::string& folder) {
    return "icacls '" + folder + "' /inheritance:r /grant:r '*S-1-5-18:(OI)(CI)F' '*S-1-5-32-544:(OI)(CI)F'";
}

const std::vector<tRow> rows = {
    {tStep{tAction::createFolder, "C:\\a b", std::string(folderAccess)},
     "Created the folder C:\\a b",
     "The folder C:\\a b could not be created",
     {"New-Item -ItemType Directory -Path 'C:\\a b' | Out-Null", grant("C:\\a b") + addUsers,
      "icacls 'C:\\a b' /setowner '*S-1-5-32-544'"}},
    {tStep{tAction::setAccess, "C:\\d", std::string(dumpsAccess)},
     "Set the access list of C:\\d",
     "The access list of C:\\d could not be set",
     {"icacls 'C:\\d' /reset", grant("C:\\d"), "icacls 'C:\\d' /setowner '*S-1-5-32-544'"}},
    {tStep{tAction::createService, R"("C:\O'Neill\x.exe")", "auto"},
     R"(Created the service zuZiptraRemoteService: "C:\O'Neill\x.exe")",
     "The service zuZiptraRemoteService could not be created",
     {"New-Service -Name zuZiptraRemoteService -DisplayName 'ZU-Ziptra Remote Service' -StartupType Automatic `",
      R"(    -BinaryPathName '"C:\O''Neill\x.exe"')"}},
    {tStep{tAction::createService, "x", "demand"},
     "Created the service zuZiptraRemoteService: x",
     "The service zuZiptraRemoteService could not be created",
     {"New-Service -Name zuZiptraRemoteService -DisplayName 'ZU-Ziptra Remote Service' -StartupType Manual `",
      "    -BinaryPathName 'x'"}},
    {tStep{tAction::setCommandLine, R"("C:\x.exe")"},
     R"(Set the command line of the service to "C:\x.exe")",
     "The command line of the service could not be set",
     {"Get-CimInstance Win32_Service -Filter \"Name='zuZiptraRemoteService'\" | Invoke-CimMethod -MethodName Change "
      "-Arguments @{PathName='\"C:\\x.exe\"'}"}},
    {tStep{tAction::setStart, "", "demand"},
     "Set the start of the service to demand",
     "The start of the service could not be set",
     {"sc.exe config zuZiptraRemoteService start= demand"}},
    {tStep{tAction::setDelayed, "", "delayed-auto"},
     "Set the start of the service to delayed-auto",
     "The start of the service could not be set",
     {"sc.exe config zuZiptraRemoteService start= delayed-auto"}},
    {tStep{tAction::setRecovery},
     "Set the recovery actions of the service: restart after 5, 30 and 120 seconds",
     "The recovery actions of the service could not be set",
     {"sc.exe failure zuZiptraRemoteService reset= 86400 actions= restart/5000/restart/30000/restart/120000"}},
    {tStep{tAction::setRecoveryOnError},
     "Set the recovery actions for a start that fails",
     "The recovery actions for a start that fails could not be set",
     {"sc.exe failureflag zuZiptraRemoteService 1"}},
    {tStep{tAction::setDescription},
     "Set the description of the service",
     "The description of the service could not be set",
     {"Set-Service -Name zuZiptraRemoteService -Description 'Starts the plug-ins for remote configuration and "
      "deployment. ''ziptra status'' shows what became of them.'"}},
    {tStep{tAction::setRegistryValue, installer, "D:\\a b", "ZUSHAREDDIR64", "REG_SZ"},
     R"(Set ZUSHAREDDIR64 in HKLM\SOFTWARE\Corvell\Common\Installer to D:\a b)",
     R"(ZUSHAREDDIR64 in HKLM\SOFTWARE\Corvell\Common\Installer could not be set)",
     {R"(reg.exe add 'HKLM\SOFTWARE\Corvell\Common\Installer' /v ZUSHAREDDIR64 /t REG_SZ /d 'D:\a b' /f /reg:64)"}},
    {tStep{tAction::startService},
     "Started the service",
     "The service could not be started",
     {"Start-Service zuZiptraRemoteService"}},
    {tStep{tAction::stopService},
     "Stopped the service",
     "The service could not be stopped",
     {"Stop-Service zuZiptraRemoteService"}},
    {tStep{tAction::deleteService},
     "Deleted the service zuZiptraRemoteService",
     "The service zuZiptraRemoteService could not be deleted",
     {"sc.exe delete zuZiptraRemoteService"}},
    {tStep{tAction::deleteRegistryValue, installer, "", "ZUSHAREDDIR64"},
     R"(Deleted ZUSHAREDDIR64 in HKLM\SOFTWARE\Corvell\Common\Installer)",
     R"(ZUSHAREDDIR64 in HKLM\SOFTWARE\Corvell\Common\Installer could not be deleted)",
     {R"(reg.exe delete 'HKLM\SOFTWARE\Corvell\Common\Installer' /v ZUSHAREDDIR64 /f /reg:64)"}},
    {tStep{tAction::deleteRegistryKey, installer},
     R"(Deleted HKLM\SOFTWARE\Corvell\Common\Installer)",
     R"(HKLM\SOFTWARE\Corvell\Common\Installer could not be deleted)",
     {R"(reg.exe delete 'HKLM\SOFTWARE\Corvell\Common\Installer' /f /reg:64)"}},
    {tStep{tAction::deleteFile, "C:\\[1]\\a"},
     "Deleted the file C:\\[1]\\a",
     "The file C:\\[1]\\a could not be deleted",
     {"if (Test-Path -LiteralPath 'C:\\[1]\\a') { Remove-Item -Force -LiteralPath 'C:\\[1]\\a' }"}},
    {tStep{tAction::deleteFile, "C:\\a", "do this"},
     "Deleted the file C:\\a: do this",
     "The file C:\\a could not be deleted",
     {"if (Test-Path -LiteralPath 'C:\\a') { Remove-Item -Force -LiteralPath 'C:\\a' }"}},
    {tStep{tAction::deleteFolder, "C:\\a"},
     "Deleted the folder C:\\a",
     "The folder C:\\a could not be deleted",
     {"[IO.Directory]::Delete('C:\\a')"}},
};

TEST(nInstallStep, IsDescribedOnceDoneAndIfItFails) {
    for (const tRow& row : rows) {
        EXPECT_EQ(done(row.step), row.done);
        EXPECT_EQ(notDone(row.step), row.notDone);
    }
}

TEST(nInstallStep, BeginsWithACapitalLetterIfItBeginsWithALetter) {
    EXPECT_EQ(notDone({tAction::deleteRegistryKey, "a"}), "A could not be deleted");
    EXPECT_EQ(notDone({tAction::deleteRegistryKey, "z"}), "Z could not be deleted");
    EXPECT_EQ(notDone({tAction::deleteRegistryKey, "{a}"}), "{a} could not be deleted");
}

TEST(nInstallStep, HasLinesForPowershell) {
    for (const tRow& row : rows) EXPECT_EQ(commandLines(row.step), row.lines) << row.done;
}

TEST(nInstallStep, IsOptionalIfOlderSystemsLackTheSettingOrAFolderStays) {
    for (const tRow& row : rows) {
        const tAction action = row.step.action;
        const bool isSetting =
            action == tAction::setDelayed || action == tAction::setRecovery || action == tAction::setRecoveryOnError;
        EXPECT_EQ(isOptional(row.step, unknownSetting), isSetting || action == tAction::deleteFolder);
        EXPECT_EQ(isOptional(row.step, 145), action == tAction::deleteFolder);
    }
}

TEST(nInstallSettings, SayTheRecoveryActionsAsNumbersAndAsText) {
    std::string text = "reset= " + std::to_string(recoveryResetSeconds) + " actions= ";
    for (const unsigned delay : restartDelaysMs) text += "restart/" + std::to_string(delay) + '/';
    EXPECT_EQ(text, std::string(recovery) + '/');
}

}  // namespace
