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

class LibraryCalls : public testing::Test {
protected:
    LibraryCalls() {
        imports::LoadLibraryExA.replace([this](LPCSTR path, HANDLE file, DWORD flags) {
            calls_.emplace_back("LoadLibraryExA");
            EXPECT_STREQ(path, "plugin.dll");
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
            calls_.emplace_back("GetProcAddress");
            EXPECT_EQ(module, theModule());
            EXPECT_STREQ(name, "Entry");
            return address_;
        });
        imports::GetLastError.replace([this] {
            calls_.emplace_back("GetLastError");
            return error;
        });
    }
    ~LibraryCalls() override { imports::ImportBase::restoreAll(); }

    HMODULE theModule() { return reinterpret_cast<HMODULE>(this); }
    static INT_PTR WINAPI entry() { return 0; }

    static constexpr DWORD error = 1114;
    HMODULE module_ = theModule();
    BOOL freed_ = TRUE;
    FARPROC address_ = entry;
    std::uint32_t osError_ = untouched;
    std::vector<std::string> calls_;
};

TEST_F(LibraryCalls, LoadAsksForTheLibrarysOwnFolderToBeSearched) {
    EXPECT_EQ(nLibrary::load("plugin.dll", osError_), theModule());
    EXPECT_EQ(osError_, untouched);
    EXPECT_THAT(calls_, ElementsAre("LoadLibraryExA"));
}

TEST_F(LibraryCalls, LoadReadsTheErrorNumberAtOnce) {
    module_ = nullptr;
    EXPECT_EQ(nLibrary::load("plugin.dll", osError_), nullptr);
    EXPECT_EQ(osError_, error);
    EXPECT_THAT(calls_, ElementsAre("LoadLibraryExA", "GetLastError"));
}

TEST_F(LibraryCalls, UnloadGivesTheHandleBack) {
    EXPECT_TRUE(nLibrary::unload(theModule(), osError_));
    EXPECT_EQ(osError_, untouched);
    EXPECT_THAT(calls_, ElementsAre("FreeLibrary"));
}

TEST_F(LibraryCalls, UnloadSucceedsOnAnyValueButFalse) {
    freed_ = -1;
    EXPECT_TRUE(nLibrary::unload(theModule(), osError_));
}

TEST_F(LibraryCalls, UnloadReadsTheErrorNumberAtOnce) {
    freed_ = FALSE;
    EXPECT_FALSE(nLibrary::unload(theModule(), osError_));
    EXPECT_EQ(osError_, error);
    EXPECT_THAT(calls_, ElementsAre("FreeLibrary", "GetLastError"));
}

TEST_F(LibraryCalls, SymbolGivesTheAddress) {
    EXPECT_EQ(nLibrary::symbol(theModule(), "Entry", osError_), reinterpret_cast<void*>(&entry));
    EXPECT_EQ(osError_, untouched);
    EXPECT_THAT(calls_, ElementsAre("GetProcAddress"));
}

TEST_F(LibraryCalls, SymbolReadsTheErrorNumberAtOnce) {
    address_ = nullptr;
    EXPECT_EQ(nLibrary::symbol(theModule(), "Entry", osError_), nullptr);
    EXPECT_EQ(osError_, error);
    EXPECT_THAT(calls_, ElementsAre("GetProcAddress", "GetLastError"));
}

TEST(LibraryLoading, UnloadOfAHandleThatIsNoneFails) {
    std::uint32_t osError = untouched;
    int noModule = 0;
    EXPECT_FALSE(nLibrary::unload(&noModule, osError));
    EXPECT_NE(osError, untouched);
}

}  // namespace
