// Every system call of the commands fails in turn.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "tests/support/text.h"
#include "tests/unit/tool/scriptedMachine_win32.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/install/system.h"

namespace {

using support::tScriptedMachine;
using support::tToolRun;

/// Counts the calls, and makes one of them fail.
class tFaults {
public:
    /// Wraps the replacements of all functions.
    void inject() { addAll(); }

    /// Resets the count; the call of this number fails, counted from 1 over all functions, or none.
    void arm(int nth) {
        count_ = 0;
        nth_ = nth;
    }
    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] const std::string& failed() const { return failed_; }

private:
    static constexpr DWORD error = ERROR_NO_SYSTEM_RESOURCES;

    template <class Result, class... Arguments, class Failure>
    void add(imports::Import<Result(Arguments...)>& door, const char* name, Failure failure) {
        door.replace([this, name, failure, inner = door.current()](Arguments... arguments) -> Result {
            if (++count_ != nth_) return inner(arguments...);
            failed_ = name;
            imports::SetLastError.real(error);
            return static_cast<Result>(failure);
        });
    }

#define FAULT(name, result) add(imports::name, #name, result)
    void addAll() {
        FAULT(OpenSCManagerW, nullptr);
        FAULT(OpenServiceW, nullptr);
        FAULT(CreateServiceW, nullptr);
        FAULT(ChangeServiceConfigW, FALSE);
        FAULT(ChangeServiceConfig2W, FALSE);
        FAULT(QueryServiceConfigW, FALSE);
        FAULT(QueryServiceConfig2W, FALSE);
        FAULT(QueryServiceStatus, FALSE);
        FAULT(StartServiceW, FALSE);
        FAULT(ControlService, FALSE);
        FAULT(DeleteService, FALSE);
        FAULT(RegOpenKeyExW, error);
        FAULT(RegCreateKeyExW, error);
        FAULT(RegQueryValueExW, error);
        FAULT(RegSetValueExW, error);
        FAULT(RegDeleteValueW, error);
        FAULT(RegDeleteTreeW, error);
        FAULT(GetNamedSecurityInfoW, error);
        FAULT(SetSecurityInfo, error);
        FAULT(ConvertSidToStringSidW, FALSE);
        FAULT(ConvertStringSecurityDescriptorToSecurityDescriptorW, FALSE);
        FAULT(LookupAccountSidW, FALSE);
        FAULT(GetSecurityDescriptorOwner, FALSE);
        FAULT(GetSecurityDescriptorDacl, FALSE);
        FAULT(CreateWellKnownSid, FALSE);
        FAULT(CheckTokenMembership, FALSE);
        FAULT(OpenProcessToken, FALSE);
        FAULT(GetTokenInformation, FALSE);
        FAULT(CreateDirectoryW, FALSE);
        FAULT(RemoveDirectoryW, FALSE);
        FAULT(SetFileAttributesW, FALSE);
        FAULT(DeleteFileW, FALSE);
        FAULT(GetFileAttributesW, INVALID_FILE_ATTRIBUTES);
        FAULT(GetFileInformationByHandleEx, FALSE);
        FAULT(GetDriveTypeW, DRIVE_UNKNOWN);
        FAULT(ExpandEnvironmentStringsW, 0);
        FAULT(SHGetFolderPathW, E_FAIL);
        FAULT(GetModuleFileNameW, 0);
    }
#undef FAULT

    int count_ = 0;
    int nth_ = 0;
    std::string failed_;
};

/// One command on a machine that is prepared for it.
struct tSweep {
    const char* name;
    std::vector<std::string> arguments;
    std::function<void(tScriptedMachine&)> prepare;
};

std::ostream& operator<<(std::ostream& stream, const tSweep& sweep) { return stream << sweep.name; }

const std::vector<tSweep>& sweeps() {
    static const auto installed = [](tScriptedMachine&) {
        EXPECT_EQ(tToolRun({"install", "--crash-dumps", "F:\\d"}).exitCode, 0);
    };
    static const auto broken = [](tScriptedMachine& machine) {
        installed(machine);
        machine.service() = {L"C:\\gone\\x.exe", SERVICE_DISABLED};
        machine.state.folders[L"F:\\Data\\Corvell"] = L"O:BUD:(A;;FA;;;WD)";
        const wchar_t* const status = L"F:\\Data\\Corvell\\zuZiptraRemoteService.status";
        machine.state.folders[status] = L"O:BUD:(A;;FA;;;SY)";
        machine.state.files = {{status, FILE_ATTRIBUTE_READONLY},
                               {L"F:\\Data\\Corvell\\.zuZiptraRemoteService.status.tmp", FILE_ATTRIBUTE_NORMAL}};
    };
    static const std::vector<tSweep> all = {
        {"install", {"install", "--crash-dumps", "F:\\d"}, [](tScriptedMachine&) {}},
        {"repair", {"repair"}, broken},
        {"uninstall", {"uninstall"}, installed},
        {"audit", {"audit"}, broken},
        {"auditAndFix", {"audit", "--fix"}, broken},
    };
    return all;
}

class systemCallsOfInstall : public testing::TestWithParam<tSweep> {};

/// A run of a command, and what the machine is like afterwards.
struct tOutcome {
    tToolRun run;
    tScriptedMachine::tState state;
    std::vector<std::string> log;
    int openHandles;
};

tOutcome runOn(const tScriptedMachine::tState& state, const std::vector<std::string>& arguments, tFaults* faults) {
    tScriptedMachine machine;
    machine.state = state;
    if (faults != nullptr) faults->inject();
    tToolRun run(arguments);
    return {std::move(run), machine.state, machine.log, machine.openHandles};
}

tScriptedMachine::tState prepared(const tSweep& sweep) {
    tScriptedMachine machine;
    sweep.prepare(machine);
    return machine.state;
}

/// An audit that cannot read a list says so in place of what it would have found there.
void expectNothingHidden(const std::string& seen, const std::string& usual) {
    const int unreadable = support::occurrences(seen, " [unreadable-access]");
    const int hidden = support::occurrences(usual, " [exposed-") - support::occurrences(seen, " [exposed-");
    EXPECT_TRUE(hidden <= 0 || unreadable == 1) << seen;
}

TEST_P(systemCallsOfInstall, EachMayFailAndLeavesTheMachineAsBeforeOrAsRequestedSoFar) {
    const std::vector<std::string>& arguments = GetParam().arguments;
    const tScriptedMachine::tState before = prepared(GetParam());
    tFaults faults;
    const tOutcome usual = runOn(before, arguments, &faults);
    const int count = faults.count();
    std::set<std::string> called;
    for (int nth = 1; nth <= count; ++nth) {
        faults.arm(nth);
        const tOutcome seen = runOn(before, arguments, &faults);
        SCOPED_TRACE(faults.failed() + " fails, call " + std::to_string(nth));
        called.insert(faults.failed());
        EXPECT_EQ(seen.openHandles, 0);
        if (seen.run.exitCode != 2) {
            EXPECT_EQ(seen.run.error, "");
            tScriptedMachine::tState state = seen.state;
            // A folder may stay, and the command says so.
            if (seen.run.out.find(" and stays: ") != std::string::npos) state.folders.erase(L"F:\\Data\\Corvell");
            EXPECT_EQ(state, usual.state);
            expectNothingHidden(seen.run.out, usual.run.out);
            continue;
        }
        EXPECT_THAT(seen.run.error,
                    testing::AnyOf(testing::MatchesRegex("ziptra: .+ could not be .+\\(1450\\).*\n"),
                                   testing::MatchesRegex("ziptra: This system has no folder for .+\n")));
        // It ended in the middle of the usual calls, and going on leads to the same end.
        ASSERT_LE(seen.log.size(), usual.log.size());
        EXPECT_TRUE(std::equal(seen.log.begin(), seen.log.end(), usual.log.begin()));
        const tOutcome rest = runOn(seen.state, arguments, nullptr);
        EXPECT_EQ(rest.run.exitCode, usual.run.exitCode) << rest.run.error;
        EXPECT_EQ(rest.state, usual.state);
    }
    std::printf("%s: %d calls of %zu functions failed in turn\n", GetParam().name, count, called.size());
    EXPECT_GT(count, 40);
}

INSTANTIATE_TEST_SUITE_P(Commands, systemCallsOfInstall, testing::ValuesIn(sweeps()),
                         [](const auto& sweep) { return std::string(sweep.param.name); });

}  // namespace
