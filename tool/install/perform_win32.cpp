#include <windows.h>

#include <memory>
#include <string_view>
#include <type_traits>

#include "quarks/closer.h"
#include "stdpath/path.h"
#include "tool/install/accessList.h"
#include "tool/install/perform.h"
#include "tool/install/settings.h"

namespace nInstall {
namespace {

using tServiceHandle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, tCloser<CloseServiceHandle>>;
using tKey = std::unique_ptr<std::remove_pointer_t<HKEY>, tCloser<RegCloseKey>>;

std::wstring wide(std::string_view text) { return nStdPath::widePathFromUtf8(std::string(text)); }

std::wstring keyPath(std::string_view key) { return wide(key.substr(std::string_view(R"(HKLM\)").size())); }

DWORD resultOf(BOOL success) { return success != FALSE ? ERROR_SUCCESS : GetLastError(); }

DWORD startType(const std::string& start) { return start == "demand" ? SERVICE_DEMAND_START : SERVICE_AUTO_START; }

// --- The service

tServiceHandle openManager(DWORD access) { return tServiceHandle(OpenSCManagerW(nullptr, nullptr, access)); }

/// Passes the opened service to the function, and returns its result; the error if the service cannot be opened.
template <class Function>
DWORD withService(DWORD access, Function function) {
    const tServiceHandle manager = openManager(SC_MANAGER_CONNECT);
    if (manager == nullptr) return GetLastError();
    const tServiceHandle service(OpenServiceW(manager.get(), wide(serviceName).c_str(), access));
    return service != nullptr ? function(service.get()) : GetLastError();
}

/// As LocalSystem.
DWORD createService(const tStep& step) {
    const tServiceHandle manager = openManager(SC_MANAGER_CREATE_SERVICE);
    if (manager == nullptr) return GetLastError();
    const tServiceHandle service(CreateServiceW(manager.get(), wide(serviceName).c_str(), wide(displayName).c_str(),
                                                SERVICE_QUERY_STATUS, SERVICE_WIN32_OWN_PROCESS, startType(step.value),
                                                SERVICE_ERROR_NORMAL, wide(step.target).c_str(), nullptr, nullptr,
                                                nullptr, nullptr, nullptr));
    return service != nullptr ? ERROR_SUCCESS : GetLastError();
}

DWORD changeConfiguration(DWORD start, const wchar_t* commandLine) {
    return withService(SERVICE_CHANGE_CONFIG, [=](SC_HANDLE service) {
        return resultOf(ChangeServiceConfigW(service, SERVICE_NO_CHANGE, start, SERVICE_NO_CHANGE, commandLine, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr));
    });
}

/// Restart actions need the right to start the service, too.
DWORD changeSetting(DWORD level, void* info) {
    return withService(SERVICE_CHANGE_CONFIG | SERVICE_START,
                       [=](SC_HANDLE service) { return resultOf(ChangeServiceConfig2W(service, level, info)); });
}

DWORD setRecovery() {
    SC_ACTION actions[std::size(restartDelaysMs)];
    for (std::size_t i = 0; i < std::size(actions); ++i) actions[i] = {SC_ACTION_RESTART, restartDelaysMs[i]};
    SERVICE_FAILURE_ACTIONSW info{recoveryResetSeconds, nullptr, nullptr, std::size(actions), actions};
    return changeSetting(SERVICE_CONFIG_FAILURE_ACTIONS, &info);
}

DWORD setRecoveryOnError() {
    SERVICE_FAILURE_ACTIONS_FLAG info{TRUE};
    return changeSetting(SERVICE_CONFIG_FAILURE_ACTIONS_FLAG, &info);
}

DWORD setDelayed(const tStep& step) {
    SERVICE_DELAYED_AUTO_START_INFO info{step.value == "delayed-auto" ? TRUE : FALSE};
    return changeSetting(SERVICE_CONFIG_DELAYED_AUTO_START_INFO, &info);
}

DWORD setDescription() {
    std::wstring text = wide(description);
    SERVICE_DESCRIPTIONW info{text.data()};
    return changeSetting(SERVICE_CONFIG_DESCRIPTION, &info);
}

/// Asks repeatedly until `goal` says that the state is the one waited for. Returns an error if it is not in time.
template <class Goal>
DWORD waitFor(SC_HANDLE service, const tAccess& access, Goal goal) {
    constexpr DWORD pauseMs = 100;
    const ULONGLONG end = GetTickCount64() + ULONGLONG{access.limitSeconds} * 1000;
    for (;;) {
        SERVICE_STATUS status{};
        if (QueryServiceStatus(service, &status) == FALSE) return GetLastError();
        DWORD error = ERROR_SUCCESS;
        if (goal(status, error)) return error;
        if (GetTickCount64() >= end) return ERROR_SERVICE_REQUEST_TIMEOUT;
        if (access.onWait) access.onWait();
        Sleep(pauseMs);
    }
}

DWORD startService(const tAccess& access) {
    return withService(SERVICE_START | SERVICE_QUERY_STATUS, [&](SC_HANDLE service) {
        const DWORD started = resultOf(StartServiceW(service, 0, nullptr));
        if (started != ERROR_SUCCESS && started != ERROR_SERVICE_ALREADY_RUNNING) return started;
        return waitFor(service, access, [](const SERVICE_STATUS& status, DWORD& error) {
            const bool ended = status.dwCurrentState == SERVICE_STOPPED;
            if (ended) error = status.dwWin32ExitCode != 0 ? status.dwWin32ExitCode : DWORD{ERROR_SERVICE_NOT_ACTIVE};
            return ended || status.dwCurrentState == SERVICE_RUNNING;
        });
    });
}

/// A service that is starting does not accept the request yet, so it is repeated.
DWORD stopService(const tAccess& access) {
    return withService(SERVICE_STOP | SERVICE_QUERY_STATUS, [&](SC_HANDLE service) {
        bool accepted = false;
        return waitFor(service, access, [service, &accepted](const SERVICE_STATUS& status, DWORD& error) {
            if (status.dwCurrentState == SERVICE_STOPPED) return true;
            if (accepted || status.dwCurrentState == SERVICE_STOP_PENDING) return false;
            SERVICE_STATUS ignored{};
            error = resultOf(ControlService(service, SERVICE_CONTROL_STOP, &ignored));
            accepted = error == ERROR_SUCCESS;
            const bool later = error == ERROR_SERVICE_CANNOT_ACCEPT_CTRL || error == ERROR_INVALID_SERVICE_CONTROL ||
                               error == ERROR_SERVICE_NOT_ACTIVE;
            return error != ERROR_SUCCESS && !later;
        });
    });
}

DWORD deleteService() {
    return withService(DELETE, [](SC_HANDLE service) { return resultOf(DeleteService(service)); });
}

// --- The registry

DWORD setRegistryValue(const tStep& step) {
    HKEY opened = nullptr;
    LSTATUS error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, keyPath(step.target).c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                    nullptr, &opened, nullptr);
    if (error != ERROR_SUCCESS) return static_cast<DWORD>(error);
    const tKey key(opened);
    const std::wstring name = wide(step.name);
    if (step.type == "REG_DWORD") {
        const DWORD number = std::stoul(step.value);
        error =
            RegSetValueExW(opened, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    } else {
        const std::wstring text = wide(step.value);
        error = RegSetValueExW(opened, name.c_str(), 0, step.type == "REG_SZ" ? REG_SZ : REG_EXPAND_SZ,
                               reinterpret_cast<const BYTE*>(text.c_str()),
                               static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    return static_cast<DWORD>(error);
}

DWORD deleteRegistryValue(const tStep& step) {
    HKEY opened = nullptr;
    const LSTATUS error = RegOpenKeyExW(HKEY_LOCAL_MACHINE, keyPath(step.target).c_str(), 0, KEY_SET_VALUE, &opened);
    if (error != ERROR_SUCCESS) return static_cast<DWORD>(error);
    const tKey key(opened);
    return static_cast<DWORD>(RegDeleteValueW(opened, wide(step.name).c_str()));
}

// --- Files

/// Succeeds if there is none: the service may have renamed it meanwhile.
DWORD tryToDelete(const std::wstring& path) {
    DWORD error = resultOf(DeleteFileW(path.c_str()));
    if (error == ERROR_ACCESS_DENIED) {
        // It is read-only. Only then, because other links to the file have the same attributes.
        if (SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL) == FALSE) return GetLastError();
        error = resultOf(DeleteFileW(path.c_str()));
    }
    return error == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_SUCCESS} : error;
}

/// Programs that search for viruses open a file for a moment when it has just been written.
DWORD deleteFile(const std::wstring& path) {
    constexpr int attempts = 50;
    constexpr DWORD pauseMs = 100;
    DWORD error = tryToDelete(path);
    for (int i = 1; error == ERROR_SHARING_VIOLATION && i < attempts; ++i) {
        Sleep(pauseMs);
        error = tryToDelete(path);
    }
    return error;
}

}  // namespace

std::uint32_t perform(const tStep& step, const tAccess& access) {
    switch (step.action) {
        case tAction::createFolder: return nAccess::createFolder(step.target, step.value);
        case tAction::setAccess: return nAccess::setFolder(step.target, step.value);
        case tAction::createService: return createService(step);
        case tAction::setCommandLine: return changeConfiguration(SERVICE_NO_CHANGE, wide(step.target).c_str());
        case tAction::setStart: return changeConfiguration(startType(step.value), nullptr);
        case tAction::setDelayed: return setDelayed(step);
        case tAction::setRecovery: return setRecovery();
        case tAction::setRecoveryOnError: return setRecoveryOnError();
        case tAction::setDescription: return setDescription();
        case tAction::setRegistryValue: return setRegistryValue(step);
        case tAction::startService: return startService(access);
        case tAction::stopService: return stopService(access);
        case tAction::deleteService: return deleteService();
        case tAction::deleteRegistryValue: return deleteRegistryValue(step);
        case tAction::deleteRegistryKey:
            return static_cast<DWORD>(RegDeleteTreeW(HKEY_LOCAL_MACHINE, keyPath(step.target).c_str()));
        case tAction::deleteFile: return deleteFile(wide(step.target));
        default: return resultOf(RemoveDirectoryW(wide(step.target).c_str()));
    }
}

}  // namespace nInstall
