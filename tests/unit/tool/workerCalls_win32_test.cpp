// Every system call of the process that runs plug-ins fails in turn. That process is this test program.
#include "tests/unit/tool/runLife_win32.h"
// windows.h first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cwchar>
#include <fstream>
#include <new>
#include <set>
#include <sstream>

#include "tests/unit/tool/callFaults_win32.h"
#include "tool/run/worker.h"

namespace {

using support::tCallCounts;
using support::tCallFault;
using support::tCallFaults;
using support::tRunLife;
using testing::AnyOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using testing::StrEq;

constexpr const wchar_t* variable = L"ZIPTRA_TEST_FAULT";
constexpr const wchar_t* countsName = L"ziptra test counts";

/// Counts that two processes share.
class tSharedCounts {
public:
    tSharedCounts()
        : mapping_(
              CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(tCallCounts), countsName)),
          counts_(static_cast<tCallCounts*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(tCallCounts)))) {}
    ~tSharedCounts() {
        UnmapViewOfFile(counts_);
        CloseHandle(mapping_);
    }
    tSharedCounts(const tSharedCounts&) = delete;
    tSharedCounts& operator=(const tSharedCounts&) = delete;

    tCallCounts& operator*() const { return *counts_; }

private:
    HANDLE mapping_;
    tCallCounts* counts_;
};

LONG WINAPI failingQuery(HANDLE /*thread*/, ULONG /*kind*/, void* /*value*/, ULONG /*size*/, ULONG* /*needed*/) {
    return -1;
}

/// What cannot be described as a system call that fails.
void damage(const std::string& function) {
    if (function == "operator new") {
        imports::GetCurrentDirectoryW.replace([](DWORD, wchar_t*) -> DWORD { throw std::bad_alloc(); });
    } else if (function == "NtQueryInformationThread") {
        imports::GetProcAddress.replace([](HMODULE module, const char* name) {
            const auto other = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(failingQuery));
            const bool meant = HIWORD(name) != 0 && std::string_view(name) == "NtQueryInformationThread";
            return meant ? other : imports::GetProcAddress.real(module, name);
        });
    }
}

TEST(workerCallsProcess, RunsPlugIns) {
    wchar_t text[100] = L"";
    if (GetEnvironmentVariableW(variable, text, 100) == 0) return;  // this is the test program
    std::istringstream fields(std::filesystem::path(text).string());
    tCallFault fault;
    std::getline(fields, fault.function, ',');
    fields >> fault.nth >> fault.onwards;
    const tSharedCounts counts;
    damage(fault.function);
    const tCallFaults faults(fault, *counts);
    imports::TerminateProcess.real(GetCurrentProcess(), static_cast<UINT>(nRun::runWorker()));
}

/// A life, and the functions of which it is about; all if there are none.
struct tScenario {
    const char* entry;
    std::set<std::string> functions;
};

std::ostream& operator<<(std::ostream& stream, const tScenario& scenario) { return stream << scenario.entry; }

class systemCallsOfWorker : public testing::TestWithParam<tScenario> {
protected:
    /// Runs a plug-in with this entry in a process in which this call fails.
    static std::string run(const std::string& description, const tCallFault& fault) {
        const std::wstring self = (support::tToolProcess::ownFolder() / "tool_tests.exe").wstring();
        imports::CreateProcessW.replace([&](const wchar_t*, wchar_t*, SECURITY_ATTRIBUTES* process,
                                            SECURITY_ATTRIBUTES* thread, BOOL inherit, DWORD flags, void* environment,
                                            const wchar_t* directory, STARTUPINFOW* start, PROCESS_INFORMATION* child) {
            std::wstring line = L"tool_tests --gtest_filter=workerCallsProcess.RunsPlugIns";
            return imports::CreateProcessW.real(self.c_str(), line.data(), process, thread, inherit, flags, environment,
                                                directory, start, child);
        });
        const std::string text = fault.function + ", " + std::to_string(fault.nth) + (fault.onwards ? " 1" : " 0");
        SetEnvironmentVariableW(variable, std::filesystem::path(text).c_str());
        std::string result = tRunLife::run(description, 60'000, 2);
        SetEnvironmentVariableW(variable, nullptr);
        imports::ImportBase::restoreAll();
        return result;
    }

    tRunLife life_;
};

/// The names of the functions of tCallFaults.
std::vector<std::string> functions() {
    tCallCounts counts{};
    std::vector<std::string> names = tCallFaults({}, counts).functions();
    imports::ImportBase::restoreAll();
    return names;
}

/// A result that blames no plug-in, and says what failed.
const auto saysWhatFailed =
    AnyOf(MatchesRegex("The plug-ins cannot be run: their process gave up: .*: .+"),
          StartsWith("The plug-ins cannot be run: their process could not report"),
          // MinGW's runtime ends the process if a new thread has no handle of itself.
          StrEq("The plug-ins cannot be run: their process ended with the exit code 3 before it called one"),
          MatchesRegex("The plug-ins cannot be run: their process gave up: The directory '.*' cannot be read"),
          // The service would not be able to do so, either.
          HasSubstr("the library could not be unloaded"));

TEST_P(systemCallsOfWorker, EachMayFailWithoutAFalseAccusationAndNothingSurvives) {
    life_.describe("Behaves");
    const std::string description = life_.describe(GetParam().entry, "Behaves");
    const tSharedCounts counts;
    const std::string usual = run(description, {});
    const std::string start = usual.substr(0, usual.find(" at "));  // the place of a fault may remain unknown
    std::size_t tried = 0;
    for (const tCallFault& fault : support::faultsFor(functions(), *counts)) {
        if (!GetParam().functions.empty() && !GetParam().functions.contains(fault.function)) continue;
        SCOPED_TRACE(fault.function + " fails, call " + std::to_string(fault.nth) +
                     (fault.onwards ? " and later" : ""));
        EXPECT_THAT(run(description, fault), AnyOf(StartsWith(start), saysWhatFailed));
        EXPECT_TRUE(tRunLife::nothingRuns(L"tool_tests.exe"));
        ++tried;
    }
    std::printf("%s: %zu faults\n", GetParam().entry, tried);
    EXPECT_GT(tried, 2 * GetParam().functions.size());
}

INSTANTIATE_TEST_SUITE_P(
    Of, systemCallsOfWorker,
    testing::Values(tScenario{"Warns", {}},
                    tScenario{"Faults",
                              {"K32GetMappedFileNameW", "SetThreadStackGuarantee", "SetUnhandledExceptionFilter",
                               "TerminateProcess", "VirtualQuery", "WideCharToMultiByte", "WriteFile"}},
                    tScenario{"SaysWhyItFails", {"AddVectoredExceptionHandler", "ReadProcessMemory", "WriteFile"}}),
    [](const auto& scenario) { return std::string(scenario.param.entry); });

/// What cannot fail, or is asked whether something exists; the texts for errors; and what Boost's headers bring along.
const std::set<std::string> unswept{
    "FormatMessageA", "FormatMessageW", "GetCurrentProcess",    "GetCurrentProcessId", "GetCurrentThread",
    "GetErrorMode",   "GetLastError",   "GetThreadErrorMode",   "GetThreadLocale",     "GetTickCount64",
    "LocalFree",      "Sleep",          "GetHandleInformation", "GetCurrentThreadId"};

TEST(systemCallsOfRun, AreAllInTheSweep) {
    std::ifstream listing(support::tToolProcess::ownFolder() / "run.calls");
    if (!listing) GTEST_SKIP() << "only GNU tools list what is called";
    std::set<std::string> calls;
    for (std::string line; std::getline(listing, line);) {
        std::string name = line.substr(line.find_last_of(' ') + 1);
        std::erase(name, '\r');
        if (name.starts_with("__imp_")) name.erase(0, 6);
        // The C and C++ runtimes' names begin otherwise.
        if (!name.empty() && name[0] >= 'A' && name[0] <= 'Z') calls.insert(name);
    }
    const std::vector<std::string> swept = functions();
    for (const std::string& name : swept) calls.erase(name);
    EXPECT_EQ(calls, unswept);
}

class workerCalls : public systemCallsOfWorker {};

TEST_F(workerCalls, SayThatMemoryRanOut) {
    EXPECT_EQ(run(life_.describe("Behaves"), {"operator new"}),
              "The plug-ins cannot be run: their process gave up: it ran out of memory");
}

TEST_F(workerCalls, SayThatTheStartOfAThreadIsUnknown) {
    EXPECT_EQ(run(life_.describe("Behaves"), {"NtQueryInformationThread"}),
              "The plug-ins cannot be run: their process gave up: the start of a thread is unknown: status -1");
}

TEST_F(workerCalls, SayThatTheLibraryOfAFailedPlugInCannotBeUnloaded) {
    EXPECT_EQ(run(life_.describe("Fails"), {"FreeLibrary", 1, true}),
              "failed: Fails failed, and the library could not be unloaded; this would have ended the service's run");
}

}  // namespace
