// The executable, with stop requests from many sides until its end.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/endtoend/harness/figures.h"
#include "tests/endtoend/harness/stage.h"

namespace endurance {
namespace {

using endtoend::figure;
using endtoend::setting;
using endtoend::tHandle;
using endtoend::tInstalledService;
using endtoend::tServiceStatus;
using tClock = std::chrono::steady_clock;

class race : public endtoend::tEndToEnd {
protected:
    race() { addPlugin("A", {.cleanup = "CleanupOk"}); }

    /// One life after the other. Every other one gets stop controls without a pause. The others get one at a random
    /// moment, at which Wine's manager must end none of them.
    void hammer(const std::string& what) {
        tInstalledService service(executable());
        int lives = 0;
        for (; tClock::now() < end_ || lives < 4; ++lives) {
            const bool once = lives % 2 == 1;
            const int endedBefore = endedByManager_;
            ASSERT_NO_FATAL_FAILURE(live(service, once)) << (once ? "one stop control" : "many stop controls");
            if (once) {
                ASSERT_EQ(endedByManager_, endedBefore);
            }
        }
        const int withMany = (lives + 1) / 2;
        EXPECT_EQ(backwards_, 0);
        // A service that ends without its last report looks the same, but would do so in every life.
        EXPECT_LE(endedByManager_, 2 + withMany / 2);
        figure(what + ": lives", lives);
        figure(what + ": of these with many stop controls", withMany);
        figure(what + ": controls sent", sent_.load());
        figure(what + ": stop controls accepted", accepted_.load());
        figure(what + ": reports that came too late", backwards_);
        figure(what + ": lives that Wine's manager ended at a control after the stop", endedByManager_);
    }

    /// Returns false if the process has just ended or the system cannot generate the event.
    bool hasSent(DWORD event) {
        try {
            return process().sendConsoleEvent(event) == 0;
        } catch (const std::runtime_error&) {
            return false;
        }
    }

    int accepted() const { return accepted_; }
    void letServiceStopByItself() {
        std::filesystem::remove_all(descriptions());
        stopsByItself_ = true;
    }

private:
    void live(tInstalledService& service, bool once) {
        stopsByItself_ ? service.startBrief() : service.start();
        const tHandle process = endtoend::openDespiteAccessList(service.processId(), PROCESS_QUERY_INFORMATION);
        std::atomic<bool> over = false;
        std::vector<std::thread> requesters;
        if (once) {
            requesters.emplace_back([&] { stopOnce(service, over); });
        } else {
            constexpr DWORD controls[] = {SERVICE_CONTROL_STOP, SERVICE_CONTROL_INTERROGATE, SERVICE_CONTROL_STOP};
            for (const DWORD control : controls) {
                requesters.emplace_back([&, control] {
                    while (!over) send(service, control);
                });
            }
        }
        const bool ended = watch(service);
        over = true;
        for (std::thread& requester : requesters) requester.join();
        expectGoodEnd(service, process, ended);
    }

    bool send(tInstalledService& service, DWORD control) {
        ++sent_;
        const bool accepted = service.control(control) == 0;
        if (accepted && control == SERVICE_CONTROL_STOP) ++accepted_;
        return accepted;
    }

    /// Sends controls that the service ignores until some moment of its life, and one stop control then.
    void stopOnce(tInstalledService& service, const std::atomic<bool>& over) {
        const auto moment = tClock::now() + std::chrono::microseconds(random_() % 4000);
        while (!over && tClock::now() < moment) send(service, SERVICE_CONTROL_INTERROGATE);
        while (!over && !send(service, SERVICE_CONTROL_STOP)) {
        }
    }

    /// Follows the reports to the end of the life. Returns false if it does not end.
    bool watch(const tInstalledService& service) {
        bool checkpoint2 = false;
        for (const auto end = tClock::now() + endtoend::patience; tClock::now() < end;) {
            const tServiceStatus status = service.status();
            if (status.state == SERVICE_STOPPED || service.endedByManager()) return true;
            if (status.checkpoint == 2) checkpoint2 = true;
            if (status.checkpoint != 2 && checkpoint2) ++backwards_;
        }
        return false;
    }

    void expectGoodEnd(const tInstalledService& service, const tHandle& process, bool ended) {
        ASSERT_TRUE(ended) << "the stop was lost: " << testing::PrintToString(service.status())
                           << (service.processRunning() ? ", with its process" : ", without a process");
        ASSERT_TRUE(endtoend::becomesTrue([&] { return !service.processRunning(); }));
        DWORD code = 0;
        if (process) GetExitCodeProcess(process.get(), &code);  // null: it ended before it could be opened
        EXPECT_EQ(code, 0u);
        if (service.endedByManager()) {
            ++endedByManager_;
            return;
        }
        const tServiceStatus last = service.status();
        EXPECT_EQ(last.win32ExitCode, 0u);
        EXPECT_EQ(last.checkpoint, 0u);
    }

protected:
    /// A third of the time for each of the tests.
    tClock::time_point end_ = tClock::now() + std::chrono::milliseconds(1000 * setting("RACE_SECONDS", 18) / 3);

private:
    std::mt19937 random_{std::random_device{}()};
    std::atomic<int> sent_ = 0;
    std::atomic<int> accepted_ = 0;
    bool stopsByItself_ = false;
    int backwards_ = 0;
    int endedByManager_ = 0;
};

TEST_F(race, StopControlsFromManySidesEndAServiceThatWaits) {
    ASSERT_NO_FATAL_FAILURE(hammer("race, a service that waits"));
    EXPECT_GE(accepted(), 4) << "nothing else ends it";
}

TEST_F(race, StopControlsFromManySidesMeetAServiceThatStopsByItself) {
    letServiceStopByItself();
    ASSERT_NO_FATAL_FAILURE(hammer("race, a service that stops by itself"));
}

TEST_F(race, ConsoleEventsFromManySidesEndAForegroundRun) {
    int lives = 0;
    std::atomic<int> events = 0;
    for (; tClock::now() < end_ || lives < 3; ++lives) {
        startPlugins();
        std::vector<std::thread> senders;
        constexpr DWORD consoleEvents[] = {CTRL_C_EVENT, CTRL_BREAK_EVENT, CTRL_C_EVENT};
        for (const DWORD event : consoleEvents) {
            senders.emplace_back([&, event] {
                while (process().running()) {
                    if (hasSent(event)) ++events;
                }
            });
        }
        const bool ended = endtoend::becomesTrue([&] { return !process().running(); });
        if (!ended) TerminateProcess(process().handle(), 1);
        for (std::thread& sender : senders) sender.join();
        ASSERT_TRUE(ended) << "the stop was lost";
        // The exit code is a system error; a crash has other codes.
        EXPECT_LT(process().exitCode(), 0x10000u);
        ASSERT_EQ(endtoend::tStatusFile::read().names(), "A");
    }
    figure("race, a foreground run: lives", lives);
    figure("race, a foreground run: console events", events.load());
}

}  // namespace
}  // namespace endurance
