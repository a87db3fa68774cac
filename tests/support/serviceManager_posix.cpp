// Never shipped: the functions of <windows.h> that the program's entry and service control call.
#include "source/serviceControl.h"
#include "tests/support/posix/windows.h"
#include "tests/support/serviceManager.h"

namespace {

support::tServiceManager* current = nullptr;
thread_local DWORD lastErrorOfThread = NO_ERROR;

}  // namespace

namespace support {

tServiceManager::tServiceManager() { current = this; }

tServiceManager::~tServiceManager() {
    current = nullptr;
    gStatusHandle = nullptr;
    startLife();
}

}  // namespace support

BOOL StartServiceCtrlDispatcherA(const SERVICE_TABLE_ENTRYA* /*table*/) {
    SetLastError(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
    return FALSE;
}

SERVICE_STATUS_HANDLE RegisterServiceCtrlHandlerA(const char* /*name*/, void (* /*handler*/)(DWORD)) {
    return reinterpret_cast<SERVICE_STATUS_HANDLE>(current);
}

BOOL SetServiceStatus(SERVICE_STATUS_HANDLE /*handle*/, SERVICE_STATUS* status) {
    current->note(status->dwCurrentState, status->dwCheckPoint);
    return TRUE;
}

BOOL SetConsoleCtrlHandler(BOOL (*handler)(DWORD), BOOL add) {
    if (current->change(handler, add == TRUE)) return TRUE;
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

DWORD GetLastError() { return lastErrorOfThread; }
void SetLastError(DWORD error) { lastErrorOfThread = error; }
