#pragma once

// The part of <windows.h> that the program's entry and service control use. They are compiled again for the native
// tests with these few names, so that native tools can check them. Tests provide the functions.

using BOOL = int;
using DWORD = unsigned long;
inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

inline constexpr DWORD NO_ERROR = 0;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_FAILED_SERVICE_CONTROLLER_CONNECT = 1063;
inline constexpr DWORD ERROR_SERVICE_SPECIFIC_ERROR = 1066;

inline constexpr DWORD SERVICE_WIN32_OWN_PROCESS = 16;
inline constexpr DWORD SERVICE_STOPPED = 1;
inline constexpr DWORD SERVICE_START_PENDING = 2;
inline constexpr DWORD SERVICE_STOP_PENDING = 3;
inline constexpr DWORD SERVICE_RUNNING = 4;
inline constexpr DWORD SERVICE_ACCEPT_STOP = 1;
inline constexpr DWORD SERVICE_ACCEPT_SHUTDOWN = 4;
inline constexpr DWORD SERVICE_CONTROL_STOP = 1;
inline constexpr DWORD SERVICE_CONTROL_INTERROGATE = 4;
inline constexpr DWORD SERVICE_CONTROL_SHUTDOWN = 5;

struct SERVICE_STATUS {
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
};
using SERVICE_STATUS_HANDLE = struct tServiceStatusHandle*;
struct SERVICE_TABLE_ENTRYA {
    char* lpServiceName;
    void (*lpServiceProc)(DWORD argumentCount, char** arguments);
};

BOOL StartServiceCtrlDispatcherA(const SERVICE_TABLE_ENTRYA* table);
SERVICE_STATUS_HANDLE RegisterServiceCtrlHandlerA(const char* name, void (*handler)(DWORD control));
BOOL SetServiceStatus(SERVICE_STATUS_HANDLE handle, SERVICE_STATUS* status);
BOOL SetConsoleCtrlHandler(BOOL (*handler)(DWORD event), BOOL add);
DWORD GetLastError();
void SetLastError(DWORD error);
