#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace support {

/// Replaces the service manager and the console for the program's real entry and service control, with threads that
/// send requests continuously. On Windows it replaces the imports that they call; elsewhere it defines the functions of
/// support/posix/windows.h. At most one may exist at a time.
class tServiceManager {
public:
    using tHandler = int (*)(unsigned long);

    tServiceManager();
    ~tServiceManager();
    tServiceManager(const tServiceManager&) = delete;
    tServiceManager& operator=(const tServiceManager&) = delete;

    /// Runs one life of the service while three threads send controls from its first RUNNING report until its end.
    /// Returns its reports: START_PENDING 2, RUNNING 4, stop requested r (checkpoint 1), stop pending p (checkpoint 2),
    /// STOPPED 1; successive requests are shown as one.
    std::string hammeredService();
    /// The same with a single stop request, sent `delay` turns after the RUNNING report.
    std::string serviceStoppedOnce(unsigned delay);
    /// Runs one life in the foreground while three threads send console events from `delay` turns on. Returns the exit
    /// code.
    int hammeredForeground(unsigned delay);

    std::atomic<std::uint64_t> sent = 0;  ///< controls, or console events that were handled
    std::atomic<int> failedSignals = 0;   ///< signals of the stop event after it was closed

    // For the platform's functions.
    void note(unsigned long state, unsigned long checkpoint);
    bool change(tHandler handler, bool add);

private:
    void startLife();
    [[nodiscard]] std::string life() const;
    bool consoleEvent();
    static void runServiceMain();

    static constexpr std::size_t mostReports = 1 << 20;
    // Accessed without any ordering between threads, which would hide missing ordering in the product's own lock.
    std::unique_ptr<std::atomic<char>[]> reports_ = std::make_unique<std::atomic<char>[]>(mostReports);
    std::atomic<std::size_t> count_ = 0;
    std::atomic<bool> running_ = false;
    std::recursive_mutex mutex_;
    std::vector<tHandler> handlers_;
};

}  // namespace support
