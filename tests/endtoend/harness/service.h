#pragma once

#include <iosfwd>

#include "tests/endtoend/harness/system.h"
#include "tests/endtoend/harness/wait.h"

namespace endtoend {

struct tServiceHandleCloser {
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};
using tServiceHandle = std::unique_ptr<SC_HANDLE__, tServiceHandleCloser>;

/// A service's last report, as the service control manager stores it.
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

/// The product's service name.
inline constexpr const wchar_t* productService = L"zuZiptraRemoteService";

/// Registers the product with the service control manager for the lifetime of the object, and stops it on destruction.
class tInstalledService {
public:
    explicit tInstalledService(const tPath& executable);
    ~tInstalledService();
    tInstalledService(const tInstalledService&) = delete;
    tInstalledService& operator=(const tInstalledService&) = delete;

    void start();
    /// For a service that ends by itself: see requireBriefStart.
    void startBrief();

    /// Sends a control. Returns the error with which the manager refuses it, or 0.
    DWORD control(DWORD code);

    [[nodiscard]] tServiceStatus status() const;
    /// Waits until the service has reported the state.
    tServiceStatus waitForState(DWORD state, std::chrono::milliseconds timeout = patience) const;
    /// Sends a stop control and waits for the end of the process. Returns the last report.
    tServiceStatus stop();
    /// Waits until the service has stopped and its process has ended.
    tServiceStatus waitForEnd(std::chrono::milliseconds timeout = patience) const;

    /// Whether the service has no process any more but has not reported that it stopped. Wine's manager ends the
    /// process at the first control after a stop control if the last report still is that it runs; Windows never does.
    [[nodiscard]] bool endedByManager() const;

    [[nodiscard]] DWORD processId() const noexcept { return processId_; }
    [[nodiscard]] bool processRunning() const { return processId_ != 0 && processExists(processId_); }

    [[nodiscard]] static bool installed();

private:
    tServiceHandle manager_;
    tServiceHandle service_;
    DWORD processId_ = 0;
};

}  // namespace endtoend
