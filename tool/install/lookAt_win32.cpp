#include <windows.h>

#include <array>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>
#include <memory>
#include <type_traits>

#include "quarks/closer.h"
#include "stdpath/folders.h"
#include "stdpath/path.h"
#include "stdpath/stdpath.h"
#include "stdpath/utf.h"
#include "tool/format.h"
#include "tool/install/accessList.h"
#include "tool/install/lookAt.h"
#include "tool/install/settings.h"
#include "tool/pe/windowsPath.h"

namespace nInstall {
namespace {

namespace nFiles = boost::filesystem;
using tServiceHandle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, tCloser<CloseServiceHandle>>;
using tKey = std::unique_ptr<std::remove_pointer_t<HKEY>, tCloser<RegCloseKey>>;

// The manager's structures are never larger than this.
struct alignas(8) tBuffer : std::array<BYTE, 8192> {};

[[noreturn]] void cannotLook(const std::string& what, std::uint32_t error) {
    throw tCannot(fmt::format("{} could not be examined: {}", what, reasonOf(error)));
}

std::string serviceText() { return "The service " + std::string(serviceName); }

std::wstring wide(std::string_view text) { return nStdPath::widePathFromUtf8(std::string(text)); }

/// Returns the part of a key's path after HKLM.
std::wstring keyPath(std::string_view key) { return wide(key.substr(std::string_view(R"(HKLM\)").size())); }

// --- The service

/// Changing a service without a change fails if it is marked for deletion.
bool isBeingDeleted(SC_HANDLE service) {
    if (ChangeServiceConfigW(service, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr, nullptr) != FALSE) {
        return false;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_SERVICE_MARKED_FOR_DELETE) cannotLook(serviceText(), error);
    return true;
}

std::string startName(DWORD start) {
    if (start == SERVICE_AUTO_START) return "auto";
    return start == SERVICE_DEMAND_START ? "demand" : "disabled";
}

std::string expanded(const wchar_t* text) {
    std::array<wchar_t, 32'768> result{};
    if (ExpandEnvironmentStringsW(text, result.data(), static_cast<DWORD>(result.size())) == 0) {
        cannotLook("The command line of the service", GetLastError());
    }
    return nStdPath::pathToUtf8(result.data());
}

/// Returns whether the service runs another program than this one. One that does not exist does not count.
bool isOther(const std::string& running, const std::string& program) {
    const nFiles::path path = nStdPath::pathFromUtf8(running);
    boost::system::error_code error;
    return nFiles::exists(path, error) && !nFiles::equivalent(path, nStdPath::pathFromUtf8(program), error);
}

void readConfiguration(SC_HANDLE handle, const std::string& program, tService& service) {
    tBuffer buffer;
    auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
    DWORD needed = 0;
    if (QueryServiceConfigW(handle, config, sizeof buffer, &needed) == FALSE) cannotLook(serviceText(), GetLastError());
    service.commandLine = nStdPath::pathToUtf8(config->lpBinaryPathName);
    service.program = programOf(expanded(config->lpBinaryPathName));
    // The service manager, which starts it, is in the system folder.
    if (nPe::isSearched(service.program)) {
        service.program = nPe::joined(nStdPath::pathToUtf8(nStdPath::systemFolder()), service.program);
    }
    if (isOther(service.program, program)) service.otherProgram = service.program;
    service.start = startName(config->dwStartType);
}

/// Returns one of the optional settings, or null if the system does not know it.
template <class Info>
const Info* querySetting(SC_HANDLE handle, DWORD level, tBuffer& buffer) {
    DWORD needed = 0;
    if (QueryServiceConfig2W(handle, level, buffer.data(), sizeof buffer, &needed) != FALSE) {
        return reinterpret_cast<const Info*>(buffer.data());
    }
    if (const DWORD error = GetLastError(); error != unknownSetting) cannotLook(serviceText(), error);
    return nullptr;
}

/// Returns the recovery actions as settings.h writes them.
std::string textOf(const SERVICE_FAILURE_ACTIONSW& actions) {
    std::string text;
    for (DWORD i = 0; i < actions.cActions; ++i) {
        const SC_ACTION& action = actions.lpsaActions[i];
        const std::string type = action.Type == SC_ACTION_RESTART ? "restart" : std::to_string(action.Type);
        text += fmt::format("{}{}/{}", i == 0 ? "" : "/", type, action.Delay);
    }
    return fmt::format("reset= {} actions= {}", actions.dwResetPeriod, text);
}

void readSettings(SC_HANDLE handle, tService& service) {
    tBuffer buffer;
    if (const auto* info = querySetting<SERVICE_DESCRIPTIONW>(handle, SERVICE_CONFIG_DESCRIPTION, buffer)) {
        if (info->lpDescription != nullptr) service.description = nStdPath::pathToUtf8(info->lpDescription);
    }
    if (const auto* info = querySetting<SERVICE_FAILURE_ACTIONSW>(handle, SERVICE_CONFIG_FAILURE_ACTIONS, buffer)) {
        service.recovery = textOf(*info);
    }
    if (const auto* info =
            querySetting<SERVICE_FAILURE_ACTIONS_FLAG>(handle, SERVICE_CONFIG_FAILURE_ACTIONS_FLAG, buffer)) {
        service.recoveryOnError = info->fFailureActionsOnNonCrashFailures != FALSE;
    }
    if (const auto* info =
            querySetting<SERVICE_DELAYED_AUTO_START_INFO>(handle, SERVICE_CONFIG_DELAYED_AUTO_START_INFO, buffer)) {
        service.delayed = info->fDelayedAutostart != FALSE;
    }
}

bool isStopped(SC_HANDLE handle) {
    SERVICE_STATUS status{};
    if (QueryServiceStatus(handle, &status) == FALSE) cannotLook(serviceText(), GetLastError());
    return status.dwCurrentState == SERVICE_STOPPED;
}

tServiceHandle openManager(bool readOnly) {
    tServiceHandle manager(OpenSCManagerW(
        nullptr, nullptr, readOnly ? SC_MANAGER_CONNECT : SC_MANAGER_CONNECT | SC_MANAGER_CREATE_SERVICE));
    if (manager != nullptr) return manager;
    const DWORD error = GetLastError();
    if (error == ERROR_ACCESS_DENIED) {
        throw tCannot(
            "This needs administrator rights (5): use a console that was started with 'Run as administrator'");
    }
    cannotLook("The service manager", error);
}

std::optional<tService> readService(const tAccess& access, const std::string& program) {
    const tServiceHandle manager = openManager(access.readOnly);
    constexpr DWORD reading = SERVICE_QUERY_CONFIG | SERVICE_QUERY_STATUS;
    const tServiceHandle handle(OpenServiceW(manager.get(), wide(serviceName).c_str(),
                                             access.readOnly ? reading : reading | SERVICE_CHANGE_CONFIG));
    if (handle == nullptr) {
        const DWORD error = GetLastError();
        if (error != ERROR_SERVICE_DOES_NOT_EXIST) cannotLook(serviceText(), error);
        return std::nullopt;
    }
    tService service;
    service.beingDeleted = !access.readOnly && isBeingDeleted(handle.get());
    readConfiguration(handle.get(), program, service);
    readSettings(handle.get(), service);
    service.stopped = isStopped(handle.get());
    return service;
}

// --- Folders and the registry

/// Returns INVALID_FILE_ATTRIBUTES if there is neither a file nor a folder.
DWORD readAttributes(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(wide(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) cannotLook(path, error);
    }
    return attributes;
}

tFolder readFolder(const std::string& path, const std::string& administrator) {
    const DWORD attributes = readAttributes(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return tFolder::missing;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return tFolder::noFolder;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return tFolder::link;
    const nAccess::tReading reading = nAccess::read(path, nAccess::tKind::folder);
    if (reading.error != 0) cannotLook("The access list of " + path, reading.error);
    const bool exposed = !nAccess::grants(reading.list, nAccess::tKind::folder, administrator).empty();
    return exposed ? tFolder::exposed : tFolder::good;
}

/// Users can keep administrators from reading the list of their file, which must not keep those from deleting it.
tFile readFile(const std::string& path, const std::string& administrator) {
    const DWORD attributes = readAttributes(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return tFile::missing;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return tFile::folder;
    const nAccess::tReading reading = nAccess::read(path, nAccess::tKind::file);
    const bool good = reading.error == 0 && nAccess::grants(reading.list, nAccess::tKind::file, administrator).empty();
    return good ? tFile::good : tFile::exposed;
}

/// Returns null if there is no such key.
tKey openKey(std::string_view path) {
    HKEY opened = nullptr;
    const LSTATUS error = RegOpenKeyExW(HKEY_LOCAL_MACHINE, keyPath(path).c_str(), 0, KEY_QUERY_VALUE, &opened);
    const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    if (error != ERROR_SUCCESS && !missing) cannotLook(std::string(path), static_cast<std::uint32_t>(error));
    return tKey(opened);
}

/// Returns the data of a value: a number as text, any other as the text that it contains up to a zero.
std::optional<std::string> readValue(std::string_view path, std::string_view name) {
    const tKey key = openKey(path);
    if (key == nullptr) return std::nullopt;
    std::array<wchar_t, 32'768> data{};
    DWORD size = sizeof data - sizeof data[0];
    DWORD type = 0;
    const LSTATUS error =
        RegQueryValueExW(key.get(), wide(name).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size);
    if (error == ERROR_FILE_NOT_FOUND) return std::nullopt;
    if (error != ERROR_SUCCESS) {
        cannotLook(fmt::format("{} in {}", name, path), static_cast<std::uint32_t>(error));
    }
    if (type == REG_DWORD) return std::to_string(*reinterpret_cast<const DWORD*>(data.data()));
    return nStdPath::pathToUtf8(data.data());
}

std::vector<std::string> filesIn(const std::string& folder) {
    std::vector<std::string> names;
    boost::system::error_code error;
    nFiles::directory_iterator file(nStdPath::pathFromUtf8(folder), error);
    while (!error && file != nFiles::directory_iterator()) {
        names.push_back(nStdPath::pathToUtf8(file->path().filename()));
        file.increment(error);
    }
    const bool missing = error == boost::system::errc::no_such_file_or_directory;
    if (error && !missing) cannotLook(folder, static_cast<std::uint32_t>(error.value()));
    return names;
}

std::string statusDirectory() {
    std::string folder;
    zuerr::StatusRecord status;
    nStdPath::getCommonAppDataDirectory(folder, status);
    if (status.failed()) throw tCannot("This system has no folder for the data of all users");
    return folder;
}

/// Returns "C:\Program Files\Common Files\Corvell".
std::string usualSharedDirectory() {
    constexpr std::int32_t commonProgramFiles = 43;  // CSIDL_PROGRAM_FILES_COMMON
    nStdPath::tWideBuffer wide;
    zuerr::StatusRecord status;
    nStdPath::getKnownFolder(commonProgramFiles, wide, status);
    if (status.failed()) throw tCannot("This system has no folder for what programs share: use --shared-dir");
    std::string folder;
    nStdPath::wideToUtf8(wide.begin(), wide.end(), folder);
    nStdPath::trimPath(folder);
    return folder + R"(\Corvell)";
}

}  // namespace

tMachine lookAt(const tAccess& access) {
    const std::wstring folder = access.folder.empty() ? nStdPath::applicationFolder() : wide(access.folder);
    if (folder.empty()) cannotLook("The folder of this program", GetLastError());
    tMachine machine;
    machine.program = nStdPath::pathToUtf8(folder) + '\\' + std::string(programName);
    boost::system::error_code ignored;
    machine.programExists = nFiles::is_regular_file(nStdPath::pathFromUtf8(machine.program), ignored);
    machine.service = readService(access, machine.program);
    machine.usualSharedDirectory = usualSharedDirectory();
    machine.statusDirectory = statusDirectory();
    machine.statusFiles = filesIn(machine.statusDirectory);
    machine.hasDumpsKey = openKey(dumpsKey) != nullptr;
    const std::string administrator = nAccess::administrator();
    machine.folder = [administrator](const std::string& path) { return readFolder(path, administrator); };
    machine.file = [administrator](const std::string& path) { return readFile(path, administrator); };
    machine.registryValue = readValue;
    return machine;
}

}  // namespace nInstall
