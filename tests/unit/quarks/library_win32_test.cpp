#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quarks/library.h"
#include "tests/support/imports_win32.h"

// The system calls, argument by argument.
namespace {

using testing::ElementsAre;

constexpr std::uint32_t untouched = 0xABCD;

class nLibraryCalls : public testing::Test {
protected:
    nLibraryCalls() {
        imports::GetACP.replace([this] { return codePage_; });
        imports::SetThreadErrorMode.replace([this](DWORD mode, DWORD* previous) {
            calls_.push_back("SetThreadErrorMode " + std::to_string(mode));
            if (previous != nullptr) *previous = modeBefore;
            return TRUE;
        });
        imports::LoadLibraryExA.replace([this](LPCSTR path, HANDLE file, DWORD flags) {
            calls_.push_back(std::string("LoadLibraryExA ") + path);
            EXPECT_EQ(file, nullptr);
            EXPECT_EQ(flags, 8U) << "LOAD_WITH_ALTERED_SEARCH_PATH";
            return module_;
        });
        imports::FreeLibrary.replace([this](HMODULE module) {
            calls_.emplace_back("FreeLibrary");
            EXPECT_EQ(module, theModule());
            return freed_;
        });
        imports::GetProcAddress.replace([this](HMODULE module, LPCSTR name) {
            calls_.push_back(std::string("GetProcAddress ") + name);
            EXPECT_EQ(module, theModule());
            return address_;
        });
        imports::GetLastError.replace([this] {
            calls_.emplace_back("GetLastError");
            return error;
        });
    }
    void TearDown() override { imports::ImportBase::restoreAll(); }

    HMODULE theModule() { return reinterpret_cast<HMODULE>(this); }
    static INT_PTR WINAPI entry() { return 0; }

    static constexpr DWORD error = 1114;
    static constexpr DWORD modeBefore = 32770;  ///< without the bit for critical errors
    UINT codePage_ = CP_UTF8;
    HMODULE module_ = theModule();
    BOOL freed_ = TRUE;
    FARPROC address_ = entry;
    std::uint32_t osError_ = untouched;
    std::vector<std::string> calls_;
};

TEST_F(nLibraryCalls, LoadTurnsMessageBoxesOffAndBackOn) {
    EXPECT_EQ(nLibrary::load("plugin.dll", osError_), theModule());
    EXPECT_EQ(osError_, untouched);
    EXPECT_THAT(calls_, ElementsAre("SetThreadErrorMode 1", "LoadLibraryExA plugin.dll", "SetThreadErrorMode 32770"));
}

TEST_F(nLibraryCalls, LoadThatFailsReadsTheErrorNumberBeforeItTurnsMessageBoxesBackOn) {
    module_ = nullptr;
    EXPECT_EQ(nLibrary::load("plugin.dll", osError_), nullptr);
    EXPECT_EQ(osError_, error);
    EXPECT_THAT(calls_, ElementsAre("SetThreadErrorMode 1", "LoadLibraryExA plugin.dll", "GetLastError",
                                    "SetThreadErrorMode 32770"));
}

TEST_F(nLibraryCalls, UnloadFailsOnlyForFalseAndReadsTheErrorNumberAtOnce) {
    EXPECT_TRUE(nLibrary::unload(theModule(), osError_));
    freed_ = -1;
    EXPECT_TRUE(nLibrary::unload(theModule(), osError_));
    EXPECT_EQ(osError_, untouched);
    freed_ = FALSE;
    EXPECT_FALSE(nLibrary::unload(theModule(), osError_));
    EXPECT_EQ(osError_, error);
    EXPECT_THAT(calls_, ElementsAre("FreeLibrary", "FreeLibrary", "FreeLibrary", "GetLastError"));
}

TEST_F(nLibraryCalls, SymbolReturnsTheAddressOrReadsTheErrorNumberAtOnce) {
    EXPECT_EQ(nLibrary::symbol(theModule(), "Entry", osError_), reinterpret_cast<void*>(&entry));
    EXPECT_EQ(osError_, untouched);
    address_ = nullptr;
    EXPECT_EQ(nLibrary::symbol(theModule(), "Entry", osError_), nullptr);
    EXPECT_EQ(osError_, error);
    EXPECT_THAT(calls_, ElementsAre("GetProcAddress Entry", "GetProcAddress Entry", "GetLastError"));
}

// Before version 1903 of Windows 10, the system ignores the manifest's request for UTF-8.

struct tCodePageRow {
    UINT codePage;
    std::string path;
    std::string expected;  ///< empty if the path cannot be converted
};

TEST_F(nLibraryCalls, LoadConvertsThePathToAnotherCodePageAndFailsIfACharacterWouldBeLost) {
    const std::vector<tCodePageRow> rows = {
        {CP_UTF8,
         "C:\\gr\xC3\xB6\xC3\x9F"
         "e.dll",
         "C:\\gr\xC3\xB6\xC3\x9F"
         "e.dll"},
        {CP_UTF8, "C:\\no UTF-8 \xFF.dll", "C:\\no UTF-8 \xFF.dll"},
        {1252, "C:\\plain.dll", "C:\\plain.dll"},
        {1252,
         "C:\\gr\xC3\xB6\xC3\x9F"
         "e.dll",
         "C:\\gr\xF6\xDF"
         "e.dll"},
        {1252, "C:\\\xE2\x82\xAC.dll", "C:\\\x80.dll"},
        {1252, "C:\\\xE8\xAE\xA1.dll", ""},
        {1252, "C:\\\xEF\xBC\xA1.dll", ""},  // a full-width A, which only looks like an A
        {1252, "C:\\\xF0\x9F\x9A\x80.dll", ""},
        {1252, "C:\\no UTF-8 \xFF.dll", ""},
        {936, "C:\\\xE8\xAE\xA1.dll", "C:\\\xBC\xC6.dll"},
    };
    for (const tCodePageRow& row : rows) {
        codePage_ = row.codePage;
        osError_ = untouched;
        calls_.clear();
        const nLibrary::tHandle library = nLibrary::load(row.path.c_str(), osError_);
        EXPECT_EQ(library, row.expected.empty() ? nullptr : theModule()) << row.path;
        EXPECT_EQ(osError_, row.expected.empty() ? 1113U : untouched) << row.path;
        if (row.expected.empty()) {
            EXPECT_THAT(calls_, testing::IsEmpty()) << row.path;
        } else {
            EXPECT_THAT(calls_, testing::Contains("LoadLibraryExA " + row.expected)) << row.path;
        }
    }
}

TEST_F(nLibraryCalls, LoadPassesOnAnEmptyPathForAnyCodePage) {
    codePage_ = 1252;
    EXPECT_EQ(nLibrary::load("", osError_), theModule());
}

TEST(nLibrary, UnloadFailsForAnInvalidHandle) {
    std::uint32_t osError = untouched;
    int noModule = 0;
    EXPECT_FALSE(nLibrary::unload(&noModule, osError));
    EXPECT_NE(osError, untouched);
}

}  // namespace
