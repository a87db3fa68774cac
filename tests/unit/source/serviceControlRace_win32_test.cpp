// The control handler on its thread against the service main on its own, for real.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "source/serviceControl.h"
#include "tests/support/framework.h"
#include "tests/support/hammer.h"
#include "tests/support/imports_win32.h"
#include "tests/support/serviceWorld.h"

namespace {

/// RACE_ROUNDS lets the tests go on for longer; 0 without it.
int wantedRounds() {
    const char* const text = std::getenv("RACE_ROUNDS");
    return text == nullptr ? 0 : std::atoi(text);
}

class ServiceControlRace : public testing::Test {
protected:
    ServiceControlRace() {
        world.deployment.entry = support::tScriptedFramework::instantiate;
        // Waiting threads sleep, which is no pause of the run.
        imports::Sleep.replace([](DWORD milliseconds) { imports::Sleep.real(milliseconds); });
        imports::RegisterServiceCtrlHandlerA.replace([this](auto...) { return handle(); });
        imports::SetServiceStatus.replace([this](SERVICE_STATUS_HANDLE, SERVICE_STATUS* status) {
            note(*status);
            return TRUE;
        });
        imports::SetEvent.replace([this](HANDLE event) {
            const BOOL set = imports::SetEvent.real(event);
            if (set == FALSE) ++requestsAfterTheEnd;
            return set;
        });
    }
    ~ServiceControlRace() override {
        gStatusHandle = nullptr;
        gStatusLock = 0;
    }

    SERVICE_STATUS_HANDLE handle() { return reinterpret_cast<SERVICE_STATUS_HANDLE>(this); }

    /// Of any thread.
    void note(const SERVICE_STATUS& status) {
        const std::size_t index = count++;
        if (index < reports.size()) reports[index] = static_cast<char>('0' + status.dwCurrentState);
        if (status.dwCurrentState == SERVICE_STOP_PENDING && index < reports.size()) {
            reports[index] = status.dwCheckPoint == 1 ? 'r' : 'p';
        }
        if (status.dwCurrentState == SERVICE_RUNNING) running = true;
    }

    void startRound() {
        gStatusLock = 0;
        count = 0;
        running = false;
    }

    static void runServiceMain() {
        char name[] = "zuZiptraRemoteService";
        char* arguments[] = {name, nullptr};
        serviceMain(1, arguments);
    }

    /// START_PENDING 2, RUNNING 4, stop requested r (checkpoint 1), stop pending p (checkpoint 2), STOPPED 1; any
    /// number of requests in a row as one.
    [[nodiscard]] std::string life() const {
        std::string text(reports.data(), std::min<std::size_t>(count, reports.size()));
        text.erase(std::unique(text.begin(), text.end(), [](char a, char b) { return a == 'r' && b == 'r'; }),
                   text.end());
        return text;
    }

    support::tScriptedFramework framework;
    support::tServiceWorld world;
    std::array<char, 1 << 20> reports{};
    std::atomic<std::size_t> count = 0;
    std::atomic<bool> running = false;
    std::atomic<int> requestsAfterTheEnd = 0;
};

TEST_F(ServiceControlRace, NoRequestIsReportedOnceTheServiceMainReportsTheStop) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
    const int wanted = wantedRounds();
    const auto goesOn = [&](int round) {
        return round < std::max(wanted, 3) || (round < 30 && std::chrono::steady_clock::now() < end);
    };
    int rounds = 0;
    std::atomic<std::uint64_t> requests = 0;
    for (; goesOn(rounds); ++rounds) {
        startRound();
        std::atomic<bool> over = false;
        std::vector<std::thread> requesters;
        for (const unsigned long control : {SERVICE_CONTROL_STOP, SERVICE_CONTROL_SHUTDOWN}) {
            requesters.emplace_back([this, control, &over, &requests] {
                while (!running) std::this_thread::yield();
                for (int sent = 0; !over; ++sent) {
                    serviceControlHandler(control);
                    ++requests;
                    support::pauseAfterRequest(sent);
                }
            });
        }
        runServiceMain();
        over = true;
        for (std::thread& requester : requesters) requester.join();
        ASSERT_LT(count, reports.size());
        ASSERT_EQ(life(), "24rp1");
    }
    EXPECT_EQ(requestsAfterTheEnd, 0) << "the event was gone before its last use";
    std::cout << "FIGURE race, in one process: lives: " << rounds << '\n'
              << "FIGURE race, in one process: requests: " << requests << '\n'
              << "FIGURE race, in one process: requests after the end: " << requestsAfterTheEnd << '\n';
}

TEST_F(ServiceControlRace, ASingleRequestIsNeverLostWheneverItComes) {
    const int rounds = std::max(wantedRounds(), 20);
    for (int round = 0; round < rounds; ++round) {
        startRound();
        const std::future<void> service = std::async(std::launch::async, runServiceMain);
        while (!running) std::this_thread::yield();
        // From right at the start to well into the wait.
        support::spin(static_cast<unsigned>(round) % 20 * 20'000);
        serviceControlHandler(SERVICE_CONTROL_STOP);
        if (service.wait_for(std::chrono::seconds(5)) != std::future_status::ready) {
            signalServiceStop();
            FAIL() << "the stop was lost in round " << round;
        }
        ASSERT_EQ(life(), "24rp1");
    }
    std::cout << "FIGURE race, in one process: single requests, none lost: " << rounds << '\n';
}

}  // namespace
