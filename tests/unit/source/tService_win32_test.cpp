// The order of construction and destruction, and which exceptions leave the entry points.

#include <stdexcept>

#include "err/Exception.h"
#include "tests/support/caughtReports.h"
#include "tests/support/hostCalls_win32.h"
#include "tests/support/serviceWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class tServiceLife : public support::tHostCalls {
protected:
    void SetUp() override {
        tHostCalls::SetUp();
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

TEST_F(tServiceLife, BeginsWithTheEventThenTheAccessListThenTheStatusFile) {
    EXPECT_EQ(startService(), 0);
    EXPECT_THAT(calls, ElementsAre("create-event", "grant", "write-status"));
}

TEST_F(tServiceLife, EndsWithTheStatusFileThenTheEvent) {
    startService();
    calls.clear();
    stopService();
    EXPECT_THAT(calls, ElementsAre("write-status", "close-event"));
}

TEST_F(tServiceLife, SurvivesItsAccessListBeingRefused) {
    imports::SetEntriesInAclA.replace([this](auto...) {
        calls.emplace_back("refuse");
        return DWORD{ERROR_ACCESS_DENIED};
    });
    EXPECT_EQ(startService(), 0);
    EXPECT_THAT(calls, ElementsAre("create-event", "grant", "refuse", "write-status"));
}

TEST_F(tServiceLife, DoesNotBeginWithoutAnEvent) {
    refuseEvents();
    EXPECT_EQ(startService(), -1);
    EXPECT_THAT(calls, ElementsAre("create-event"));
    EXPECT_EQ(gService, nullptr);
}

TEST_F(tServiceLife, AFailedStartLeavesAnEarlierServiceUntouched) {
    startService();
    tService* const earlier = gService;
    refuseEvents();
    calls.clear();
    EXPECT_EQ(startService(), -1);
    EXPECT_EQ(gService, earlier);
    EXPECT_THAT(calls, ElementsAre("create-event"));
}

TEST_F(tServiceLife, SignalsTheEventOfItsOwnAndNothingElse) {
    startService();
    calls.clear();
    signalServiceStop();
    EXPECT_THAT(calls, ElementsAre("set-event"));
}

// Exceptions, thrown by the stand-ins for system calls.

TEST_F(tServiceLife, AStandardExceptionDuringTheStartMeansMinusOne) {
    imports::CreateEventA.replace([](auto...) -> HANDLE { throw std::bad_alloc(); });
    EXPECT_EQ(startService(), -1);
    imports::CreateEventA.replace([](auto...) -> HANDLE { throw std::runtime_error("no event today"); });
    EXPECT_EQ(startService(), -1);
    EXPECT_EQ(gService, nullptr);
}

TEST_F(tServiceLife, AStandardExceptionDuringTheRunEndsTheRunAndNothingElse) {
    startService();
    imports::RegOpenKeyExW.replace([](auto...) -> LSTATUS { throw std::runtime_error("no registry today"); });
    calls.clear();
    runService();
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_NE(gService, nullptr);
    EXPECT_EQ(gService->messages, "") << "not a directory that cannot be read, but a failure of another kind";
}

TEST_F(tServiceLife, AStandardExceptionFromTheLastStatusFileDoesNotPreventDestruction) {
    startService();
    imports::SHGetFolderPathW.replace([](auto...) -> HRESULT { throw std::runtime_error("no folders today"); });
    stopService();
    EXPECT_EQ(gService, nullptr);
}

TEST_F(tServiceLife, AStandardExceptionFromTheAccessListMeansMinusOne) {
    imports::SetEntriesInAclA.replace([](auto...) -> DWORD { throw std::runtime_error("no list today"); });
    EXPECT_EQ(startService(), -1);
    EXPECT_EQ(gService, nullptr);
}

TEST_F(tServiceLife, AStandardExceptionFromTheWaitEndsTheRunAndNothingElse) {
    const support::tServiceWorld world;
    startService();
    throwFrom(imports::WaitForSingleObject, [] { throw std::runtime_error("no wait today"); });
    runService();
    EXPECT_NE(gService, nullptr);
}

TEST_F(tServiceLife, AStandardExceptionFromTheStopRequestIsNotPassedOn) {
    startService();
    throwFrom(imports::SetEvent, [] { throw std::runtime_error("no signal today"); });
    EXPECT_NO_THROW(signalServiceStop());
    EXPECT_NE(gService, nullptr);
}

TEST_F(tServiceLife, ADestructionThatThrowsLeavesThePointerUnchanged) {
    startService();
    const tService* const before = gService;
    throwFrom(imports::CloseHandle, [] { throw std::runtime_error("no close today"); });
    EXPECT_NO_THROW(stopService());
    EXPECT_EQ(gService, before);
    gService = nullptr;
}

TEST_F(tServiceLife, EachEntryPointPassesItsExceptionToTheConversion) {
    static constexpr zuerr::RaiseReport failure{zuerr::osFault, {"test", 1}};
    const support::tServiceWorld world;
    const support::tCaughtReports caught;
    const auto createEvent = imports::CreateEventA.current();

    imports::CreateEventA.replace([](auto...) -> HANDLE { zuerr::Raise(failure); });
    startService();
    EXPECT_EQ(caught.texts.size(), 1U);
    imports::CreateEventA.replace(createEvent);
    startService();
    throwFrom(imports::WaitForSingleObject, [] { zuerr::Raise(failure); });
    runService();
    EXPECT_EQ(caught.texts.size(), 2U);
    throwFrom(imports::SetEvent, [] { zuerr::Raise(failure); });
    signalServiceStop();
    EXPECT_EQ(caught.texts.size(), 3U);
    throwFrom(imports::CloseHandle, [] { zuerr::Raise(failure); });
    stopService();
    EXPECT_EQ(caught.texts.size(), 4U);
    imports::ImportBase::restoreAll();
    gService = nullptr;
}

TEST_F(tServiceLife, ExceptionsOfOtherKindsAreNotCaught) {
    const auto createEvent = imports::CreateEventA.current();
    imports::CreateEventA.replace([](auto...) -> HANDLE { throw 7; });
    EXPECT_THROW(startService(), int);
    EXPECT_EQ(gService, nullptr);

    imports::CreateEventA.replace(createEvent);
    startService();
    imports::RegOpenKeyExW.replace([](auto...) -> LSTATUS { throw 7; });
    EXPECT_THROW(runService(), int);

    throwFrom(imports::CloseHandle, [] { throw 7; });
    EXPECT_THROW(stopService(), int);
    imports::ImportBase::restoreAll();
    gService = nullptr;
}

}  // namespace
