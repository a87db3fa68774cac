// The program's real entry and its real service control, with threads in the place of the service manager and of the
// console: for native tools, ThreadSanitizer above all.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "source/serviceControl.h"
#include "tests/support/hammer.h"
#include "tests/support/posix/windows.h"
#include "tests/support/serviceWorld.h"

int hostMain(int argumentCount, char** arguments);

namespace {

/// The reports of one life. Noted without any ordering between threads, which would hide what the product's own lock
/// fails to order.
class tReports {
public:
    void note(const SERVICE_STATUS& status) {
        const std::size_t at = count_.fetch_add(1, std::memory_order_relaxed);
        char mark = static_cast<char>('0' + status.dwCurrentState);
        if (status.dwCurrentState == SERVICE_STOP_PENDING) mark = status.dwCheckPoint == 1 ? 'r' : 'p';
        if (at < marks_.size()) marks_.at(at).store(mark, std::memory_order_relaxed);
    }

    /// START_PENDING 2, RUNNING 4, stop requested r (checkpoint 1), stop pending p (checkpoint 2), STOPPED 1; any
    /// number of requests in a row as one.
    [[nodiscard]] std::string life() const {
        std::string text(marks_.begin(), marks_.begin() + std::min<std::ptrdiff_t>(count_, marks_.size()));
        if (count_ > marks_.size()) text += ", and more than there is room for";
        const auto bothRequests = [](char a, char b) { return a == 'r' && b == 'r'; };
        text.erase(std::unique(text.begin(), text.end(), bothRequests), text.end());
        return text;
    }

private:
    std::array<std::atomic<char>, 1 << 16> marks_{};
    std::atomic<std::size_t> count_ = 0;
};

/// The console calls its handlers one event at a time, the one added last first, and no handler is added or removed
/// meanwhile but by the handler itself.
class tConsole {
public:
    using tHandler = BOOL (*)(DWORD);

    BOOL change(tHandler handler, BOOL add) {
        const std::lock_guard lock(mutex_);
        if (add == TRUE) {
            handlers_.push_back(handler);
            return TRUE;
        }
        const auto found = std::find(handlers_.rbegin(), handlers_.rend(), handler);
        if (found == handlers_.rend()) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
        }
        handlers_.erase(std::next(found).base());
        return TRUE;
    }

    /// False when nobody handles it, which would end the process.
    bool event() {
        const std::lock_guard lock(mutex_);
        const std::vector<tHandler> handlers(handlers_.rbegin(), handlers_.rend());
        return std::any_of(handlers.begin(), handlers.end(), [](tHandler handler) { return handler(0) == TRUE; });
    }

private:
    std::recursive_mutex mutex_;
    std::vector<tHandler> handlers_;
};

tReports* reports = nullptr;
tConsole* console = nullptr;
/// The manager sends controls from then on.
std::atomic<bool> running = false;
void (*controlHandler)(DWORD) = nullptr;
thread_local DWORD lastErrorOfThread = NO_ERROR;

class ServiceRace : public testing::Test {
protected:
    ServiceRace() {
        gStatusLock = 0;
        gConsoleInterrupted = 0;
        lastErrorOfThread = NO_ERROR;
        console = &console_;
    }
    ~ServiceRace() override {
        reports = nullptr;
        console = nullptr;
        gStatusHandle = nullptr;
        gStatusLock = 0;
        gConsoleInterrupted = 0;
    }

    /// One life of the service with controls from three sides; the marks of its reports.
    std::string hammeredService() {
        const auto noted = std::make_unique<tReports>();
        reports = noted.get();
        running = false;
        gStatusLock = 0;
        std::atomic<bool> over = false;
        std::vector<std::thread> requesters;
        for (const DWORD control : {SERVICE_CONTROL_STOP, SERVICE_CONTROL_SHUTDOWN, SERVICE_CONTROL_INTERROGATE}) {
            requesters.emplace_back([this, control, &over] {
                while (!running && !over) std::this_thread::yield();
                for (int sent = 0; !over; ++sent) {
                    controlHandler(control);
                    requests_.fetch_add(1, std::memory_order_relaxed);
                    support::pauseAfterRequest(sent);
                }
            });
        }
        std::array<char, 22> name{"zuZiptraRemoteService"};
        std::array<char*, 2> arguments{name.data(), nullptr};
        std::thread([&] { serviceMain(1, arguments.data()); }).join();
        over = true;
        for (std::thread& requester : requesters) requester.join();
        return noted->life();
    }

    /// One life in the foreground, with console events from three sides; the exit code.
    int hammeredForeground() {
        gConsoleInterrupted = 0;
        lastErrorOfThread = NO_ERROR;
        std::atomic<bool> over = false;
        std::vector<std::thread> senders;
        for (unsigned i = 0; i < 3; ++i) {
            const unsigned delay = (lives_ * 7 + i * 3) % 20 * 50'000;
            senders.emplace_back([this, delay, &over] {
                support::spin(delay);
                while (!over) {
                    if (console_.event()) requests_.fetch_add(1, std::memory_order_relaxed);
                    support::spin(1'000);
                }
            });
        }
        std::array<char, 22> name{"zuZiptraRemoteService"};
        std::array<char*, 2> arguments{name.data(), nullptr};
        const int code = hostMain(1, arguments.data());
        over = true;
        for (std::thread& sender : senders) sender.join();
        ++lives_;
        return code;
    }

    /// RACE_ROUNDS lets the tests go on for longer.
    static int rounds() {
        const char* const text = std::getenv("RACE_ROUNDS");
        return std::max(text == nullptr ? 0 : std::atoi(text), 20);
    }

    support::tServiceWorld world;
    std::atomic<std::uint64_t> requests_ = 0;
    unsigned lives_ = 0;

private:
    tConsole console_;
};

TEST_F(ServiceRace, NoRequestIsReportedOnceTheServiceMainReportsTheStop) {
    for (int round = 0; round < rounds(); ++round) ASSERT_EQ(hammeredService(), "24rp1");
    std::cout << "FIGURE race, on native threads, a service that waits: lives: " << rounds() << '\n'
              << "FIGURE race, on native threads, a service that waits: controls: " << requests_ << '\n';
}

TEST_F(ServiceRace, ARequestMeetsAServiceThatStopsByItselfBeforeItsStopOrNever) {
    std::filesystem::remove_all(world.plugins);
    for (int round = 0; round < rounds(); ++round) {
        const std::string life = hammeredService();
        ASSERT_TRUE(life == "24rp1" || life == "24p1") << life;
    }
    std::cout << "FIGURE race, on native threads, a service that stops by itself: lives: " << rounds() << '\n'
              << "FIGURE race, on native threads, a service that stops by itself: controls: " << requests_ << '\n';
}

TEST_F(ServiceRace, ConsoleEventsEndAForegroundRunWheneverTheyCome) {
    int interruptedStarts = 0;
    for (int round = 0; round < rounds(); ++round) {
        const int code = hammeredForeground();
        // The thread's last error: the run handler had taken itself off the list already, or never had to.
        const bool interruptedStart = code == ERROR_FAILED_SERVICE_CONTROLLER_CONNECT;
        ASSERT_TRUE(interruptedStart || code == ERROR_INVALID_PARAMETER) << code;
        interruptedStarts += interruptedStart;
    }
    std::cout << "FIGURE race, on native threads, a foreground run: lives: " << rounds() << '\n'
              << "FIGURE race, on native threads, a foreground run: of these interrupted at the start: "
              << interruptedStarts << '\n'
              << "FIGURE race, on native threads, a foreground run: console events: " << requests_ << '\n';
}

}  // namespace

BOOL StartServiceCtrlDispatcherA(const SERVICE_TABLE_ENTRYA* /*table*/) {
    SetLastError(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
    return FALSE;
}

SERVICE_STATUS_HANDLE RegisterServiceCtrlHandlerA(const char* name, void (*handler)(DWORD)) {
    EXPECT_STREQ(name, "zuZiptraRemoteService");
    controlHandler = handler;
    return reinterpret_cast<SERVICE_STATUS_HANDLE>(reports);
}

BOOL SetServiceStatus(SERVICE_STATUS_HANDLE /*handle*/, SERVICE_STATUS* status) {
    reports->note(*status);
    if (status->dwCurrentState == SERVICE_RUNNING) running = true;
    return TRUE;
}

BOOL SetConsoleCtrlHandler(BOOL (*handler)(DWORD), BOOL add) { return console->change(handler, add); }
DWORD GetLastError() { return lastErrorOfThread; }
void SetLastError(DWORD error) { lastErrorOfThread = error; }
