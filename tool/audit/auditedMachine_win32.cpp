#include <windows.h>

#include <boost/filesystem/exception.hpp>

#include "err/Exception.h"
#include "source/nPluginData.h"
#include "stdpath/folders.h"
#include "stdpath/path.h"
#include "stdpath/stdpath.h"
#include "tool/audit/auditRun.h"
#include "tool/install/lookAt.h"
#include "tool/install/settings.h"
#include "tool/pe/windowsPath.h"

namespace nAudit {
namespace {

using nAccess::tKind;
using tTargets = std::vector<tTarget>;

/// Returns whether the error says so; what cannot be looked at for other reasons exists.
bool isMissing(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_BAD_NETPATH ||
           error == ERROR_BAD_NET_NAME || error == ERROR_INVALID_NAME || error == ERROR_BAD_PATHNAME;
}

bool exists(const std::string& path, tKind kind) {
    if (kind == tKind::service) return true;
    const std::wstring name = nStdPath::widePathFromUtf8(path);
    if (kind != tKind::key) {
        return GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES || !isMissing(GetLastError());
    }
    HKEY key = nullptr;
    const LSTATUS error =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, name.substr(name.find(L'\\') + 1).c_str(), 0, READ_CONTROL, &key);
    if (error == ERROR_SUCCESS) RegCloseKey(key);
    return !isMissing(static_cast<DWORD>(error));
}

/// Returns the descriptions that the host would read; none if there is no plug-in directory.
std::vector<std::string> descriptionFiles() {
    std::vector<std::string> files;
    try {
        nPluginData::listPlugins(files);
    } catch (const zuerr::ExceptionBase&) {
        return {};
    } catch (const boost::filesystem::filesystem_error&) {
        throw nInstall::tCannot("The plug-in directory cannot be read");
    }
    return files;
}

/// Returns whether it leads to another place. Not every file with a reparse point does: one that is stored compressed
/// has one, too.
bool isLink(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
    WIN32_FIND_DATAW data{};
    const HANDLE search = FindFirstFileW(path.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return true;
    FindClose(search);
    return IsReparseTagNameSurrogate(data.dwReserved0);
}

tPlace placeOf(const std::string& path) {
    const std::wstring name = nStdPath::widePathFromUtf8(path);
    if (name.size() < 2 || name[1] != L':') return tPlace::elsewhere;
    const UINT drive = GetDriveTypeW((name.substr(0, 2) + L'\\').c_str());
    if (drive == DRIVE_REMOTE || drive == DRIVE_UNKNOWN || drive == DRIVE_NO_ROOT_DIR) return tPlace::elsewhere;
    constexpr std::size_t rootSize = 3;  // a root is no link, even where the system says so, as Wine does
    return name.size() > rootSize && isLink(name) ? tPlace::linked : tPlace::here;
}

/// Adds the descriptions and their libraries.
void addPlugins(tMachine& machine, const std::string& systemFolder) {
    for (const std::string& file : descriptionFiles()) {
        tPluginDescription description;
        try {
            nPluginData::readDescription(file, description);
        } catch (const zuerr::ExceptionBase&) {
            description = {};  // the host rejects it, but those who can change it can correct it
        }
        addPlugin(machine, file, description, systemFolder);
    }
}

std::string systemFolder() { return nStdPath::pathToUtf8(nStdPath::systemFolder()); }

/// Without quotes, Windows first looks for "C:\Program.exe" and then for the next part up to a blank.
void addUnquoted(const nInstall::tService& service, tTargets& targets) {
    if (service.commandLine.starts_with('"')) return;
    const std::string& program = service.program;
    for (std::size_t blank = program.find(' '); blank != std::string::npos; blank = program.find(' ', blank + 1)) {
        targets.push_back({program.substr(0, blank) + ".exe", tKind::file, "exposed-code"});
    }
}

void addProgram(const nInstall::tMachine& machine, tTargets& targets) {
    const std::string& program = machine.service ? machine.service->program : machine.program;
    targets.push_back({program, tKind::file, "exposed-code"});
    targets.push_back({systemFolder(), tKind::folder, "exposed-code"});  // where zusysapi.dll is looked for, too
    if (!machine.service) return;
    addUnquoted(*machine.service, targets);
    const std::string_view parameters = nInstall::parametersKey;
    const std::string_view key = parameters.substr(0, parameters.rfind('\\'));
    targets.push_back({std::string(nInstall::serviceName), tKind::service, "exposed-setting"});
    targets.push_back({std::string(key), tKind::key, "exposed-setting"});
}

}  // namespace

tMachine thisMachine() {
    const nInstall::tMachine installed = nInstall::lookAt({"audit", true});
    tMachine machine;
    addProgram(installed, machine.targets);
    machine.targets.push_back({std::string(nInstall::sharedDirectoryKey), tKind::key, "exposed-setting"});
    const auto shared = installed.registryValue(nInstall::sharedDirectoryKey, nInstall::sharedDirectoryValue);
    if (shared) {
        std::string folder = *shared;
        nStdPath::trimPath(folder);
        machine.ownFolders = {folder + R"(\ZiptraRemoteService)", folder + R"(\ZiptraRemoteService\plugins)"};
        machine.targets.push_back({folder, tKind::folder, "exposed-description"});
        machine.targets.push_back({machine.ownFolders[0], tKind::folder, "exposed-description"});
        machine.targets.push_back({machine.ownFolders[1], tKind::folder, "exposed-description"});
        addPlugins(machine, systemFolder());
    }
    machine.ownFolders.push_back(installed.statusDirectory);
    machine.targets.push_back({installed.statusDirectory, tKind::folder, "exposed-status"});
    for (const std::string& name : nInstall::statusFileNames()) {
        machine.targets.push_back({nPe::joined(installed.statusDirectory, name), tKind::file, "exposed-status"});
    }
    machine.administrator = nAccess::administrator();
    machine.exists = exists;
    machine.read = nAccess::read;
    machine.placeOf = placeOf;
    machine.fix = [](const std::string& folder) {
        return nAccess::setFolder(folder, std::string(nInstall::folderAccess));
    };
    machine.reason = nInstall::reasonOf;
    return machine;
}

}  // namespace nAudit
