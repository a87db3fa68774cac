// The same life again and again: the last one uses no more handles and memory than an early one.

#include <gtest/gtest.h>
#include <windows.h>

// windows.h first: the other needs its types.
#include <psapi.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <set>
#include <vector>

#include "source/tService.h"
#include "tests/endtoend/harness/figures.h"
#include "tests/endtoend/harness/stage.h"

namespace endurance {
namespace {

using endtoend::figure;
using endtoend::setting;
using endtoend::tStatusFile;
using tClock = std::chrono::steady_clock;

/// An entry of NtQuerySystemInformation's list of all handles. (Wine's GetProcessHandleCount always returns 0.)
constexpr ULONG systemExtendedHandleInformation = 64;
using tQuerySystemInformation = LONG(WINAPI*)(ULONG kind, void* answer, ULONG size, ULONG* needed);
struct tSystemHandle {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG more[4];
};
struct tSystemHandles {
    ULONG_PTR count;
    ULONG_PTR reserved;
    tSystemHandle handles[1];
};

std::size_t handlesOf(DWORD processId) {
    // The declaration in winternl.h takes an enumeration without this value.
    static const auto query = reinterpret_cast<tQuerySystemInformation>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    static std::vector<ULONG_PTR> room(1 << 16);
    ULONG needed = 0;
    while (query(systemExtendedHandleInformation, room.data(), static_cast<ULONG>(room.size() * sizeof room[0]),
                 &needed) < 0) {
        if (room.size() > 1 << 24) endtoend::failed("NtQuerySystemInformation");
        room.resize(2 * room.size());
    }
    const auto* const all = reinterpret_cast<const tSystemHandles*>(room.data());
    return static_cast<std::size_t>(std::count_if(&all->handles[0], &all->handles[0] + all->count,
                                                  [=](const auto& entry) { return entry.processId == processId; }));
}

std::size_t memoryInUse() {
    PROCESS_MEMORY_COUNTERS counters{};
    endtoend::require(K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters), "GetProcessMemoryInfo");
    return counters.WorkingSetSize / 1024;
}

class soak : public endtoend::tEndToEnd {
protected:
    /// Each depends on the one before it.
    void addTenPlugins() const {
        for (char name = 'A'; name <= 'J'; ++name) {
            addPlugin({name}, {.dependencies = name == 'A' ? "" : std::string{static_cast<char>(name - 1)},
                               .stop = "StopOk",
                               .cleanup = "CleanupOk",
                               .library = L"quiet.dll"});
        }
    }

    static void expectTenGoodPlugins() {
        const tStatusFile status = tStatusFile::read();
        ASSERT_EQ(status.names(), "A B C D E F G H I J");
        for (const auto& plugin : status.plugins) {
            for (const auto& call : plugin.calls) ASSERT_EQ(call.code, 0) << plugin.name << ' ' << call.label;
        }
    }
};

/// Runs the product's code in this process, so that no end of a process cleans up.
TEST_F(soak, TenPluginsLoadedAndUnloadedAgainAndAgainLeaveNothingBehind) {
    addTenPlugins();
    const int wanted = std::max(setting("SOAK_CYCLES", 500), 100);
    const int warmUp = 50;
    std::set<std::size_t> handles;
    std::vector<std::size_t> memory;
    for (int cycle = 0; cycle <= wanted; ++cycle) {
        ASSERT_EQ(startService(), 0);
        signalServiceStop();  // the run ends as soon as everything has started
        runService();
        stopService();
        if (cycle % 10 != 0) continue;
        ASSERT_NO_FATAL_FAILURE(expectTenGoodPlugins());
        if (cycle < warmUp) continue;
        handles.insert(handlesOf(GetCurrentProcessId()));
        memory.push_back(memoryInUse());
    }
    EXPECT_EQ(handles.size(), 1u) << "from " << *handles.begin() << " to " << *handles.rbegin();
    EXPECT_LT(memory.back(), memory.front() + 256);
    figure("soak, ten plug-ins: cycles", wanted);
    figure("soak, ten plug-ins: plug-ins loaded and unloaded", 10 * wanted);
    figure("soak, ten plug-ins: fewest handles", *handles.begin());
    figure("soak, ten plug-ins: most handles", *handles.rbegin());
    figure("soak, ten plug-ins: KB of memory after the warm-up", memory.front());
    figure("soak, ten plug-ins: most KB", *std::max_element(memory.begin(), memory.end()));
    figure("soak, ten plug-ins: KB at the end", memory.back());
}

TEST_F(soak, TheServiceStartsAndStopsAgainAndAgain) {
    addTenPlugins();
    const auto end = tClock::now() + std::chrono::seconds(setting("SOAK_SECONDS", 15));
    endtoend::tInstalledService service(executable());
    std::set<std::size_t> handles;
    int cycles = 0;
    for (; tClock::now() < end || cycles < 10; ++cycles) {
        endtoend::tStatusWrites writes;
        service.start();
        service.waitForState(SERVICE_RUNNING);
        writes.waitFor(3);
        handles.insert(handlesOf(service.processId()));
        ASSERT_EQ(service.stop().win32ExitCode, 0u);
        ASSERT_NO_FATAL_FAILURE(expectTenGoodPlugins());
    }
    figure("soak, service: starts and stops", cycles);
    figure("soak, service: fewest handles", *handles.begin());
    figure("soak, service: most handles", *handles.rbegin());
}

}  // namespace
}  // namespace endurance
