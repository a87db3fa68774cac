#include "tests/endtoend/harness/service.h"

#include <ostream>

#include "tests/endtoend/harness/starts.h"

namespace endtoend {
namespace {

SERVICE_STATUS_PROCESS query(SC_HANDLE service) {
    SERVICE_STATUS_PROCESS status{};
    DWORD needed = 0;
    require(QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof status,
                                 &needed) != FALSE,
            "QueryServiceStatusEx");
    return status;
}

tServiceHandle openManager() {
    tServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    require(manager != nullptr, "OpenSCManagerW");
    return manager;
}

}  // namespace

void PrintTo(const tServiceStatus& status, std::ostream* stream) {
    *stream << "{type " << status.type << ", state " << status.state << ", controls " << status.controls
            << ", exit codes " << status.win32ExitCode << " and " << status.serviceExitCode << ", checkpoint "
            << status.checkpoint << ", wait hint " << status.waitHint << "}";
}

tInstalledService::tInstalledService(const tPath& executable) : manager_(openManager()) {
    const std::wstring commandLine = L'"' + executable.native() + L'"';
    service_.reset(CreateServiceW(manager_.get(), productService, productService, SERVICE_ALL_ACCESS,
                                  SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                  commandLine.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
    require(service_ != nullptr, "CreateServiceW");
}

tInstalledService::~tInstalledService() {
    if (processRunning()) control(SERVICE_CONTROL_STOP);
    if (!becomesTrue([&] { return !processRunning(); }, std::chrono::seconds(5))) {
        const tHandle process = openDespiteAccessList(processId_, PROCESS_TERMINATE);
        if (process) TerminateProcess(process.get(), 1);
    }
    DeleteService(service_.get());
    service_.reset();
    // The manager frees the name some time after the last handle is closed.
    becomesTrue([] { return !installed(); }, std::chrono::seconds(10));
}

void tInstalledService::start() {
    requireStart("StartServiceW", [this] { return StartServiceW(service_.get(), 0, nullptr); });
    processId_ = query(service_.get()).dwProcessId;
}

void tInstalledService::startBrief() {
    requireBriefStart("StartServiceW", [this] { return StartServiceW(service_.get(), 0, nullptr); });
    processId_ = query(service_.get()).dwProcessId;
}

DWORD tInstalledService::control(DWORD code) {
    SERVICE_STATUS ignored{};
    return ControlService(service_.get(), code, &ignored) != FALSE ? 0 : GetLastError();
}

tServiceStatus tInstalledService::status() const {
    const SERVICE_STATUS_PROCESS status = query(service_.get());
    return {status.dwServiceType,
            status.dwCurrentState,
            status.dwControlsAccepted,
            status.dwWin32ExitCode,
            status.dwServiceSpecificExitCode,
            status.dwCheckPoint,
            status.dwWaitHint};
}

tServiceStatus tInstalledService::waitForState(DWORD state, std::chrono::milliseconds timeout) const {
    waitFor(
        "service state " + std::to_string(state), [&] { return status().state == state; }, timeout);
    return status();
}

tServiceStatus tInstalledService::waitForEnd(std::chrono::milliseconds timeout) const {
    const tServiceStatus last = waitForState(SERVICE_STOPPED, timeout);
    waitFor("the end of the service's process", [&] { return !processRunning(); });
    return last;
}

tServiceStatus tInstalledService::stop() {
    if (const DWORD error = control(SERVICE_CONTROL_STOP); error != 0) failed("ControlService", error);
    return waitForEnd();
}

bool tInstalledService::endedByManager() const {
    const SERVICE_STATUS_PROCESS status = query(service_.get());
    return status.dwCurrentState != SERVICE_STOPPED && status.dwProcessId == 0;
}

bool tInstalledService::installed() {
    const tServiceHandle manager = openManager();
    const tServiceHandle service(OpenServiceW(manager.get(), productService, SERVICE_QUERY_STATUS));
    return service != nullptr;
}

}  // namespace endtoend
