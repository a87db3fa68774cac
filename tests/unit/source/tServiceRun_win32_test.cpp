// The run with scripted system calls: the clock, a loader that refuses to unload, the writes of the status file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/callingPlugin.h"
#include "tests/support/fakeClock.h"
#include "tests/support/imports_win32.h"
#include "tests/support/plugins.h"
#include "tests/support/serviceWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class tServiceRunCalls : public testing::Test {
protected:
    support::tServiceWorld world;
};

TEST_F(tServiceRunCalls, TheInitTimeCoversListingAndQueryButNoPlugin) {
    startService();
    support::tFakeClock clock;
    imports::RegOpenKeyExW.replace([&clock, inner = imports::RegOpenKeyExW.current()](auto... arguments) {
        clock.advance(3);
        return inner(arguments...);
    });
    world.deployment.onPause = [&clock] { clock.advance(100); };
    const support::tCallingPlugin plugin([&clock](const std::string&) { clock.advance(10'000); });
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

}  // namespace
