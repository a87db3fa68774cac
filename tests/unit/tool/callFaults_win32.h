#pragma once

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>

#include "tests/support/imports_win32.h"

namespace support {

/// A call that fails: the `nth` of this function, counted from 1, and all later ones if `onwards` says so. None if
/// `nth` is 0.
struct tCallFault {
    std::string function{};
    int nth = 0;
    bool onwards = false;
};

/// How often each function has been called, in the order of tCallFaults.
using tCallCounts = std::array<int, 64>;

/// Makes a system call of `ziptra run` fail, in the process that has one of these, and counts all of them. Replacements
/// that a test has made before are called unless their call fails.
class tCallFaults {
public:
    static constexpr DWORD error = ERROR_NO_SYSTEM_RESOURCES;

    tCallFaults(tCallFault fault, tCallCounts& counts) : fault_(std::move(fault)), counts_(counts) {
        counts.fill(0);
        addProcesses();
        addPipes();
        addSettings();
        addState();
    }

    /// The names of the functions.
    [[nodiscard]] const std::vector<std::string>& functions() const { return functions_; }

private:
    template <class Result, class... Arguments, class Failure>
    void add(imports::Import<Result(Arguments...)>& door, const char* name, Failure failure, bool performed = false) {
        const std::size_t index = functions_.size();
        functions_.emplace_back(name);
        door.replace([=, this, inner = door.current()](Arguments... arguments) -> Result {
            const int nth = ++counts_.at(index);
            const bool fails =
                functions_[index] == fault_.function && (nth == fault_.nth || (fault_.onwards && nth > fault_.nth));
            if (!fails) return inner(arguments...);
            if (performed) static_cast<void>(inner(arguments...));
            imports::SetLastError.real(error);
            return static_cast<Result>(failure);
        });
    }

#define FAULT(name, result) add(imports::name, #name, result)
// What is not released or restored would remain in this process, and some calls cannot fail: only the answer is wrong.
#define WRONG_ANSWER(name, result) add(imports::name, #name, result, true)
    void addProcesses() {
        FAULT(CreateJobObjectW, nullptr);
        FAULT(SetInformationJobObject, FALSE);
        FAULT(AssignProcessToJobObject, FALSE);
        FAULT(QueryInformationJobObject, FALSE);
        FAULT(TerminateJobObject, FALSE);
        FAULT(CreateProcessW, FALSE);
        FAULT(GetExitCodeProcess, FALSE);
        FAULT(TerminateProcess, FALSE);
        FAULT(CreateThread, nullptr);
        FAULT(WaitForSingleObject, WAIT_FAILED);
        WRONG_ANSWER(CloseHandle, FALSE);
    }
    void addPipes() {
        FAULT(CreatePipe, FALSE);
        FAULT(SetHandleInformation, FALSE);
        FAULT(GetStdHandle, INVALID_HANDLE_VALUE);
        FAULT(SetStdHandle, FALSE);
        FAULT(DuplicateHandle, FALSE);
        FAULT(_dup2, -1);
        FAULT(CreateFileW, INVALID_HANDLE_VALUE);
        FAULT(WriteFile, FALSE);
        FAULT(PeekNamedPipe, FALSE);
        FAULT(ReadFile, FALSE);
    }
    void addSettings() {
        FAULT(SetConsoleCtrlHandler, FALSE);
        FAULT(GetConsoleCP, 0);
        FAULT(GetConsoleOutputCP, 0);
        WRONG_ANSWER(SetConsoleCP, FALSE);
        WRONG_ANSWER(SetConsoleOutputCP, FALSE);
        WRONG_ANSWER(SetErrorMode, 0);
        WRONG_ANSWER(SetUnhandledExceptionFilter, nullptr);
        FAULT(AddVectoredExceptionHandler, nullptr);
        FAULT(ReadProcessMemory, FALSE);
        FAULT(SetThreadStackGuarantee, FALSE);
        FAULT(LoadLibraryW, nullptr);
        WRONG_ANSWER(FreeLibrary, FALSE);
        FAULT(GetProcAddress, nullptr);
        FAULT(GetModuleFileNameW, 0);
        FAULT(WideCharToMultiByte, 0);
    }
    void addState() {
        FAULT(VirtualQuery, 0);
        FAULT(K32GetMappedFileNameW, 0);
        FAULT(GetProcessHandleCount, FALSE);
        FAULT(GetModuleHandleW, nullptr);
        FAULT(GetModuleHandleExW, FALSE);
        FAULT(OpenThread, nullptr);
        FAULT(CreateToolhelp32Snapshot, INVALID_HANDLE_VALUE);
        FAULT(Thread32First, FALSE);
        FAULT(Thread32Next, FALSE);
        FAULT(GetSystemWindowsDirectoryW, 0);
        FAULT(CompareStringOrdinal, 0);
        FAULT(K32EnumProcessModules, FALSE);
        FAULT(GetCurrentDirectoryW, 0);
        FAULT(GetEnvironmentStringsW, nullptr);
        WRONG_ANSWER(FreeEnvironmentStringsW, FALSE);
        FAULT(GetThreadPriority, THREAD_PRIORITY_ERROR_RETURN);
    }
#undef WRONG_ANSWER
#undef FAULT

    tCallFault fault_;
    tCallCounts& counts_;
    std::vector<std::string> functions_;
};

/// Returns the faults to be tried where each function has been called so often: of each that has been called, the
/// first, the second and the last call, and all from the first on.
inline std::vector<tCallFault> faultsFor(const std::vector<std::string>& functions, const tCallCounts& counts) {
    std::vector<tCallFault> faults;
    for (std::size_t i = 0; i < functions.size(); ++i) {
        if (counts.at(i) == 0) continue;
        for (const int nth : std::set<int>{1, std::min(2, counts.at(i)), counts.at(i)}) {
            faults.push_back({functions[i], nth, false});
        }
        faults.push_back({functions[i], 1, true});
    }
    return faults;
}

}  // namespace support
