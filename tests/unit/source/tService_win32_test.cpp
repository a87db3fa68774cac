// The order of birth and death, and what may and may not leave the entry points.

#include <stdexcept>

#include "tests/support/hostCalls_win32.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ServiceLife : public support::HostCalls {
protected:
    void SetUp() override {
        HostCalls::SetUp();
        imports::OpenProcess.replace([this](auto...) -> HANDLE {
            calls.emplace_back("grant");
            return nullptr;
        });
        imports::SHGetFolderPathW.replace([this](auto...) {
            calls.emplace_back("write-status");
            return E_FAIL;
        });
    }
};

TEST_F(ServiceLife, BeginsWithTheEventThenTheAccessListThenTheStatusFile) {
    EXPECT_EQ(startService(), 0);
    EXPECT_THAT(calls, ElementsAre("create-event", "grant", "write-status"));
}

TEST_F(ServiceLife, EndsWithTheStatusFileThenTheEvent) {
    startService();
    calls.clear();
    stopService();
    EXPECT_THAT(calls, ElementsAre("write-status", "close-event"));
}

TEST_F(ServiceLife, SurvivesItsAccessListBeingRefused) {
    imports::SetEntriesInAclA.replace([this](auto...) {
        calls.emplace_back("refuse");
        return DWORD{ERROR_ACCESS_DENIED};
    });
    EXPECT_EQ(startService(), 0);
    EXPECT_THAT(calls, ElementsAre("create-event", "grant", "refuse", "write-status"));
}

TEST_F(ServiceLife, DoesNotBeginWithoutAnEvent) {
    refuseEvents();
    EXPECT_EQ(startService(), -1);
    EXPECT_THAT(calls, ElementsAre("create-event"));
    EXPECT_EQ(gService, nullptr);
}

TEST_F(ServiceLife, AFailedStartLeavesAnEarlierServiceUntouched) {
    startService();
    tService* const earlier = gService;
    refuseEvents();
    calls.clear();
    EXPECT_EQ(startService(), -1);
    EXPECT_EQ(gService, earlier);
    EXPECT_THAT(calls, ElementsAre("create-event"));
}

TEST_F(ServiceLife, BuildsTheNewServiceBeforeItDestroysTheOldOne) {
    startService();
    calls.clear();
    startService();
    EXPECT_THAT(calls, ElementsAre("create-event", "grant", "write-status", "write-status"))
        << "the last by the old one, whose event is not the one that is watched";
}

TEST_F(ServiceLife, SignalsTheEventOfItsOwnAndNothingElse) {
    startService();
    calls.clear();
    signalServiceStop();
    EXPECT_THAT(calls, ElementsAre("set-event"));
}

// Exceptions, thrown by the system's stand-ins.

TEST_F(ServiceLife, AStandardExceptionDuringTheStartMeansMinusOne) {
    imports::CreateEventA.replace([](auto...) -> HANDLE { throw std::bad_alloc(); });
    EXPECT_EQ(startService(), -1);
    imports::CreateEventA.replace([](auto...) -> HANDLE { throw std::runtime_error("no event today"); });
    EXPECT_EQ(startService(), -1);
    EXPECT_EQ(gService, nullptr);
}

TEST_F(ServiceLife, AStandardExceptionDuringTheRunEndsTheRunAndNothingElse) {
    startService();
    imports::RegOpenKeyExW.replace([](auto...) -> LSTATUS { throw std::runtime_error("no registry today"); });
    calls.clear();
    runService();
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_NE(gService, nullptr);
    EXPECT_EQ(gService->messages, "") << "not a directory that cannot be read, but a failure of another kind";
}

TEST_F(ServiceLife, AStandardExceptionFromTheLastStatusFileDoesNotKeepTheServiceFromGoing) {
    startService();
    imports::SHGetFolderPathW.replace([](auto...) -> HRESULT { throw std::runtime_error("no folders today"); });
    stopService();
    EXPECT_EQ(gService, nullptr);
}

TEST_F(ServiceLife, ExceptionsOfOtherKindsAreNotCaught) {
    imports::CreateEventA.replace([](auto...) -> HANDLE { throw 7; });
    EXPECT_THROW(startService(), int);
    EXPECT_EQ(gService, nullptr);

    imports::CreateEventA.replace([](auto... arguments) { return imports::CreateEventA.real(arguments...); });
    startService();
    imports::RegOpenKeyExW.replace([](auto...) -> LSTATUS { throw 7; });
    EXPECT_THROW(runService(), int);
}

}  // namespace
