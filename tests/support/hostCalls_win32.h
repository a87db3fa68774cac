#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "source/serviceControl.h"
#include "source/tService.h"
#include "tests/support/imports_win32.h"

namespace support {

/// Runs the host's control code on a real service object, but without a shared directory, so that a run ends once it
/// has tried to list the plug-ins, and without a status file. Records these system calls in the order in which they are
/// made:
///
/// create-event, set-event, close-event the stop event: a start, a stop request, a stop
/// list the first step of a run
/// add-early, add-run, remove-early, remove-run console handlers
class tHostCalls : public testing::Test {
protected:
    void SetUp() override {
        watchStopEvent();
        imports::RegOpenKeyExW.replace([this](auto...) {
            calls.emplace_back("list");
            return LSTATUS{ERROR_FILE_NOT_FOUND};
        });
        imports::SHGetFolderPathW.replace([](auto...) { return E_FAIL; });
        imports::OpenProcess.replace([](auto...) -> HANDLE { return nullptr; });
        imports::SetEntriesInAclA.replace([](auto...) { return DWORD{ERROR_NOT_ENOUGH_MEMORY}; });
        imports::SetConsoleCtrlHandler.replace([this](PHANDLER_ROUTINE handler, BOOL add) {
            calls.emplace_back(std::string(add == TRUE ? "add-" : "remove-") + nameOf(handler));
            return TRUE;
        });
    }

    void TearDown() override {
        imports::ImportBase::restoreAll();
        stopService();
        gStatusHandle = nullptr;
        gStatusLock = 0;
        gConsoleInterrupted = 0;
    }

    static const char* nameOf(PHANDLER_ROUTINE handler) {
        return handler == earlyConsoleHandler ? "early" : handler == runConsoleHandler ? "run" : "other";
    }

    void refuseEvents() {
        imports::CreateEventA.replace([this](auto...) -> HANDLE {
            calls.emplace_back("create-event");
            return nullptr;
        });
    }

    /// Makes a call throw for the service's event. The runtime libraries use the same functions for events of their
    /// own, at any time, and no exception may leave them.
    template <typename Import, typename Throw>
    void throwFrom(Import& call, Throw raise) {
        call.replace([&call, event = stopEvent_, raise](HANDLE object, auto... more) {
            if (object == event) raise();
            return call.real(object, more...);
        });
    }

    std::vector<std::string> calls;

private:
    void watchStopEvent() {
        imports::CreateEventA.replace([this](auto... arguments) {
            calls.emplace_back("create-event");
            return stopEvent_ = imports::CreateEventA.real(arguments...);
        });
        imports::SetEvent.replace([this](HANDLE event) {
            calls.emplace_back(event == stopEvent_ ? "set-event" : "set-another-event");
            return imports::SetEvent.real(event);
        });
        imports::CloseHandle.replace([this](HANDLE handle) {
            if (handle == stopEvent_) calls.emplace_back("close-event");
            return imports::CloseHandle.real(handle);
        });
    }

    HANDLE stopEvent_ = nullptr;
};

}  // namespace support
