#include "source/serviceControl.h"
#include "tests/support/imports_win32.h"
#include "tests/support/serviceManager.h"

namespace support {

tServiceManager::tServiceManager() {
    // Waiting threads sleep too; that is not a pause of the run.
    imports::Sleep.replace([](DWORD milliseconds) { imports::Sleep.real(milliseconds); });
    imports::StartServiceCtrlDispatcherA.replace([](auto...) {
        SetLastError(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
        return FALSE;
    });
    imports::RegisterServiceCtrlHandlerA.replace(
        [this](auto...) { return reinterpret_cast<SERVICE_STATUS_HANDLE>(this); });
    imports::SetServiceStatus.replace([this](SERVICE_STATUS_HANDLE, SERVICE_STATUS* status) {
        note(status->dwCurrentState, status->dwCheckPoint);
        return TRUE;
    });
    imports::SetConsoleCtrlHandler.replace(
        [this](PHANDLER_ROUTINE handler, BOOL add) { return change(handler, add == TRUE) ? TRUE : FALSE; });
    imports::SetEvent.replace([this](HANDLE event) {
        const BOOL set = imports::SetEvent.real(event);
        if (set == FALSE) ++failedSignals;
        return set;
    });
}

tServiceManager::~tServiceManager() {
    gStatusHandle = nullptr;
    startLife();
}

}  // namespace support
