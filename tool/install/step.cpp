#include "tool/install/step.h"

#include <string_view>
#include <utility>

#include "tool/format.h"
#include "tool/install/powershell.h"
#include "tool/install/settings.h"

namespace nInstall {
namespace {

using nPowershell::quoted;
using tLines = std::vector<std::string>;

/// A step in words: "Set OBJECT DETAIL", "OBJECT could not be set".
struct tWording {
    std::string_view participle;
    std::string object;
    std::string detail;
};

tWording wordingOf(const tStep& step) {
    switch (step.action) {
        case tAction::createFolder: return {"created", "the folder " + step.target, ""};
        case tAction::setAccess: return {"set", "the access list of " + step.target, ""};
        case tAction::createService: return {"created", "the service zuZiptraRemoteService", ": " + step.target};
        case tAction::setCommandLine: return {"set", "the command line of the service", " to " + step.target};
        case tAction::setStart:
        case tAction::setDelayed: return {"set", "the start of the service", " to " + step.value};
        case tAction::setRecovery:
            return {"set", "the recovery actions of the service", ": restart after 5, 30 and 120 seconds"};
        case tAction::setRecoveryOnError: return {"set", "the recovery actions for a start that fails", ""};
        case tAction::setDescription: return {"set", "the description of the service", ""};
        case tAction::setRegistryValue:
            return {"set", fmt::format("{} in {}", step.name, step.target), " to " + step.value};
        case tAction::startService: return {"started", "the service", ""};
        case tAction::stopService: return {"stopped", "the service", ""};
        case tAction::deleteService: return {"deleted", "the service zuZiptraRemoteService", ""};
        case tAction::deleteRegistryValue: return {"deleted", fmt::format("{} in {}", step.name, step.target), ""};
        case tAction::deleteRegistryKey: return {"deleted", step.target, ""};
        case tAction::deleteFile:
            return {"deleted", "the file " + step.target, step.value.empty() ? "" : ": " + step.value};
        default: return {"deleted", "the folder " + step.target, ""};
    }
}

std::string capitalized(std::string text) {
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
}

/// Returns the first line and those that give a folder its access list, one of those in settings.h.
tLines accessLines(std::string first, const tStep& step) {
    const std::string folder = quoted(step.target);
    const std::string users = step.value == folderAccess ? " '*S-1-5-32-545:(OI)(CI)RX'" : "";
    return {std::move(first),
            fmt::format("icacls {} /inheritance:r /grant:r '*S-1-5-18:(OI)(CI)F' '*S-1-5-32-544:(OI)(CI)F'{}", folder,
                        users),
            fmt::format("icacls {} /setowner '*S-1-5-32-544'", folder)};
}

std::string config(std::string_view setting) { return fmt::format("sc.exe config {} {}", serviceName, setting); }

tLines createServiceLines(const tStep& step) {
    return {fmt::format("New-Service -Name {} -DisplayName {} -StartupType {} `", serviceName, quoted(displayName),
                        step.value == "demand" ? "Manual" : "Automatic"),
            "    -BinaryPathName " + quoted(step.target)};
}

/// Windows PowerShell and its successors pass quotes to programs in different ways, so this is not done by sc.exe.
std::string setCommandLineLine(const tStep& step) {
    return fmt::format(
        "Get-CimInstance Win32_Service -Filter \"Name='{}'\" | Invoke-CimMethod -MethodName Change -Arguments "
        "@{{PathName={}}}",
        serviceName, quoted(step.target));
}

std::string addValueLine(const tStep& step) {
    return fmt::format("reg.exe add {} /v {} /t {} /d {} /f /reg:64", quoted(step.target), step.name, step.type,
                       quoted(step.value));
}

}  // namespace

std::string done(const tStep& step) {
    const tWording wording = wordingOf(step);
    return fmt::format("{} {}{}", capitalized(std::string(wording.participle)), wording.object, wording.detail);
}

std::string notDone(const tStep& step) {
    const tWording wording = wordingOf(step);
    return fmt::format("{} could not be {}", capitalized(wording.object), wording.participle);
}

bool isOptional(const tStep& step, std::uint32_t error) noexcept {
    switch (step.action) {
        case tAction::setDelayed:
        case tAction::setRecovery:
        case tAction::setRecoveryOnError: return error == unknownSetting;
        case tAction::deleteFolder: return true;
        default: return false;
    }
}

std::vector<std::string> commandLines(const tStep& step) {
    const std::string name(serviceName);
    switch (step.action) {
        case tAction::createFolder:
            return accessLines(fmt::format("New-Item -ItemType Directory -Path {} | Out-Null", quoted(step.target)),
                               step);
        case tAction::setAccess: return accessLines(fmt::format("icacls {} /reset", quoted(step.target)), step);
        case tAction::createService: return createServiceLines(step);
        case tAction::setCommandLine: return {setCommandLineLine(step)};
        case tAction::setStart:
        case tAction::setDelayed: return {config("start= " + step.value)};
        case tAction::setRecovery: return {fmt::format("sc.exe failure {} {}", serviceName, recovery)};
        case tAction::setRecoveryOnError: return {fmt::format("sc.exe failureflag {} 1", serviceName)};
        case tAction::setDescription:
            return {fmt::format("Set-Service -Name {} -Description {}", serviceName, quoted(description))};
        case tAction::setRegistryValue: return {addValueLine(step)};
        case tAction::startService: return {"Start-Service " + name};
        case tAction::stopService: return {"Stop-Service " + name};
        case tAction::deleteService: return {"sc.exe delete " + name};
        case tAction::deleteRegistryValue:
            return {fmt::format("reg.exe delete {} /v {} /f /reg:64", quoted(step.target), step.name)};
        case tAction::deleteRegistryKey: return {fmt::format("reg.exe delete {} /f /reg:64", quoted(step.target))};
        case tAction::deleteFile:
            return {fmt::format("if (Test-Path -LiteralPath {0}) {{ Remove-Item -Force -LiteralPath {0} }}",
                                quoted(step.target))};
        default: return {fmt::format("[IO.Directory]::Delete({})", quoted(step.target))};
    }
}

}  // namespace nInstall
