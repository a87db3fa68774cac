#include <gtest/gtest.h>

#include <optional>

#include "quarks/synchronization.h"
#include "tests/support/exceptions.h"
#include "tests/support/imports_win32.h"

namespace {

void refuseEvents() {
    imports::CreateEventA.replace([](auto...) -> HANDLE {
        SetLastError(ERROR_NO_SYSTEM_RESOURCES);
        return nullptr;
    });
}

TEST(tEventCalls, CreateAManualResetUnnamedUnsignalledEventWithDefaultSecurity) {
    int calls = 0;
    imports::CreateEventA.replace([&](SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL signalled, LPCSTR name) {
        ++calls;
        EXPECT_EQ(security, nullptr);
        EXPECT_EQ(manualReset, TRUE);
        EXPECT_EQ(signalled, FALSE);
        EXPECT_EQ(name, nullptr);
        return imports::CreateEventA.real(security, manualReset, signalled, name);
    });
    const tEvent event;
    EXPECT_EQ(calls, 1);
}

TEST(tEventCalls, SetWaitWithoutATimeOutAndCloseOnceTheCreatedEvent) {
    HANDLE created = nullptr;
    std::string calls;
    imports::CreateEventA.replace([&](auto... arguments) {
        calls += "create ";
        return created = imports::CreateEventA.real(arguments...);
    });
    imports::SetEvent.replace([&](HANDLE event) {
        calls += event == created ? "set " : "set-other ";
        return imports::SetEvent.real(event);
    });
    imports::WaitForSingleObject.replace([&](HANDLE event, DWORD timeOut) {
        calls += event == created && timeOut == INFINITE ? "wait " : "wait-otherwise ";
        return imports::WaitForSingleObject.real(event, timeOut);
    });
    imports::CloseHandle.replace([&](HANDLE handle) {
        calls += handle == created ? "close " : "close-other ";
        return imports::CloseHandle.real(handle);
    });
    {
        tEvent event;
        event.set();
        event.wait();
    }
    imports::ImportBase::restoreAll();
    EXPECT_EQ(calls, "create set wait close ");
}

TEST(tEventCalls, ThrowAnOsFaultWithItsSiteIfTheEventCannotBeCreated) {
    refuseEvents();
    // The fixed-size record contains nine characters of the component, and no error constant.
    EXPECT_EQ(support::caughtReport([] { const tEvent event; }),
              R"(-52008 {"file":"zukest/quarks/synchronization","line":1598,"component":"zuZiptraR"})");
}

TEST(tEventCalls, CloseNothingIfTheEventCouldNotBeCreated) {
    refuseEvents();
    imports::CloseHandle.replace([](HANDLE handle) {
        ADD_FAILURE() << handle;
        return TRUE;
    });
    EXPECT_THROW(tEvent(), zuerr::Exception);
}

TEST(tEventCalls, ThrowNothingWhileAnExceptionIsPropagatingAndTheEventThenNeitherBlocksNorFails) {
    refuseEvents();
    std::optional<tEvent> event;
    support::whileUnwinding([&event] { event.emplace(); });
    ASSERT_TRUE(event);
    event->set();
    event->wait();
    imports::CloseHandle.replace([](HANDLE handle) {
        ADD_FAILURE() << handle;
        return TRUE;
    });
    event.reset();
}

}  // namespace
