// Repeats the same life: the last one uses no more handles or memory than an early one.

#include <gtest/gtest.h>
#include <windows.h>

// After windows.h, because it needs its types.
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

/// Requests the list of all handles from NtQuerySystemInformation. (Wine's GetProcessHandleCount always returns 0.)
constexpr ULONG systemExtendedHandleInformation = 64;
using tQuerySystemInformation = LONG(WINAPI*)(ULONG kind, void* buffer, ULONG size, ULONG* neededBytes);
struct tSystemHandle {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG unused[4];
};
struct tSystemHandles {
    ULONG_PTR count;
    ULONG_PTR reserved;
    tSystemHandle handles[1];
};

std::size_t countHandles(DWORD processId) {
    // The declaration in winternl.h takes an enumeration that lacks this value.
    static const auto query = reinterpret_cast<tQuerySystemInformation>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    static std::vector<ULONG_PTR> buffer(1 << 16);
    ULONG neededBytes = 0;
    while (query(systemExtendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size() * sizeof buffer[0]),
                 &neededBytes) < 0) {
        if (buffer.size() > 1 << 24) endtoend::failed("NtQuerySystemInformation");
        buffer.resize(2 * buffer.size());
    }
    const auto* const all = reinterpret_cast<const tSystemHandles*>(buffer.data());
    return static_cast<std::size_t>(std::count_if(&all->handles[0], &all->handles[0] + all->count,
                                                  [=](const auto& entry) { return entry.processId == processId; }));
}

std::size_t usedMemoryKb() {
    PROCESS_MEMORY_COUNTERS counters{};
    endtoend::require(K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) != FALSE,
                      "GetProcessMemoryInfo");
    return counters.WorkingSetSize / 1024;
}

class soak : public endtoend::tEndToEnd {
protected:
    /// Each plug-in depends on the previous one.
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

/// Runs the product's code in this process, so that the end of a process does not clean up after it.
TEST_F(soak, TenPluginsLoadedAndUnloadedRepeatedlyLeakNothing) {
    addTenPlugins();
    const int cycles = std::max(setting("SOAK_CYCLES", 500), 100);
    const int warmUpCycles = 50;
    std::set<std::size_t> handles;
    std::vector<std::size_t> memory;
    for (int cycle = 0; cycle <= cycles; ++cycle) {
        ASSERT_EQ(startService(), 0);
        signalServiceStop();  // the run ends as soon as everything has started
        runService();
        stopService();
        if (cycle % 10 != 0) continue;
        ASSERT_NO_FATAL_FAILURE(expectTenGoodPlugins());
        if (cycle < warmUpCycles) continue;
        handles.insert(countHandles(GetCurrentProcessId()));
        memory.push_back(usedMemoryKb());
    }
    EXPECT_EQ(handles.size(), 1u) << "from " << *handles.begin() << " to " << *handles.rbegin();
    EXPECT_LT(memory.back(), memory.front() + 256);
    figure("soak, ten plug-ins: cycles", cycles);
    figure("soak, ten plug-ins: plug-ins loaded and unloaded", 10 * cycles);
    figure("soak, ten plug-ins: fewest handles", *handles.begin());
    figure("soak, ten plug-ins: most handles", *handles.rbegin());
    figure("soak, ten plug-ins: KB of memory after the warm-up", memory.front());
    figure("soak, ten plug-ins: most KB", *std::max_element(memory.begin(), memory.end()));
    figure("soak, ten plug-ins: KB at the end", memory.back());
}

TEST_F(soak, TheServiceStartsAndStopsRepeatedly) {
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
        handles.insert(countHandles(service.processId()));
        ASSERT_EQ(service.stop().win32ExitCode, 0u);
        ASSERT_NO_FATAL_FAILURE(expectTenGoodPlugins());
    }
    figure("soak, service: starts and stops", cycles);
    figure("soak, service: fewest handles", *handles.begin());
    figure("soak, service: most handles", *handles.rbegin());
}

}  // namespace
}  // namespace endurance
