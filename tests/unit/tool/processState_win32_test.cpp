#include <windows.h>

#include "tool/run/processState.h"
// windows.h first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/unit/tool/toolProcess_win32.h"

namespace {

using nRun::readProcessState;
using nRun::tProcessState;
using testing::ElementsAre;
using testing::IsEmpty;

/// Returns what people call the things that exist after the action, but not before it.
std::vector<std::string> newThings(const std::function<void()>& action) {
    const tProcessState before = readProcessState();
    action();
    std::vector<std::string> names;
    for (const auto& [id, name] : readProcessState().things) {
        if (!before.things.contains(id)) names.push_back(name);
    }
    return names;
}

TEST(nRunProcessState, CountsHandles) {
    const std::size_t before = readProcessState().handles;
    EXPECT_EQ(readProcessState().handles, before) << "reading it leaves none open";
    const HANDLE first = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE second = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    EXPECT_EQ(readProcessState().handles, before + 2);
    CloseHandle(first);
    CloseHandle(second);
    EXPECT_EQ(readProcessState().handles, before);
}

TEST(nRunProcessState, ListsThreads) {
    const HANDLE end = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const auto wait = [](void* event) -> DWORD { return WaitForSingleObject(event, INFINITE); };
    HANDLE thread = nullptr;
    EXPECT_THAT(newThings([&] { thread = CreateThread(nullptr, 0, wait, end, 0, nullptr); }), ElementsAre("thread"));
    SetEvent(end);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    CloseHandle(end);
}

TEST(nRunProcessState, ListsLibrariesExceptTheSystems) {
    const std::filesystem::path library = support::tToolProcess::ownFolder() / "test-plugins" / "neighbour.dll";
    HMODULE loaded = nullptr;
    EXPECT_THAT(newThings([&] { loaded = LoadLibraryW(library.c_str()); }),
                ElementsAre("the library " + library.string()));
    FreeLibrary(loaded);
    EXPECT_THAT(newThings([&] { loaded = LoadLibraryW(L"version.dll"); }), IsEmpty());
    FreeLibrary(loaded);
}

TEST(nRunProcessState, KnowsTheSettingsThatPlugInsShare) {
    wchar_t directory[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, directory);
    EXPECT_THAT(newThings([] { SetCurrentDirectoryW(L"C:\\"); }), ElementsAre("another current directory"));
    SetCurrentDirectoryW(directory);
    EXPECT_THAT(newThings([] { SetEnvironmentVariableW(L"ZIPTRA_TEST_STATE", L"1"); }),
                ElementsAre("another environment"));
    SetEnvironmentVariableW(L"ZIPTRA_TEST_STATE", nullptr);
    EXPECT_THAT(newThings([] { SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL); }),
                ElementsAre("another priority of the host's thread"));
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_NORMAL);
    EXPECT_THAT(newThings([] {}), IsEmpty());
}

}  // namespace
