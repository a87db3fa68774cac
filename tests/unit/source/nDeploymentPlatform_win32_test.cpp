#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cwchar>
#include <string>
#include <string_view>
#include <vector>

#include "source/nDeployment.h"
#include "source/nDeploymentPlatform.h"
#include "tests/support/framework.h"
#include "tests/support/imports_win32.h"

namespace {

using support::tScriptedFramework;
using testing::ElementsAre;
using testing::SizeIs;

int theLibrary = 0;  // its address serves as the library's handle

HMODULE handle() { return reinterpret_cast<HMODULE>(&theLibrary); }

/// A scripted loader.
class nDeploymentPlatform : public testing::Test {
protected:
    nDeploymentPlatform() {
        imports::GetModuleHandleA.replace([this](LPCSTR name) -> HMODULE {
            calls.push_back(std::string("find ") + name);
            return loaded ? handle() : nullptr;
        });
        imports::LoadLibraryExA.replace([this](LPCSTR name, HANDLE file, DWORD flags) -> HMODULE {
            calls.push_back(std::string("load ") + name + " " + std::to_string(flags));
            EXPECT_EQ(file, nullptr);
            loaded = present;
            return present ? handle() : nullptr;
        });
        imports::GetProcAddress.replace([this](HMODULE library, LPCSTR name) -> FARPROC {
            calls.push_back(std::string("look up ") + name);
            EXPECT_EQ(library, handle());
            return entry;
        });
        imports::FreeLibrary.replace([this](HMODULE library) -> BOOL {
            calls.emplace_back("free");
            EXPECT_EQ(library, handle());
            loaded = false;
            return TRUE;
        });
    }

    /// Windows 7 without the search flags: the test decides which absolute paths can be loaded.
    void refuseSearchFlags() {
        imports::LoadLibraryExA.replace([](auto...) -> HMODULE {
            SetLastError(ERROR_INVALID_PARAMETER);
            return nullptr;
        });
        imports::GetModuleFileNameW.replace([](HMODULE, wchar_t* path, DWORD) {
            return DWORD(std::wcslen(std::wcscpy(path, L"C:\\größe\\host.exe")));
        });
        imports::GetSystemDirectoryW.replace(
            [](wchar_t* path, UINT) { return UINT(std::wcslen(std::wcscpy(path, L"S:\\s"))); });
        imports::LoadLibraryExW.replace([this](const wchar_t* path, HANDLE, DWORD flags) -> HMODULE {
            EXPECT_EQ(flags, DWORD{LOAD_WITH_ALTERED_SEARCH_PATH});
            paths.emplace_back(path);
            return paths.size() == triesUntilFound ? handle() : nullptr;
        });
    }

    static FARPROC scripted() {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&tScriptedFramework::instantiate));
    }

    bool present = true;
    bool loaded = false;
    FARPROC entry = scripted();
    std::vector<std::string> calls;
    std::vector<std::wstring> paths;
    std::size_t triesUntilFound = 0;
};

// 2560 = beside the executable (512) and in the system folder (2048): anywhere else, others may be able to plant a
// library.
TEST_F(nDeploymentPlatform, SearchesOnlyBesideTheExecutableAndInTheSystemFolder) {
    EXPECT_EQ(nDeployment::findFrameworkEntry(), &tScriptedFramework::instantiate);
    EXPECT_THAT(calls,
                ElementsAre("find zusysapi.dll", "load zusysapi.dll 2560", "look up zusysInstantiateFramework2"));
}

TEST_F(nDeploymentPlatform, TakesNoSecondReferenceToALoadedLibrary) {
    loaded = true;
    EXPECT_EQ(nDeployment::findFrameworkEntry(), &tScriptedFramework::instantiate);
    EXPECT_THAT(calls, ElementsAre("find zusysapi.dll", "look up zusysInstantiateFramework2"));
}

TEST_F(nDeploymentPlatform, ReturnsNullIfTheLibraryIsMissing) {
    present = false;
    EXPECT_EQ(nDeployment::findFrameworkEntry(), nullptr);
    EXPECT_THAT(calls, ElementsAre("find zusysapi.dll", "load zusysapi.dll 2560"));
}

TEST_F(nDeploymentPlatform, UnloadsALibraryWithoutTheEntry) {
    entry = nullptr;
    EXPECT_EQ(nDeployment::findFrameworkEntry(), nullptr);
    EXPECT_EQ(calls.back(), "free");
    EXPECT_FALSE(loaded);
}

TEST_F(nDeploymentPlatform, TriesBothFoldersByAbsolutePathIfTheSearchFlagsAreUnknown) {
    refuseSearchFlags();
    EXPECT_EQ(nDeployment::findFrameworkEntry(), nullptr);
    EXPECT_THAT(paths, ElementsAre(L"C:\\größe\\zusysapi.dll", L"S:\\s\\zusysapi.dll"));
}

TEST_F(nDeploymentPlatform, PrefersTheLibraryBesideTheExecutableIfTheSearchFlagsAreUnknown) {
    refuseSearchFlags();
    for (triesUntilFound = 1; triesUntilFound <= 2; ++triesUntilFound) {
        paths.clear();
        EXPECT_EQ(nDeployment::findFrameworkEntry(), &tScriptedFramework::instantiate);
        EXPECT_THAT(paths, SizeIs(triesUntilFound));
    }
}

TEST_F(nDeploymentPlatform, TriesNoAbsolutePathAfterAnyOtherError) {
    refuseSearchFlags();
    present = false;
    imports::LoadLibraryExA.replace([](auto...) -> HMODULE {
        SetLastError(ERROR_BAD_EXE_FORMAT);
        return nullptr;
    });
    EXPECT_EQ(nDeployment::findFrameworkEntry(), nullptr);
    EXPECT_THAT(paths, SizeIs(0));
}

TEST_F(nDeploymentPlatform, SkipsAFolderThatTheSystemDoesNotReport) {
    refuseSearchFlags();
    imports::GetModuleFileNameW.replace([](auto...) { return DWORD{0}; });
    imports::GetSystemDirectoryW.replace([](auto...) { return UINT{0}; });
    EXPECT_EQ(nDeployment::findFrameworkEntry(), nullptr);
    EXPECT_THAT(paths, SizeIs(0));
}

// Otherwise the system would display a message box for a damaged library, and the start would wait until it is closed.
TEST_F(nDeploymentPlatform, LoadsWithoutAMessageBoxAndRestoresTheModeOnceTheErrorHasBeenRead) {
    refuseSearchFlags();
    DWORD mode = SEM_NOOPENFILEERRORBOX;
    imports::SetThreadErrorMode.replace([&](DWORD newMode, DWORD* previous) {
        if (previous != nullptr) *previous = mode;
        mode = newMode;
        SetLastError(ERROR_SUCCESS);
        return TRUE;
    });
    imports::LoadLibraryExA.replace([&](auto...) -> HMODULE {
        EXPECT_EQ(mode, DWORD{SEM_FAILCRITICALERRORS});
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    });
    EXPECT_EQ(nDeployment::findFrameworkEntry(), nullptr);
    EXPECT_THAT(paths, SizeIs(2));
    EXPECT_EQ(mode, DWORD{SEM_NOOPENFILEERRORBOX});
}

TEST_F(nDeploymentPlatform, SleepsForTheGivenMilliseconds) {
    DWORD slept = 0;
    imports::Sleep.replace([&slept](DWORD milliseconds) { slept = milliseconds; });
    nDeployment::sleepMs(10'000);
    EXPECT_EQ(slept, 10'000U);
}

// The binary interface: an object is a pointer to a table of functions. This one is written by hand, so that a change
// in the order of the declarations is noticed.

constexpr std::size_t slots = 16;

struct tTable {
    std::array<void*, slots> functions{};
};

struct tObject {
    const tTable* table;
    const char* name;
};

std::vector<std::string>* slotCalls = nullptr;

template <int slot>
std::int32_t noteSlot(tObject* self, std::uintptr_t /*a*/, std::uintptr_t /*b*/, std::uintptr_t /*c*/,
                      std::uintptr_t /*d*/) {
    slotCalls->push_back(std::string(self->name) + " " + std::to_string(slot));
    return 0;
}

template <int... numbers>
tTable notingTable(std::integer_sequence<int, numbers...> /*slots*/) {
    return {{reinterpret_cast<void*>(&noteSlot<numbers>)...}};
}

tTable plainTable() { return notingTable(std::make_integer_sequence<int, slots>()); }

tTable resourceTable = plainTable();
tObject resource{&resourceTable, "resource"};
tTable connectionTable = plainTable();
tObject connection{&connectionTable, "connection"};
tTable optionsTable = plainTable();
tObject options{&optionsTable, "options"};
tTable frameworkTable = plainTable();
tObject framework{&frameworkTable, "framework"};

std::int32_t identify(tObject* self, const void* /*id*/, void** out) {
    slotCalls->push_back(std::string(self->name) + " 0");
    *out = self;
    return 0;
}

std::int32_t giveOptions(tObject* self, tObject** out) {
    slotCalls->push_back(std::string(self->name) + " 10");
    *out = &options;
    return 0;
}

std::int32_t setOption(tObject* self, std::uint32_t option, std::uint32_t value) {
    slotCalls->push_back(std::string(self->name) + " 10");
    EXPECT_EQ(option, 0x103A000U);
    EXPECT_EQ(value, 4U);
    return 0;
}

std::int32_t connect(tObject* self, const wchar_t* target, std::uint32_t flag, tObject* given, tObject** out) {
    slotCalls->push_back(std::string(self->name) + " 4");
    EXPECT_EQ(std::wstring_view(target), L"//localhost");
    EXPECT_EQ(flag, 1U);
    EXPECT_EQ(given, &options);
    *out = &connection;
    return 0;
}

std::int32_t select(tObject* self, std::uint32_t selector, tObject** out, std::uint32_t* count) {
    slotCalls->push_back(std::string(self->name) + " 3");
    EXPECT_EQ(selector, 1U);
    EXPECT_EQ(*count, 0U);
    *out = &resource;
    return 0;
}

std::int32_t readSetting(tObject* self, std::uint32_t setting, std::uint32_t* value) {
    slotCalls->push_back(std::string(self->name) + " 15");
    EXPECT_EQ(setting, 0x13000000U);
    EXPECT_EQ(*value, 0U);
    *value = 7;
    return 0;
}

std::int32_t instantiate(std::uint32_t first, std::uint32_t second, tObject** out) {
    EXPECT_EQ(first, 1U);
    EXPECT_EQ(second, 0U);
    *out = &framework;
    return 0;
}

TEST_F(nDeploymentPlatform, CallsEachOperationThroughItsSlot) {
    std::vector<std::string> seen;
    slotCalls = &seen;
    frameworkTable.functions[0] = reinterpret_cast<void*>(&identify);
    frameworkTable.functions[10] = reinterpret_cast<void*>(&giveOptions);
    frameworkTable.functions[4] = reinterpret_cast<void*>(&connect);
    optionsTable.functions[10] = reinterpret_cast<void*>(&setOption);
    connectionTable.functions[3] = reinterpret_cast<void*>(&select);
    resourceTable.functions[15] = reinterpret_cast<void*>(&readSetting);
    entry = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&instantiate));

    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_THAT(seen, ElementsAre("framework 10", "options 10", "framework 4", "connection 3",
                                  "framework 1",                               // the holder's own reference
                                  "connection 2", "options 2", "framework 2",  // the local ones
                                  "resource 15", "resource 2", "framework 2"));
}

}  // namespace
