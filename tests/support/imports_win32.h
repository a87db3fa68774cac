#pragma once

#include <windows.h>
// windows.h first: the others need its types.
#include <aclapi.h>
#include <io.h>
#include <psapi.h>
#include <sddl.h>
#include <shlobj.h>
#include <tlhelp32.h>

#include <cstdio>
#include <ctime>
#include <functional>
#include <utility>

#include "tests/support/allocations.h"

/// Stand-ins for system calls. The test program defines the import pointers (__imp_NAME) of the calls listed below, so
/// every call that the product makes through them comes here first, and is passed to a test's replacement if there is
/// one, otherwise to the system. The product has no seam for this.
///
///   imports::CreateEventA.replace([](auto...) -> HANDLE { SetLastError(ERROR_ACCESS_DENIED); return nullptr; });
///
/// All replacements end with the test that made them. A replacement may call imports::NAME.real(...).
namespace imports {

/// The address that a system library exports under this name, found without any of the imports below.
void* systemAddress(const wchar_t* library, const char* name);

class ImportBase {
public:
    /// Called after each test.
    static void restoreAll();

protected:
    constexpr ImportBase() = default;
    ~ImportBase() = default;
    void remember();
    virtual void restore() = 0;

private:
    ImportBase* next_ = nullptr;
    bool remembered_ = false;
};

template <class Function>
class Import;

template <class Result, class... Arguments>
class Import<Result(Arguments...)> final : public ImportBase {
public:
    constexpr Import(const wchar_t* library, const char* name) : library_(library), name_(name) {}

    void replace(std::function<Result(Arguments...)> replacement) {
        restore();
        replacement_ = new std::function<Result(Arguments...)>(std::move(replacement));
        remember();
    }

    /// Returns the function that the product's call reaches now, for a replacement that wraps another one.
    [[nodiscard]] std::function<Result(Arguments...)> current() {
        if (replacement_ != nullptr) return *replacement_;
        return [this](Arguments... arguments) { return real(arguments...); };
    }

    /// Calls the system's own function.
    Result real(Arguments... arguments) {
        if (real_ == nullptr) real_ = reinterpret_cast<Result (*)(Arguments...)>(systemAddress(library_, name_));
        return real_(arguments...);
    }

    /// Makes the call as the product would.
    Result call(Arguments... arguments) {
        if (replacement_ == nullptr) return real(arguments...);
        const allocations::tPause pause;  // the test's own memory must not count as the product's
        return (*replacement_)(arguments...);
    }

private:
    void restore() override {
        delete replacement_;
        replacement_ = nullptr;
    }

    const wchar_t* library_;
    const char* name_;
    Result (*real_)(Arguments...) = nullptr;
    // A pointer, so that imports are usable before any constructor has run.
    std::function<Result(Arguments...)>* replacement_ = nullptr;
};

// The list must be a macro: its names become those of variables and of linker symbols.
#define IMPORTS(IMPORT)                                                           \
    IMPORT(L"advapi32.dll", ChangeServiceConfig2W)                                \
    IMPORT(L"advapi32.dll", ChangeServiceConfigW)                                 \
    IMPORT(L"advapi32.dll", CheckTokenMembership)                                 \
    IMPORT(L"advapi32.dll", CloseServiceHandle)                                   \
    IMPORT(L"advapi32.dll", ControlService)                                       \
    IMPORT(L"advapi32.dll", ConvertSidToStringSidW)                               \
    IMPORT(L"advapi32.dll", ConvertStringSecurityDescriptorToSecurityDescriptorW) \
    IMPORT(L"advapi32.dll", CreateServiceW)                                       \
    IMPORT(L"advapi32.dll", CreateWellKnownSid)                                   \
    IMPORT(L"advapi32.dll", DeleteService)                                        \
    IMPORT(L"advapi32.dll", GetAce)                                               \
    IMPORT(L"advapi32.dll", GetNamedSecurityInfoW)                                \
    IMPORT(L"advapi32.dll", GetSecurityDescriptorDacl)                            \
    IMPORT(L"advapi32.dll", GetSecurityDescriptorOwner)                           \
    IMPORT(L"advapi32.dll", GetTokenInformation)                                  \
    IMPORT(L"advapi32.dll", LookupAccountSidW)                                    \
    IMPORT(L"advapi32.dll", OpenProcessToken)                                     \
    IMPORT(L"advapi32.dll", OpenSCManagerW)                                       \
    IMPORT(L"advapi32.dll", OpenServiceW)                                         \
    IMPORT(L"advapi32.dll", QueryServiceConfig2W)                                 \
    IMPORT(L"advapi32.dll", QueryServiceConfigW)                                  \
    IMPORT(L"advapi32.dll", QueryServiceStatus)                                   \
    IMPORT(L"advapi32.dll", RegCloseKey)                                          \
    IMPORT(L"advapi32.dll", RegCreateKeyExW)                                      \
    IMPORT(L"advapi32.dll", RegDeleteTreeW)                                       \
    IMPORT(L"advapi32.dll", RegDeleteValueW)                                      \
    IMPORT(L"advapi32.dll", RegOpenKeyExW)                                        \
    IMPORT(L"advapi32.dll", RegQueryValueExW)                                     \
    IMPORT(L"advapi32.dll", RegSetValueExW)                                       \
    IMPORT(L"advapi32.dll", RegisterServiceCtrlHandlerA)                          \
    IMPORT(L"advapi32.dll", SetEntriesInAclA)                                     \
    IMPORT(L"advapi32.dll", SetSecurityInfo)                                      \
    IMPORT(L"advapi32.dll", SetServiceStatus)                                     \
    IMPORT(L"advapi32.dll", StartServiceCtrlDispatcherA)                          \
    IMPORT(L"advapi32.dll", StartServiceW)                                        \
    IMPORT(L"kernel32.dll", AddVectoredExceptionHandler)                          \
    IMPORT(L"kernel32.dll", AssignProcessToJobObject)                             \
    IMPORT(L"kernel32.dll", CloseHandle)                                          \
    IMPORT(L"kernel32.dll", CompareStringOrdinal)                                 \
    IMPORT(L"kernel32.dll", CreateDirectoryW)                                     \
    IMPORT(L"kernel32.dll", CreateEventA)                                         \
    IMPORT(L"kernel32.dll", CreateFileW)                                          \
    IMPORT(L"kernel32.dll", CreateJobObjectW)                                     \
    IMPORT(L"kernel32.dll", CreatePipe)                                           \
    IMPORT(L"kernel32.dll", CreateProcessW)                                       \
    IMPORT(L"kernel32.dll", CreateThread)                                         \
    IMPORT(L"kernel32.dll", DeleteFileW)                                          \
    IMPORT(L"kernel32.dll", DuplicateHandle)                                      \
    IMPORT(L"kernel32.dll", ExpandEnvironmentStringsW)                            \
    IMPORT(L"kernel32.dll", FindClose)                                            \
    IMPORT(L"kernel32.dll", FindFirstFileW)                                       \
    IMPORT(L"kernel32.dll", FormatMessageA)                                       \
    IMPORT(L"kernel32.dll", FormatMessageW)                                       \
    IMPORT(L"kernel32.dll", FreeEnvironmentStringsW)                              \
    IMPORT(L"kernel32.dll", FreeLibrary)                                          \
    IMPORT(L"kernel32.dll", GetACP)                                               \
    IMPORT(L"kernel32.dll", GetConsoleCP)                                         \
    IMPORT(L"kernel32.dll", GetConsoleOutputCP)                                   \
    IMPORT(L"kernel32.dll", GetCurrentDirectoryW)                                 \
    IMPORT(L"kernel32.dll", GetCurrentProcessId)                                  \
    IMPORT(L"kernel32.dll", GetCurrentThreadId)                                   \
    IMPORT(L"kernel32.dll", GetDriveTypeW)                                        \
    IMPORT(L"kernel32.dll", GetEnvironmentStringsW)                               \
    IMPORT(L"kernel32.dll", GetExitCodeProcess)                                   \
    IMPORT(L"kernel32.dll", GetFileAttributesW)                                   \
    IMPORT(L"kernel32.dll", GetFileInformationByHandleEx)                         \
    IMPORT(L"kernel32.dll", GetLastError)                                         \
    IMPORT(L"kernel32.dll", GetModuleFileNameW)                                   \
    IMPORT(L"kernel32.dll", GetModuleHandleA)                                     \
    IMPORT(L"kernel32.dll", GetModuleHandleExW)                                   \
    IMPORT(L"kernel32.dll", GetModuleHandleW)                                     \
    IMPORT(L"kernel32.dll", GetProcAddress)                                       \
    IMPORT(L"kernel32.dll", GetProcessHandleCount)                                \
    IMPORT(L"kernel32.dll", GetStdHandle)                                         \
    IMPORT(L"kernel32.dll", GetSystemDirectoryW)                                  \
    IMPORT(L"kernel32.dll", GetSystemTimeAdjustment)                              \
    IMPORT(L"kernel32.dll", GetSystemWindowsDirectoryW)                           \
    IMPORT(L"kernel32.dll", GetThreadPriority)                                    \
    IMPORT(L"kernel32.dll", GetTickCount64)                                       \
    IMPORT(L"kernel32.dll", LoadLibraryExA)                                       \
    IMPORT(L"kernel32.dll", LoadLibraryExW)                                       \
    IMPORT(L"kernel32.dll", LoadLibraryW)                                         \
    IMPORT(L"kernel32.dll", LocalFree)                                            \
    IMPORT(L"kernel32.dll", MultiByteToWideChar)                                  \
    IMPORT(L"kernel32.dll", OpenProcess)                                          \
    IMPORT(L"kernel32.dll", OpenThread)                                           \
    IMPORT(L"kernel32.dll", OutputDebugStringA)                                   \
    IMPORT(L"kernel32.dll", PeekNamedPipe)                                        \
    IMPORT(L"kernel32.dll", QueryInformationJobObject)                            \
    IMPORT(L"kernel32.dll", QueryPerformanceFrequency)                            \
    IMPORT(L"kernel32.dll", ReadFile)                                             \
    IMPORT(L"kernel32.dll", ReadProcessMemory)                                    \
    IMPORT(L"kernel32.dll", RemoveDirectoryW)                                     \
    IMPORT(L"kernel32.dll", SetConsoleCP)                                         \
    IMPORT(L"kernel32.dll", SetConsoleCtrlHandler)                                \
    IMPORT(L"kernel32.dll", SetConsoleOutputCP)                                   \
    IMPORT(L"kernel32.dll", SetErrorMode)                                         \
    IMPORT(L"kernel32.dll", SetEvent)                                             \
    IMPORT(L"kernel32.dll", SetFileAttributesW)                                   \
    IMPORT(L"kernel32.dll", SetHandleInformation)                                 \
    IMPORT(L"kernel32.dll", SetInformationJobObject)                              \
    IMPORT(L"kernel32.dll", SetLastError)                                         \
    IMPORT(L"kernel32.dll", SetStdHandle)                                         \
    IMPORT(L"kernel32.dll", SetThreadErrorMode)                                   \
    IMPORT(L"kernel32.dll", SetThreadStackGuarantee)                              \
    IMPORT(L"kernel32.dll", SetUnhandledExceptionFilter)                          \
    IMPORT(L"kernel32.dll", Sleep)                                                \
    IMPORT(L"kernel32.dll", TerminateJobObject)                                   \
    IMPORT(L"kernel32.dll", TerminateProcess)                                     \
    IMPORT(L"kernel32.dll", VirtualQuery)                                         \
    IMPORT(L"kernel32.dll", WaitForSingleObject)                                  \
    IMPORT(L"kernel32.dll", WideCharToMultiByte)                                  \
    IMPORT(L"kernel32.dll", WriteFile)                                            \
    IMPORT(L"msvcrt.dll", _ctime64)                                               \
    IMPORT(L"msvcrt.dll", _dup2)                                                  \
    IMPORT(L"msvcrt.dll", _time64)                                                \
    IMPORT(L"msvcrt.dll", _wfopen)                                                \
    IMPORT(L"msvcrt.dll", _wfsopen)                                               \
    IMPORT(L"msvcrt.dll", _wremove)                                               \
    IMPORT(L"msvcrt.dll", _wrename)                                               \
    IMPORT(L"shell32.dll", SHGetFolderPathW)

// The same for calls that the compiler treats as ordinary functions because the headers do not declare them dllimport.
// They reach their import pointer through a jump instruction, which the test program defines too.
#define IMPORTS_BEHIND_A_JUMP(IMPORT)                 \
    IMPORT(L"kernel32.dll", CreateToolhelp32Snapshot) \
    IMPORT(L"kernel32.dll", K32EnumProcessModules)    \
    IMPORT(L"kernel32.dll", K32GetMappedFileNameW)    \
    IMPORT(L"kernel32.dll", Thread32First)            \
    IMPORT(L"kernel32.dll", Thread32Next)             \
    IMPORT(L"msvcrt.dll", fclose)                     \
    IMPORT(L"msvcrt.dll", ferror)                     \
    IMPORT(L"msvcrt.dll", fread)                      \
    IMPORT(L"msvcrt.dll", fwrite)

#define DECLARE_IMPORT(library, name) extern Import<decltype(::name)> name;
IMPORTS(DECLARE_IMPORT)
IMPORTS_BEHIND_A_JUMP(DECLARE_IMPORT)
#undef DECLARE_IMPORT

}  // namespace imports
