#pragma once

#include <windows.h>
// windows.h first: tlhelp32.h needs its types.
#include <tlhelp32.h>

#include <string>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolProcess_win32.h"
#include "tool/run/lives.h"

namespace support {

/// Descriptions of plug-ins of the test library tests/plugins/misbehaving, which nRun::run runs in this process.
class tRunLife {
public:
    /// Describes a plug-in whose Initialize is this entry; its other entries behave.
    std::string describe(const std::string& initialize, const std::string& dependencies = "") const {
        const auto library = tToolProcess::ownFolder() / "test-plugins" / "misbehaving.dll";
        folder_.write(initialize + ".ini", "[Service]\nName=" + initialize + "\nDependencies=" + dependencies +
                                               "\nPath=" + library.string() + "\nInitialize=" + initialize +
                                               "\nStop=Behaves\nCleanup=Behaves\n");
        return (folder_.path() / (initialize + ".ini")).string();
    }

    /// Returns the outcome and the detail of the last plug-in in the last life, or why the plug-ins cannot be run.
    [[nodiscard]] static std::string run(const std::string& description, std::uint64_t limitMs, std::size_t times = 1) {
        try {
            const nRun::tResult result = nRun::run({{description}, times}, limitMs, [] {});
            const nRun::tPluginLife& last = result.lives.back().back();
            return std::string(nRun::outcomeName(last.outcome)) + ": " + last.detail;
        } catch (const nRun::tCannotRun& failure) {
            return failure.what();
        }
    }

    /// Returns whether no process of a program remains; waits for those that are about to end.
    [[nodiscard]] static bool nothingRuns(std::wstring_view program) {
        for (int i = 0; i < 1000 && count(program) > 0; ++i) Sleep(10);
        return count(program) == 0;
    }

private:
    static int count(std::wstring_view program) {
        const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
        PROCESSENTRY32W entry{};
        entry.dwSize = sizeof entry;
        int result = 0;
        for (BOOL more = Process32FirstW(snapshot, &entry); more != FALSE; more = Process32NextW(snapshot, &entry)) {
            const bool isOther = entry.th32ProcessID != GetCurrentProcessId();
            result += isOther && std::wstring_view(entry.szExeFile) == program ? 1 : 0;
        }
        CloseHandle(snapshot);
        return result;
    }

    tFolder folder_{"run life"};
};

}  // namespace support
