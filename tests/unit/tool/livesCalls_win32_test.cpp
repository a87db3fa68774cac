// Every system call of the process that watches the one that runs plug-ins fails in turn.
#include "tests/unit/tool/runLife_win32.h"
// windows.h first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cwchar>

#include "tests/unit/tool/callFaults_win32.h"
#include "tool/run/processState.h"
#include "tool/systemReason.h"

namespace {

using support::tCallCounts;
using support::tCallFault;
using support::tCallFaults;
using support::tRunLife;
using testing::AllOf;
using testing::AnyOf;
using testing::EndsWith;
using testing::StartsWith;

/// The program that runs the plug-ins is ziptra.exe, not this one.
void useTool() {
    const std::wstring tool = (support::tToolProcess::ownFolder() / "ziptra.exe").wstring();
    imports::GetModuleFileNameW.replace([tool](HMODULE module, wchar_t* path, DWORD size) -> DWORD {
        if (module != nullptr) return imports::GetModuleFileNameW.real(module, path, size);
        std::wcscpy(path, tool.c_str());
        return static_cast<DWORD>(tool.size());
    });
}

struct tScenario {
    const char* entry;
    std::uint64_t limitMs;
    bool withoutErrors;  ///< there is no standard error
};

std::ostream& operator<<(std::ostream& stream, const tScenario& scenario) { return stream << scenario.entry; }

class systemCallsOfLives : public testing::TestWithParam<tScenario> {
protected:
    /// Runs a life in which this call fails.
    std::string run(const tCallFault& fault) {
        useTool();
        if (GetParam().withoutErrors) imports::GetStdHandle.replace([](DWORD) { return INVALID_HANDLE_VALUE; });
        imports::SetConsoleCtrlHandler.replace([](auto...) { return TRUE; });  // this process keeps its own
        const tCallFaults faults(fault, counts_);
        functions_ = faults.functions();
        std::string result = tRunLife::run(description_, GetParam().limitMs);
        imports::ImportBase::restoreAll();
        return result;
    }

    tRunLife life_;
    std::string description_ = life_.describe(GetParam().entry);
    tCallCounts counts_{};
    std::vector<std::string> functions_;
};

TEST_P(systemCallsOfLives, EachMayFailAndTheReasonIsShownAndNothingSurvives) {
    const std::string usual = run({});
    EXPECT_EQ(run({}), usual);  // and libraries that are loaded once have been
    const std::size_t handles = nRun::readProcessState().handles;
    const std::string reason = nSystemReason::of(tCallFaults::error);
    const std::vector<tCallFault> faults = support::faultsFor(functions_, counts_);
    for (const tCallFault& fault : faults) {
        SCOPED_TRACE(fault.function + " fails, call " + std::to_string(fault.nth) +
                     (fault.onwards ? " and later" : ""));
        EXPECT_THAT(run(fault), AnyOf(usual, AllOf(StartsWith("The plug-ins cannot be run: "), EndsWith(reason))));
        EXPECT_TRUE(tRunLife::nothingRuns(L"ziptra.exe"));
        EXPECT_EQ(nRun::readProcessState().handles, handles);
    }
    std::printf("%s: %zu faults\n", GetParam().entry, faults.size());
    EXPECT_GT(faults.size(), 40U);
}

INSTANTIATE_TEST_SUITE_P(Of, systemCallsOfLives,
                         testing::Values(tScenario{"Behaves", 60'000, false}, tScenario{"Exits", 60'000, true},
                                         tScenario{"Hangs", 100, false}),
                         [](const auto& scenario) { return std::string(scenario.param.entry); });

TEST(nRunLivesConsole, HasItsCodePagesAgainAfterwards) {
    useTool();
    UINT input = 0;
    UINT output = 0;
    imports::GetConsoleCP.replace([] { return 850U; });
    imports::GetConsoleOutputCP.replace([] { return 437U; });
    imports::SetConsoleCP.replace([&](UINT codePage) { return (input = codePage) != 0 ? TRUE : FALSE; });
    imports::SetConsoleOutputCP.replace([&](UINT codePage) { return (output = codePage) != 0 ? TRUE : FALSE; });
    const tRunLife life;
    EXPECT_EQ(tRunLife::run(life.describe("Behaves"), 60'000), "ok: ");
    EXPECT_EQ(input, 850U);
    EXPECT_EQ(output, 437U);
}

/// A clock that advances only while the process is waited for, by the time that was asked for. However busy the machine
/// is, the limit takes as many of these waits.
TEST(nRunLivesLimit, IsKeptToWithinASecond) {
    useTool();
    std::uint64_t nowMs = 0;
    std::uint64_t heardMs = 0;
    std::uint64_t endedMs = 0;
    imports::GetTickCount64.replace([&] { return nowMs; });
    imports::WaitForSingleObject.replace([&](HANDLE handle, DWORD milliseconds) {
        nowMs += milliseconds;
        return imports::WaitForSingleObject.real(handle, milliseconds);
    });
    imports::ReadFile.replace([&](HANDLE file, void* bytes, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
        heardMs = nowMs;
        return imports::ReadFile.real(file, bytes, size, read, overlapped);
    });
    imports::TerminateJobObject.replace([&](HANDLE job, UINT code) {
        endedMs = nowMs;
        return imports::TerminateJobObject.real(job, code);
    });
    const tRunLife life;
    EXPECT_THAT(tRunLife::run(life.describe("Hangs"), 1000), StartsWith("hung: no return within 1000 ms in Hangs; "));
    EXPECT_GE(endedMs, heardMs + 1000);
    EXPECT_LE(endedMs, heardMs + 2000);
}

}  // namespace
