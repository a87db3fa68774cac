// What the sweep sees with: a fault that is planted must show, and nothing else.
#include "tests/sweep/ledger_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <share.h>

#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"
#include "tests/support/plugins.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The calls go through the ledger to the system.
class Ledger : public testing::Test {
protected:
    Ledger() { sweep::keepLedger(ledger_); }
    ~Ledger() override { imports::ImportBase::restoreAll(); }

    sweep::tLedger ledger_;
};

TEST_F(Ledger, IsEmptyWhenEverythingOpenedIsClosed) {
    const HANDLE event = imports::CreateEventA.call(nullptr, TRUE, FALSE, nullptr);
    EXPECT_THAT(ledger_.leaks(), ElementsAre("handle"));
    EXPECT_TRUE(ledger_.isOpen("handle", event));
    imports::CloseHandle.call(event);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
    EXPECT_EQ(ledger_.wrongClosings, 0);
}

TEST_F(Ledger, SeesAHandleThatIsClosedTwice) {
    const HANDLE event = imports::CreateEventA.call(nullptr, TRUE, FALSE, nullptr);
    imports::CloseHandle.call(event);
    imports::CloseHandle.call(event);
    EXPECT_EQ(ledger_.wrongClosings, 1);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
}

TEST_F(Ledger, TakesClosingNothingForNothing) {
    imports::CloseHandle.call(nullptr);
    imports::CloseHandle.call(INVALID_HANDLE_VALUE);
    EXPECT_EQ(ledger_.wrongClosings, 0);
}

TEST_F(Ledger, SeesAFileThatStaysOpen) {
    const support::tFolder folder;
    const std::wstring path = (folder.path() / "a").wstring();
    std::FILE* const file = imports::_wfsopen.call(path.c_str(), L"w", _SH_DENYNO);
    EXPECT_THAT(ledger_.leaks(), ElementsAre("file"));
    imports::fclose.call(file);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
    EXPECT_EQ(imports::_wfopen.call((folder.path() / "missing" / "b").c_str(), L"r"), nullptr);
    EXPECT_THAT(ledger_.leaks(), IsEmpty()) << "what did not open need not be closed";
}

TEST_F(Ledger, SeesASearchThatStaysOpen) {
    const support::tFolder folder;
    WIN32_FIND_DATAW found;
    const HANDLE search = imports::FindFirstFileW.call(folder.path().c_str(), &found);
    EXPECT_THAT(ledger_.leaks(), ElementsAre("search"));
    imports::FindClose.call(search);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
}

TEST_F(Ledger, SeesARegistryKeyThatStaysOpenAndOneThatIsClosedTwice) {
    HKEY key = nullptr;
    ASSERT_EQ(imports::RegOpenKeyExW.call(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_THAT(ledger_.leaks(), ElementsAre("registry key"));
    imports::RegCloseKey.call(key);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
    imports::RegCloseKey.call(key);
    EXPECT_EQ(ledger_.wrongClosings, 1);
}

TEST_F(Ledger, SeesATextOfTheSystemThatIsNotGivenBack) {
    char* text = nullptr;
    const DWORD length = imports::FormatMessageA.call(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM,
                                                      nullptr, 2, 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
    ASSERT_GT(length, 0U);
    EXPECT_THAT(ledger_.leaks(), ElementsAre("local memory"));
    imports::LocalFree.call(text);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
}

TEST_F(Ledger, CountsEachReferenceToALibrary) {
    const std::string path = support::pluginPath("behaviours");
    const HMODULE module = imports::LoadLibraryExA.call(path.c_str(), nullptr, 0);
    imports::LoadLibraryExA.call(path.c_str(), nullptr, 0);
    imports::FreeLibrary.call(module);
    EXPECT_THAT(ledger_.leaks(), ElementsAre("module"));
    EXPECT_THAT(ledger_.open("module"), ElementsAre(module));
    imports::FreeLibrary.call(module);
    EXPECT_THAT(ledger_.leaks(), IsEmpty());
    imports::FreeLibrary.call(module);
    EXPECT_EQ(ledger_.wrongClosings, 1);
}

TEST(LedgerBooks, ForgiveWhatTheSystemRefusedToClose) {
    sweep::tLedger ledger;
    const int module = 0;
    ledger.opened("module", &module);
    ledger.refusedToClose("module", &module);
    EXPECT_THAT(ledger.leaks(), IsEmpty()) << "it was tried";
    EXPECT_THAT(ledger.open("module"), ElementsAre(&module));
    ledger.closed("module", &module);
    EXPECT_EQ(ledger.wrongClosings, 0) << "and may be tried again";
    ledger.refusedToClose("module", &module);
    EXPECT_EQ(ledger.wrongClosings, 1) << "but not when it is closed";
}

TEST(LedgerBooks, LetTheFrameworkLibraryStay) {
    sweep::tLedger ledger;
    const int library = 0;
    ledger.opened("framework library", &library);
    EXPECT_THAT(ledger.leaks(), IsEmpty());
}

TEST(LedgerBooks, BeginAnewWhenCleared) {
    sweep::tLedger ledger;
    const int handle = 0;
    ledger.opened("handle", &handle);
    ledger.closed("handle", nullptr);
    ledger.clear();
    EXPECT_THAT(ledger.leaks(), IsEmpty());
    EXPECT_EQ(ledger.wrongClosings, 0);
}

}  // namespace
