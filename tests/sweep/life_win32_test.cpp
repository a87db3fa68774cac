// What is planted into a life must show in its outcome.
#include "tests/sweep/life_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/imports_win32.h"

namespace {

using testing::Contains;
using testing::IsEmpty;

constexpr sweep::tScenario scenario{"service, 3 plug-ins", true, 3, false, sweep::tDeployment::allowed};

class Life : public testing::Test {
protected:
    Life() {
        lives_.live();  // what is set up once is set up now
    }

    /// Around everything that stands in the way of the call.
    template <class Import, class Around>
    void plant(Import& door, Around around) {
        door.replace([around, inner = door.current()](auto... arguments) { return around(inner, arguments...); });
    }

    sweep::tLives lives_{scenario};
};

TEST_F(Life, InWhichNothingFailsLeavesNothing) {
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_THAT(outcome.leaks, IsEmpty());
    EXPECT_EQ(outcome.wrongClosings, 0);
    EXPECT_TRUE(outcome.startedService && outcome.statusWhole && outcome.statusPresent && outcome.statusCurrent);
    EXPECT_EQ(outcome.plugins.size(), 3U);
}

TEST_F(Life, ShowsAHandleThatIsNotClosed) {
    HANDLE lost = nullptr;
    plant(imports::CloseHandle, [&lost](const auto& inner, HANDLE handle) {
        if (lost != nullptr) return inner(handle);
        lost = handle;
        return TRUE;
    });
    EXPECT_THAT(lives_.live().leaks, Contains("handle"));
    imports::CloseHandle.real(lost);
}

TEST_F(Life, ShowsALibraryThatIsNotUnloaded) {
    plant(imports::FreeLibrary, [](const auto& /*inner*/, HMODULE) { return TRUE; });
    EXPECT_THAT(lives_.live().leaks, Contains("module"));
}

TEST_F(Life, ShowsAKeyThatIsClosedTwice) {
    plant(imports::RegCloseKey, [](const auto& inner, HKEY key) {
        inner(key);
        return inner(key);
    });
    EXPECT_GT(lives_.live().wrongClosings, 0);
}

TEST_F(Life, ShowsAStatusFileThatIsTorn) {
    plant(imports::_wrename, [](const auto& inner, const wchar_t* from, const wchar_t* to) {
        const int result = inner(from, to);
        std::ofstream(std::filesystem::path(to), std::ios::binary) << "ZU-Ziptra Remote Conf";
        return result;
    });
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_FALSE(outcome.statusWhole);
    EXPECT_FALSE(outcome.statusCurrent);
}

TEST_F(Life, ShowsAStatusFileThatIsGone) {
    plant(imports::_wrename,
          [](const auto& /*inner*/, const wchar_t* from, const wchar_t*) { return imports::_wremove.real(from); });
    const sweep::tOutcome outcome = lives_.live();
    EXPECT_TRUE(outcome.statusWhole);
    EXPECT_FALSE(outcome.statusPresent);
    EXPECT_FALSE(outcome.temporaryWhole);
}

TEST_F(Life, ShowsMemoryThatIsNotGivenBack) {
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
