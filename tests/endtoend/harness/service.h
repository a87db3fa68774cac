#pragma once

#include <iosfwd>

#include "tests/endtoend/harness/system.h"
#include "tests/endtoend/harness/wait.h"

namespace endtoend {

struct tServiceHandleCloser {
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};
using tServiceHandle = std::unique_ptr<SC_HANDLE__, tServiceHandleCloser>;

/// What the service control manager holds of a service's last report.
struct tServiceStatus {
    DWORD type;
    DWORD state;
    DWORD controls;
    DWORD win32ExitCode;
    DWORD serviceExitCode;
    DWORD checkpoint;
    DWORD waitHint;

    bool operator==(const tServiceStatus&) const = default;
};
void PrintTo(const tServiceStatus& status, std::ostream* stream);

/// The name under which the product is a service.
inline constexpr const wchar_t* productService = L"zuZiptraRemoteService";

/// The product registered with the service control manager while this object lives; stopped when it goes.
class tInstalledService {
public:
    explicit tInstalledService(const tPath& executable, const std::wstring& arguments = {});
    ~tInstalledService();
    tInstalledService(const tInstalledService&) = delete;
    tInstalledService& operator=(const tInstalledService&) = delete;

    void start();
    /// How many starts have failed with the manager's own error, and were tried again.
    [[nodiscard]] int failedStarts() const noexcept { return failedStarts_; }

    /// Sends a control. The error with which the manager refuses it, or 0.
    DWORD control(DWORD code);

    [[nodiscard]] tServiceStatus status() const;
    /// Waits until the manager has been told of the state.
    tServiceStatus waitForState(DWORD state, std::chrono::milliseconds timeout = patience) const;
    /// The whole way from a stop control to the end of the process.
    tServiceStatus stop();
    /// Waits until the service has stopped by itself and its process is gone.
    tServiceStatus waitForEnd(std::chrono::milliseconds timeout = patience) const;

    /// Wine's manager ends the process of a service at the first control after a stop control if the last report is
    /// still that it runs; Windows never does. It shows in no other way: from then on the service has no process, and
    /// has not stopped.
    [[nodiscard]] bool endedByManager() const;

    [[nodiscard]] DWORD processId() const noexcept { return processId_; }
    [[nodiscard]] bool processRunning() const { return processId_ != 0 && processExists(processId_); }

    [[nodiscard]] static bool installed();

private:
    tServiceHandle manager_;
    tServiceHandle service_;
    DWORD processId_ = 0;
    int failedStarts_ = 0;
};

}  // namespace endtoend
