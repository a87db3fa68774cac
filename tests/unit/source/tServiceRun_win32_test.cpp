// The run with scripted system calls: the clock, a loader that refuses to unload, the writes of the status file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/callingPlugin.h"
#include "tests/support/imports_win32.h"
#include "tests/support/plugins.h"
#include "tests/support/serviceWorld.h"
#include "time/clock.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class tServiceRunCalls : public testing::Test {
protected:
    support::tServiceWorld world;
};

/// A clock that the test advances, with ticks of one millisecond.
class tHandWoundClock {
public:
    tHandWoundClock() {
        imports::GetSystemTimeAdjustment.replace([](DWORD* adjustment, DWORD* increment, BOOL* disabled) {
            *adjustment = *increment = 10'000;
            *disabled = FALSE;
            return TRUE;
        });
        imports::GetTickCount64.replace([this] { return nowMs; });
        nTime::gClockSettings.initialised = false;
    }
    ~tHandWoundClock() { nTime::gClockSettings.initialised = false; }
    tHandWoundClock(const tHandWoundClock&) = delete;
    tHandWoundClock& operator=(const tHandWoundClock&) = delete;

    ULONGLONG nowMs = 1'000'000;
};

TEST_F(tServiceRunCalls, TheInitTimeCoversListingAndQueryButNoPlugin) {
    startService();
    tHandWoundClock clock;
    imports::RegOpenKeyExW.replace([&clock](HKEY, LPCWSTR, DWORD, REGSAM, HKEY* key) {
        clock.nowMs += 3;
        *key = HKEY_CURRENT_USER;
        return LSTATUS{ERROR_SUCCESS};
    });
    imports::RegQueryValueExW.replace([this](HKEY, LPCWSTR, DWORD*, DWORD*, BYTE* data, DWORD* size) {
        const std::wstring text(world.places.sharedDirectory->begin(), world.places.sharedDirectory->end());
        *size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        std::copy(text.begin(), text.end(), reinterpret_cast<wchar_t*>(data));
        return LSTATUS{ERROR_SUCCESS};
    });
    world.deployment.onPause = [&clock] { clock.nowMs += 100; };
    const support::tCallingPlugin plugin([&clock](const std::string&) { clock.nowMs += 10'000; });
    world.describe("a.ini", world.calling("A"));
    signalServiceStop();
    runService();
    EXPECT_EQ(gService->initTimeMs, 703U);
    EXPECT_EQ(gService->pluginManager.entries().at(0).initTimeMs, 10'000U);
}

TEST_F(tServiceRunCalls, APluginThatCannotBeUnloadedEndsTheRunAtOnce) {
    startService();
    std::vector<std::string> entries;
    const support::tCallingPlugin plugin([&entries](const std::string& entry) { entries.push_back(entry); });
    world.describe("a.ini", world.calling("A"));
    world.describe("b.ini",
                   "[Service]\nName=B\nPath=" + support::pluginPath("behaviours") + "\nInitialize=InitFails7\n");
    world.describe("c.ini", world.calling("C"));
    HMODULE kept = nullptr;
    imports::FreeLibrary.replace([&kept](HMODULE library) {
        kept = library;
        return FALSE;
    });
    runService();  // no stop is requested: it would wait forever
    EXPECT_THAT(entries, ElementsAre("Begin"));
    EXPECT_EQ(gService->pluginManager.entries().size(), 1U);
    EXPECT_EQ(world.status().find("A (depends on"), std::string::npos) << "the run wrote the status again";
    stopService();
    EXPECT_THAT(world.status(), HasSubstr("A (depends on"));
    imports::FreeLibrary.real(kept);  // other tests must be able to load it anew
}

TEST_F(tServiceRunCalls, TheStatusFileIsWrittenFiveTimesFromStartToStop) {
    std::vector<std::string> moments;
    imports::_wrename.replace([&moments](const wchar_t* from, const wchar_t* to) {
        moments.emplace_back("write");
        return imports::_wrename.real(from, to);
    });
    imports::WaitForSingleObject.replace([&moments](HANDLE event, DWORD timeOut) {
        moments.emplace_back("wait");
        return imports::WaitForSingleObject.real(event, timeOut);
    });
    const support::tCallingPlugin plugin([&moments](const std::string& entry) { moments.push_back(entry); });
    world.describe("a.ini", world.calling("A"));
    startService();
    signalServiceStop();
    runService();
    stopService();
    imports::ImportBase::restoreAll();
    EXPECT_THAT(moments, ElementsAre("write", "write", "Begin", "write", "wait", "Halt", "End", "write", "write"));
}

TEST_F(tServiceRunCalls, WritesNoStatusFileIfTheSharedDirectoryIsUnknown) {
    startService();
    world.places.sharedDirectory.reset();
    int writes = 0;
    imports::_wrename.replace([&writes](auto...) {
        ++writes;
        return 0;
    });
    runService();
    EXPECT_EQ(writes, 0);
}

}  // namespace
