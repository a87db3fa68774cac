#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "stdpath/path.h"
#include "tests/support/imports_win32.h"

namespace support {

/// A machine in memory: service manager, registry under HKEY_LOCAL_MACHINE, and the folders of a drive F with their
/// access lists, in place of the system's. Each call that changes it is logged with all its arguments. At most one may
/// exist at a time.
class tScriptedMachine {
public:
    struct tService {
        std::wstring commandLine;
        DWORD start = 0;
        DWORD state = SERVICE_STOPPED;
        bool marked = false;  ///< for deletion
        std::wstring description = {};
        std::vector<std::pair<int, DWORD>> recovery = {};
        DWORD resetSeconds = 0;
        BOOL recoveryOnError = FALSE;
        BOOL delayed = FALSE;

        bool operator==(const tService&) const = default;
    };

    /// What calls change.
    struct tState {
        std::map<std::wstring, tService> services;
        std::map<std::wstring, std::map<std::wstring, std::wstring>> keys;  ///< data as "TYPE:TEXT"
        std::map<std::wstring, std::wstring> folders;                       ///< with their descriptors
        std::map<std::wstring, DWORD> files;  ///< with their attributes; their descriptors are among those of folders

        bool operator==(const tState&) const = default;
    };

    tScriptedMachine() {
        state.folders = {{L"F:\\", usualAccess}, {L"F:\\Common", usualAccess}, {L"F:\\Data", usualAccess}};
        scriptManager();
        scriptService();
        scriptSettings();
        scriptRegistry();
        scriptFolders();
        scriptAccessLists();
        imports::GetTickCount64.replace([this] { return ticks_; });
        imports::Sleep.replace([this](DWORD milliseconds) { ticks_ += milliseconds; });
    }
    ~tScriptedMachine() { imports::ImportBase::restoreAll(); }
    tScriptedMachine(const tScriptedMachine&) = delete;
    tScriptedMachine& operator=(const tScriptedMachine&) = delete;

    /// Returns the registry value as "TYPE:TEXT".
    std::wstring& value(const std::wstring& key, const std::wstring& name) { return state.keys[key][name]; }
    tService& service() { return state.services.at(L"zuZiptraRemoteService"); }

    static constexpr const wchar_t* usualAccess = L"O:BAD:(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

    tState state;
    std::vector<std::string> log;  ///< of the calls that change something
    int openHandles = 0;
    DWORD stateAfterStart = SERVICE_RUNNING;
    DWORD exitCode = 0;  ///< of a service that stops
    DWORD stateAfterStop = SERVICE_STOPPED;
    DWORD controlError = 0;  ///< of the first control
    UINT driveType = DRIVE_FIXED;
    std::set<std::wstring> links;  ///< folders that lead elsewhere

private:
    static std::string utf8(const wchar_t* text) { return text == nullptr ? "-" : nStdPath::pathToUtf8(text); }
    static std::string number(DWORD value) { return value == SERVICE_NO_CHANGE ? "-" : std::to_string(value); }
    void note(const std::string& call) { log.push_back(call); }

    static BOOL refuse(DWORD error) {
        imports::SetLastError.real(error);
        return FALSE;
    }

    SC_HANDLE open(tService& service) {
        ++openHandles;
        return reinterpret_cast<SC_HANDLE>(&service);
    }
    static tService& serviceOf(SC_HANDLE handle) { return *reinterpret_cast<tService*>(handle); }

    void scriptManager() {
        imports::OpenSCManagerW.replace([this](const wchar_t*, const wchar_t*, DWORD) {
            ++openHandles;
            return reinterpret_cast<SC_HANDLE>(this);
        });
        imports::CloseServiceHandle.replace([this](SC_HANDLE) {
            --openHandles;
            return TRUE;
        });
        imports::OpenServiceW.replace([this](SC_HANDLE, const wchar_t* name, DWORD) -> SC_HANDLE {
            const auto found = state.services.find(name);
            if (found != state.services.end()) return open(found->second);
            imports::SetLastError.real(ERROR_SERVICE_DOES_NOT_EXIST);
            return nullptr;
        });
        imports::CreateServiceW.replace([this](SC_HANDLE, const wchar_t* name, const wchar_t* display, DWORD access,
                                               DWORD type, DWORD start, DWORD error, const wchar_t* commandLine,
                                               const wchar_t* group, const DWORD* tag, const wchar_t* dependencies,
                                               const wchar_t* account, const wchar_t* password) {
            note("CreateServiceW " + utf8(name) + ", " + utf8(display) + ", " + number(access) + ", " + number(type) +
                 ", " + number(start) + ", " + number(error) + ", " + utf8(commandLine) + ", " + utf8(group) + ", " +
                 (tag == nullptr ? "-" : "tag") + ", " + utf8(dependencies) + ", " + utf8(account) + ", " +
                 utf8(password));
            return open(state.services[name] = tService{commandLine, start});
        });
        imports::DeleteService.replace([this](SC_HANDLE handle) {
            note("DeleteService");
            std::erase_if(state.services, [&](const auto& entry) { return &entry.second == &serviceOf(handle); });
            std::erase_if(state.keys, [](const auto& entry) { return entry.first.starts_with(L"SYSTEM\\"); });
            return TRUE;
        });
    }

    void scriptService() {
        imports::QueryServiceStatus.replace([this](SC_HANDLE handle, SERVICE_STATUS* status) {
            *status = {};
            status->dwCurrentState = serviceOf(handle).state;
            status->dwWin32ExitCode = exitCode;
            return TRUE;
        });
        imports::StartServiceW.replace([this](SC_HANDLE handle, DWORD count, const wchar_t** arguments) {
            note("StartServiceW " + number(count) + (arguments == nullptr ? " -" : " arguments"));
            serviceOf(handle).state = stateAfterStart;
            return TRUE;
        });
        imports::ControlService.replace([this](SC_HANDLE handle, DWORD control, SERVICE_STATUS*) {
            note("ControlService " + number(control));
            if (controlError != 0) return refuse(std::exchange(controlError, 0));
            serviceOf(handle).state = stateAfterStop;
            return TRUE;
        });
        imports::QueryServiceConfigW.replace([](SC_HANDLE handle, QUERY_SERVICE_CONFIGW* config, DWORD, DWORD*) {
            tService& service = serviceOf(handle);
            *config = {};
            config->dwStartType = service.start;
            config->lpBinaryPathName = service.commandLine.data();
            return TRUE;
        });
        imports::ChangeServiceConfigW.replace([this](SC_HANDLE handle, DWORD type, DWORD start, DWORD error,
                                                     const wchar_t* commandLine, const wchar_t* group, const DWORD* tag,
                                                     const wchar_t* dependencies, const wchar_t* account,
                                                     const wchar_t* password, const wchar_t* display) {
            tService& service = serviceOf(handle);
            if (service.marked) return refuse(ERROR_SERVICE_MARKED_FOR_DELETE);
            const bool other = group != nullptr || tag != nullptr || dependencies != nullptr || account != nullptr ||
                               password != nullptr || display != nullptr;
            if (start == SERVICE_NO_CHANGE && commandLine == nullptr && !other) return TRUE;
            note("ChangeServiceConfigW " + number(type) + ", " + number(start) + ", " + number(error) + ", " +
                 utf8(commandLine) + (other ? ", and others" : ""));
            if (start != SERVICE_NO_CHANGE) service.start = start;
            if (commandLine != nullptr) service.commandLine = commandLine;
            return TRUE;
        });
    }

    void scriptSettings() {
        imports::ChangeServiceConfig2W.replace([this](SC_HANDLE handle, DWORD level, void* info) {
            tService& service = serviceOf(handle);
            if (level == SERVICE_CONFIG_DESCRIPTION) {
                service.description = static_cast<SERVICE_DESCRIPTIONW*>(info)->lpDescription;
                note("Description " + utf8(service.description.c_str()));
            } else if (level == SERVICE_CONFIG_FAILURE_ACTIONS) {
                changeRecovery(service, *static_cast<SERVICE_FAILURE_ACTIONSW*>(info));
            } else if (level == SERVICE_CONFIG_FAILURE_ACTIONS_FLAG) {
                const auto* const flag = static_cast<SERVICE_FAILURE_ACTIONS_FLAG*>(info);
                service.recoveryOnError = flag->fFailureActionsOnNonCrashFailures;
                note("RecoveryOnError " + std::to_string(service.recoveryOnError));
            } else if (level == SERVICE_CONFIG_DELAYED_AUTO_START_INFO) {
                service.delayed = static_cast<SERVICE_DELAYED_AUTO_START_INFO*>(info)->fDelayedAutostart;
                note("Delayed " + std::to_string(service.delayed));
            } else {
                return refuse(ERROR_INVALID_LEVEL);
            }
            return TRUE;
        });
        imports::QueryServiceConfig2W.replace([](SC_HANDLE handle, DWORD level, BYTE* buffer, DWORD, DWORD*) {
            tService& service = serviceOf(handle);
            if (level == SERVICE_CONFIG_DESCRIPTION) {
                reinterpret_cast<SERVICE_DESCRIPTIONW*>(buffer)->lpDescription =
                    service.description.empty() ? nullptr : service.description.data();
            } else if (level == SERVICE_CONFIG_FAILURE_ACTIONS) {
                auto* const info = reinterpret_cast<SERVICE_FAILURE_ACTIONSW*>(buffer);
                auto* const actions = reinterpret_cast<SC_ACTION*>(info + 1);
                *info = {service.resetSeconds, nullptr, nullptr, static_cast<DWORD>(service.recovery.size()), actions};
                for (std::size_t i = 0; i < service.recovery.size(); ++i) {
                    actions[i] = {static_cast<SC_ACTION_TYPE>(service.recovery[i].first), service.recovery[i].second};
                }
            } else if (level == SERVICE_CONFIG_FAILURE_ACTIONS_FLAG) {
                *reinterpret_cast<BOOL*>(buffer) = service.recoveryOnError;
            } else {
                *reinterpret_cast<BOOL*>(buffer) = service.delayed;
            }
            return TRUE;
        });
    }

    void changeRecovery(tService& service, const SERVICE_FAILURE_ACTIONSW& info) {
        service.resetSeconds = info.dwResetPeriod;
        service.recovery.clear();
        std::string text;
        for (DWORD i = 0; i < info.cActions; ++i) {
            service.recovery.emplace_back(info.lpsaActions[i].Type, info.lpsaActions[i].Delay);
            text += " " + number(info.lpsaActions[i].Type) + "/" + number(info.lpsaActions[i].Delay);
        }
        note("Recovery " + number(info.dwResetPeriod) + "," + text + ", " + utf8(info.lpCommand) + ", " +
             utf8(info.lpRebootMsg));
    }

    static std::wstring dataText(DWORD type, const BYTE* data) {
        if (type == REG_DWORD) return L"4:" + std::to_wstring(*reinterpret_cast<const DWORD*>(data));
        return std::to_wstring(type) + L":" + reinterpret_cast<const wchar_t*>(data);
    }

    HKEY openKey(const wchar_t* path) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number
        const HKEY key = reinterpret_cast<HKEY>(nextKey_++);
        openKeys_[key] = path;
        ++openHandles;
        return key;
    }

    void scriptRegistry() {
        imports::RegOpenKeyExW.replace([this](HKEY root, const wchar_t* path, DWORD, REGSAM, HKEY* key) -> LSTATUS {
            if (root != HKEY_LOCAL_MACHINE || !state.keys.contains(path)) return ERROR_FILE_NOT_FOUND;
            *key = openKey(path);
            return ERROR_SUCCESS;
        });
        imports::RegCreateKeyExW.replace([this](HKEY root, const wchar_t* path, DWORD, wchar_t*, DWORD options, REGSAM,
                                                SECURITY_ATTRIBUTES* attributes, HKEY* key, DWORD*) -> LSTATUS {
            if (root != HKEY_LOCAL_MACHINE || options != 0 || attributes != nullptr) return ERROR_INVALID_PARAMETER;
            state.keys[path];
            *key = openKey(path);
            return ERROR_SUCCESS;
        });
        imports::RegCloseKey.replace([this](HKEY key) -> LSTATUS {
            --openHandles;
            openKeys_.erase(key);
            return ERROR_SUCCESS;
        });
        imports::RegQueryValueExW.replace(
            [this](HKEY key, const wchar_t* name, DWORD*, DWORD* type, BYTE* data, DWORD* size) -> LSTATUS {
                const auto& values = state.keys[openKeys_.at(key)];
                const auto found = values.find(name);
                if (found == values.end()) return ERROR_FILE_NOT_FOUND;
                const DWORD kind = found->second[0] - L'0';
                const std::wstring text = found->second.substr(2);
                const auto number = kind == REG_DWORD ? static_cast<DWORD>(std::stoul(text)) : 0;
                *size = static_cast<DWORD>(kind == REG_DWORD ? sizeof number : (text.size() + 1) * sizeof(wchar_t));
                const void* const bytes = kind == REG_DWORD ? static_cast<const void*>(&number) : text.c_str();
                std::memcpy(data, bytes, *size);
                if (type != nullptr) *type = kind;
                return ERROR_SUCCESS;
            });
        imports::RegSetValueExW.replace(
            [this](HKEY key, const wchar_t* name, DWORD, DWORD type, const BYTE* data, DWORD size) -> LSTATUS {
                const std::wstring text = dataText(type, data);
                note("RegSetValueExW " + utf8(openKeys_.at(key).c_str()) + ", " + utf8(name) + ", " +
                     utf8(text.c_str()) + ", " + number(size));
                value(openKeys_.at(key), name) = text;
                return ERROR_SUCCESS;
            });
        imports::RegDeleteValueW.replace([this](HKEY key, const wchar_t* name) -> LSTATUS {
            note("RegDeleteValueW " + utf8(openKeys_.at(key).c_str()) + ", " + utf8(name));
            state.keys[openKeys_.at(key)].erase(name);
            return ERROR_SUCCESS;
        });
        imports::RegDeleteTreeW.replace([this](HKEY root, const wchar_t* path) -> LSTATUS {
            note("RegDeleteTreeW " + utf8(path));
            return root == HKEY_LOCAL_MACHINE && state.keys.erase(path) == 1 ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
        });
    }

    static bool isScripted(const wchar_t* path) { return std::wstring_view(path).starts_with(L"F:"); }

    void scriptFolders() {
        imports::SHGetFolderPathW.replace([](HWND, int csidl, HANDLE, DWORD, wchar_t* path) -> HRESULT {
            std::wcscpy(path, csidl == CSIDL_COMMON_APPDATA ? L"F:\\Data" : L"F:\\Common");
            return S_OK;
        });
        imports::GetFileAttributesW.replace([this](const wchar_t* path) -> DWORD {
            if (!isScripted(path)) return imports::GetFileAttributesW.real(path);
            if (state.files.contains(path)) return state.files.at(path);
            const DWORD link = links.contains(path) ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
            if (state.folders.contains(path)) return FILE_ATTRIBUTE_DIRECTORY | link;
            imports::SetLastError.real(ERROR_FILE_NOT_FOUND);
            return INVALID_FILE_ATTRIBUTES;
        });
        imports::GetDriveTypeW.replace(
            [this](const wchar_t* path) { return isScripted(path) ? driveType : imports::GetDriveTypeW.real(path); });
        imports::CreateDirectoryW.replace([this](const wchar_t* path, SECURITY_ATTRIBUTES* attributes) {
            if (!isScripted(path)) return imports::CreateDirectoryW.real(path, attributes);
            state.folders[path] = textOf(attributes->lpSecurityDescriptor);
            note("CreateDirectoryW " + utf8(path) + ", " + utf8(state.folders[path].c_str()));
            return TRUE;
        });
        imports::RemoveDirectoryW.replace([this](const wchar_t* path) {
            if (!isScripted(path)) return imports::RemoveDirectoryW.real(path);
            note("RemoveDirectoryW " + utf8(path));
            state.folders.erase(path);
            return TRUE;
        });
        imports::DeleteFileW.replace([this](const wchar_t* path) {
            if (!isScripted(path)) return imports::DeleteFileW.real(path);
            if (!state.files.contains(path)) return refuse(ERROR_FILE_NOT_FOUND);
            if ((state.files.at(path) & FILE_ATTRIBUTE_READONLY) != 0) return refuse(ERROR_ACCESS_DENIED);
            note("DeleteFileW " + utf8(path));
            state.files.erase(path);
            state.folders.erase(path);
            return TRUE;
        });
        imports::SetFileAttributesW.replace([this](const wchar_t* path, DWORD attributes) {
            if (!isScripted(path)) return imports::SetFileAttributesW.real(path, attributes);
            note("SetFileAttributesW " + utf8(path) + ", " + std::to_string(attributes));
            state.files.at(path) = attributes;
            return TRUE;
        });
    }

    static std::wstring textOf(PSECURITY_DESCRIPTOR descriptor) {
        wchar_t* text = nullptr;
        ConvertSecurityDescriptorToStringSecurityDescriptorW(
            descriptor, SDDL_REVISION_1, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &text, nullptr);
        std::wstring result = text == nullptr ? L"" : text;
        LocalFree(text);
        return result;
    }

    void scriptAccessLists() {
        imports::GetNamedSecurityInfoW.replace([this](const wchar_t* name, SE_OBJECT_TYPE, SECURITY_INFORMATION,
                                                      PSID* owner, PSID*, PACL* list, PACL*,
                                                      PSECURITY_DESCRIPTOR* descriptor) -> DWORD {
            const auto folder = state.folders.find(name);
            const wchar_t* const text = folder == state.folders.end() ? usualAccess : folder->second.c_str();
            BOOL flag = FALSE;
            imports::ConvertStringSecurityDescriptorToSecurityDescriptorW.real(text, SDDL_REVISION_1, descriptor,
                                                                               nullptr);
            imports::GetSecurityDescriptorOwner.real(*descriptor, owner, &flag);
            imports::GetSecurityDescriptorDacl.real(*descriptor, &flag, list, &flag);
            return ERROR_SUCCESS;
        });
        imports::CreateFileW.replace([this](const wchar_t* path, DWORD access, DWORD share, auto* security,
                                            DWORD disposition, DWORD flags, HANDLE pattern) -> HANDLE {
            const auto folder = state.folders.find(path);
            const bool opens = flags == (FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
            if (folder == state.folders.end() || (access & WRITE_DAC) == 0 || !opens) {
                return imports::CreateFileW.real(path, access, share, security, disposition, flags, pattern);
            }
            ++openHandles;
            return const_cast<std::wstring*>(&folder->first);
        });
        imports::CloseHandle.replace([this](HANDLE handle) {
            if (folderOf(handle) == nullptr) return imports::CloseHandle.real(handle);
            --openHandles;
            return TRUE;
        });
        imports::GetFileInformationByHandleEx.replace([this](HANDLE handle, auto kind, void* data, DWORD size) {
            const std::wstring* const folder = folderOf(handle);
            if (folder == nullptr) return imports::GetFileInformationByHandleEx.real(handle, kind, data, size);
            const DWORD link = links.contains(*folder) ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
            static_cast<FILE_ATTRIBUTE_TAG_INFO*>(data)->FileAttributes = FILE_ATTRIBUTE_DIRECTORY | link;
            return TRUE;
        });
        imports::SetSecurityInfo.replace([this](HANDLE handle, SE_OBJECT_TYPE type, SECURITY_INFORMATION what,
                                                PSID owner, PSID group, PACL list, PACL audit) -> DWORD {
            const std::wstring& name = *folderOf(handle);
            SECURITY_DESCRIPTOR descriptor{};
            InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
            SetSecurityDescriptorOwner(&descriptor, owner, FALSE);
            SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
            const bool isProtected = (what & PROTECTED_DACL_SECURITY_INFORMATION) != 0;
            SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, isProtected ? SE_DACL_PROTECTED : 0);
            state.folders[name] = textOf(&descriptor);
            note("SetSecurityInfo " + utf8(name.c_str()) + ", " + std::to_string(type) + ", " + std::to_string(what) +
                 ", " + utf8(state.folders[name].c_str()) + (group == nullptr && audit == nullptr ? "" : ", others"));
            return ERROR_SUCCESS;
        });
    }

    /// A handle of a folder is the address of its path. Returns null if it is another one.
    [[nodiscard]] const std::wstring* folderOf(HANDLE handle) const {
        const auto folder = std::ranges::find_if(state.folders, [=](const auto& f) { return &f.first == handle; });
        return folder == state.folders.end() ? nullptr : &folder->first;
    }

    std::map<HKEY, std::wstring> openKeys_;
    ULONG_PTR nextKey_ = 0x1000;
    ULONGLONG ticks_ = 0;
};

}  // namespace support
