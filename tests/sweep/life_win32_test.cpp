// The sweep must notice faults: each one that is planted into a life must show in its outcome.
#include "tests/sweep/life_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "tests/support/imports_win32.h"

namespace {

using testing::Contains;
using testing::IsEmpty;

/// Plants a fault around a call and around everything that already stands in for it.
template <class Import, class Around>
void plant(Import& door, Around around) {
    door.replace([around, inner = door.current()](auto... arguments) mutable { return around(inner, arguments...); });
}

/// Each row prevents the closing of one kind of resource.
struct tLeak {
    const char* name;  ///< of the test
    const char* kind;
    void (*plant)();
};

constexpr tLeak leaks[] = {
    {"AHandleThatIsNotClosed", "handle",
     [] {
         plant(imports::CloseHandle, [lost = HANDLE{}](const auto& inner, HANDLE handle) mutable {
             if (lost != nullptr) return inner(handle);
             lost = handle;
             return TRUE;
         });
     }},
    {"ALibraryThatIsNotUnloaded", "module",
     [] { plant(imports::FreeLibrary, [](const auto& /*inner*/, HMODULE) { return TRUE; }); }},
    {"AFileThatIsNotClosed", "file",
     [] { plant(imports::fclose, [](const auto& /*inner*/, FILE* file) { return std::fflush(file); }); }},
    {"AKeyThatIsNotClosed", "registry key",
     [] { plant(imports::RegCloseKey, [](const auto& /*inner*/, HKEY) { return ERROR_SUCCESS; }); }},
    {"SystemMemoryThatIsNotFreed", "local memory",
     [] { plant(imports::LocalFree, [](const auto& /*inner*/, HLOCAL) -> HLOCAL { return nullptr; }); }},
    {"ASearchThatIsNotClosed", "search",
     [] { plant(imports::FindClose, [](const auto& /*inner*/, HANDLE) { return TRUE; }); }},
};

class tLeakingLives : public testing::TestWithParam<tLeak> {};

TEST_P(tLeakingLives, Show) {
    // With a locked description: the product searches only for a file that it cannot open.
    sweep::tLives lives({"service, 1 plug-in and bad files", true, 1, true, sweep::tDeployment::allowed});
    GetParam().plant();
    EXPECT_THAT(lives.live().leaks, Contains(GetParam().kind));
}

INSTANTIATE_TEST_SUITE_P(Sweep, tLeakingLives, testing::ValuesIn(leaks),
                         [](const auto& test) { return std::string(test.param.name); });

class tFaultyLives : public testing::Test {
protected:
    tFaultyLives() {
        lives_.live();  // for what is set up only once
    }

    sweep::tLives lives_{{"service, 3 plug-ins", true, 3, false, sweep::tDeployment::allowed}};
};

TEST_F(tFaultyLives, ShowsAKeyThatIsClosedTwice) {
    plant(imports::RegCloseKey, [](const auto& inner, HKEY key) {
        inner(key);
        return inner(key);
    });
    EXPECT_GT(lives_.live().wrongClosings, 0);
}

TEST_F(tFaultyLives, ShowsAStatusFileThatIsTorn) {
    plant(imports::_wrename, [](const auto& inner, const wchar_t* from, const wchar_t* to) {
        const int result = inner(from, to);
        std::ofstream(std::filesystem::path(to), std::ios::binary) << "ZU-Ziptra Remote Conf";
        return result;
    });
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_FALSE(outcome.statusWhole);
    EXPECT_FALSE(outcome.statusCurrent);
}

TEST_F(tFaultyLives, ShowsAStatusFileThatIsGone) {
    plant(imports::_wrename,
          [](const auto& /*inner*/, const wchar_t* from, const wchar_t*) { return imports::_wremove.real(from); });
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_TRUE(outcome.statusWhole);
    EXPECT_FALSE(outcome.statusPresent);
    EXPECT_FALSE(outcome.temporaryWhole);
}

TEST_F(tFaultyLives, ForgivesALibraryThatTheSystemRefusesToUnload) {
    const auto& calls = lives_.faults().calls();
    const auto call = std::ranges::find(calls, "FreeLibrary", &sweep::tCall::name);
    ASSERT_NE(call, calls.end());
    const sweep::tOutcome outcome = lives_.live(static_cast<std::size_t>(call - calls.begin()), 1, true);
    EXPECT_GE(outcome.injected, 1);
    EXPECT_THAT(outcome.leaks, IsEmpty());
    EXPECT_EQ(outcome.wrongClosings, 0);
}

TEST_F(tFaultyLives, ShowsMemoryThatIsNotFreed) {
    void* lost = nullptr;
    plant(imports::_time64, [&lost](const auto& inner, __time64_t* time) {
        const allocations::tProductCall call;
        if (lost == nullptr) lost = std::malloc(7);
        return inner(time);
    });
    const sweep::tOutcome outcome = lives_.liveWithoutMemory(0, allocations::tHowLong::once);
    EXPECT_THAT(outcome.leaks, testing::ElementsAre("memory"));
    EXPECT_GT(outcome.requests, 100);
    std::free(lost);
}

}  // namespace
