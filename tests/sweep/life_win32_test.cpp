// The sweep's own eyes: a fault that is planted into a life must show in its outcome.
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

constexpr sweep::tScenario scenario{"service, 3 plug-ins", true, 3, false, sweep::tDeployment::allowed};

class tLives : public testing::Test {
protected:
    tLives() {
        lives_.live();  // for what is set up only once
    }

    /// Plants a fault around a call and around every stand-in that already replaces it.
    template <class Import, class Around>
    void plant(Import& door, Around around) {
        door.replace([around, inner = door.current()](auto... arguments) { return around(inner, arguments...); });
    }

    sweep::tLives lives_{scenario};
};

TEST_F(tLives, InWhichNothingFailsLeavesNothing) {
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_THAT(outcome.leaks, IsEmpty());
    EXPECT_EQ(outcome.wrongClosings, 0);
    EXPECT_TRUE(outcome.startedService && outcome.statusWhole && outcome.statusPresent && outcome.statusCurrent);
    EXPECT_EQ(outcome.plugins.size(), 3U);
}

TEST_F(tLives, ShowsAHandleThatIsNotClosed) {
    HANDLE lost = nullptr;
    plant(imports::CloseHandle, [&lost](const auto& inner, HANDLE handle) {
        if (lost != nullptr) return inner(handle);
        lost = handle;
        return TRUE;
    });
    EXPECT_THAT(lives_.live().leaks, Contains("handle"));
    imports::CloseHandle.real(lost);
}

TEST_F(tLives, ShowsALibraryThatIsNotUnloaded) {
    plant(imports::FreeLibrary, [](const auto& /*inner*/, HMODULE) { return TRUE; });
    EXPECT_THAT(lives_.live().leaks, Contains("module"));
}

TEST_F(tLives, ShowsAFileThatIsNotClosed) {
    plant(imports::fclose, [](const auto& /*inner*/, FILE* file) { return std::fflush(file); });
    EXPECT_THAT(lives_.live().leaks, Contains("file"));
}

TEST_F(tLives, ShowsAKeyThatIsNotClosed) {
    plant(imports::RegCloseKey, [](const auto& /*inner*/, HKEY) { return ERROR_SUCCESS; });
    EXPECT_THAT(lives_.live().leaks, Contains("registry key"));
}

TEST_F(tLives, ShowsSystemMemoryThatIsNotFreed) {
    plant(imports::LocalFree, [](const auto& /*inner*/, HLOCAL) -> HLOCAL { return nullptr; });
    EXPECT_THAT(lives_.live().leaks, Contains("local memory"));
}

TEST_F(tLives, ShowsAKeyThatIsClosedTwice) {
    plant(imports::RegCloseKey, [](const auto& inner, HKEY key) {
        inner(key);
        return inner(key);
    });
    EXPECT_GT(lives_.live().wrongClosings, 0);
}

TEST_F(tLives, ShowsAStatusFileThatIsTorn) {
    plant(imports::_wrename, [](const auto& inner, const wchar_t* from, const wchar_t* to) {
        const int result = inner(from, to);
        std::ofstream(std::filesystem::path(to), std::ios::binary) << "ZU-Ziptra Remote Conf";
        return result;
    });
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_FALSE(outcome.statusWhole);
    EXPECT_FALSE(outcome.statusCurrent);
}

TEST_F(tLives, ShowsAStatusFileThatIsGone) {
    plant(imports::_wrename,
          [](const auto& /*inner*/, const wchar_t* from, const wchar_t*) { return imports::_wremove.real(from); });
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_TRUE(outcome.statusWhole);
    EXPECT_FALSE(outcome.statusPresent);
    EXPECT_FALSE(outcome.temporaryWhole);
}

TEST_F(tLives, ForgivesALibraryThatTheSystemRefusesToUnload) {
    const auto& calls = lives_.faults().calls();
    const auto call = std::ranges::find(calls, "FreeLibrary", &sweep::tCall::name);
    ASSERT_NE(call, calls.end());
    const sweep::tOutcome outcome = lives_.live(static_cast<std::size_t>(call - calls.begin()), 1, true);
    EXPECT_GE(outcome.injected, 1);
    EXPECT_THAT(outcome.leaks, IsEmpty());
    EXPECT_EQ(outcome.wrongClosings, 0);
}

TEST_F(tLives, ShowsMemoryThatIsNotFreed) {
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

/// With a locked description: the product searches only for a file that it cannot open.
constexpr sweep::tScenario badFiles{"service, 1 plug-in and bad files", true, 1, true, sweep::tDeployment::allowed};

TEST(tLivesWithBadFiles, ShowASearchThatIsNotClosed) {
    sweep::tLives lives(badFiles);
    imports::FindClose.replace([](HANDLE) { return TRUE; });
    EXPECT_THAT(lives.live().leaks, Contains("search"));
}

}  // namespace
