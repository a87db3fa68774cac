#include <gtest/gtest.h>

#include "source/statusFile.h"
#include "tests/support/imports_win32.h"

namespace {

/// Counts the file calls that get through to the runtime, which all fail.
class InvalidPath : public testing::Test {
protected:
    InvalidPath() {
        imports::_wfsopen.replace([this](auto...) -> FILE* { return ++calls, nullptr; });
        imports::_wremove.replace([this](auto...) { return ++calls, -1; });
        imports::_wrename.replace([this](auto...) { return ++calls, -1; });
    }

    int calls = 0;
};

TEST_F(InvalidPath, MakesNoCallForTextThatIsNoUtf8) {
    EXPECT_EQ(nStatusFile::open("C:\\\xC0\x80"), nullptr);
    EXPECT_FALSE(nStatusFile::remove("C:\\\xFF"));
    EXPECT_FALSE(nStatusFile::rename("C:\\\xE4\xB8", "C:\\b"));
    EXPECT_FALSE(nStatusFile::rename("C:\\a", "C:\\\xE4\xB8"));
    EXPECT_EQ(calls, 0);
}

TEST_F(InvalidPath, MakesNoCallForAnEmptyPath) {
    EXPECT_EQ(nStatusFile::open(""), nullptr);
    EXPECT_EQ(calls, 0);
}

TEST_F(InvalidPath, MakesNoCallWhenTheSecondConversionFails) {
    imports::MultiByteToWideChar.replace(
        [](UINT, DWORD, LPCCH, int, LPWSTR wide, int) { return wide == nullptr ? 1 : 0; });
    EXPECT_EQ(nStatusFile::open("a"), nullptr);
    EXPECT_EQ(calls, 0);
}

TEST_F(InvalidPath, IsTheOnlyReasonForNotCalling) {
    EXPECT_EQ(nStatusFile::open("C:\\missing\\a"), nullptr);
    EXPECT_FALSE(nStatusFile::remove("C:\\missing\\a"));
    EXPECT_FALSE(nStatusFile::rename("C:\\missing\\a", "C:\\missing\\b"));
    EXPECT_EQ(calls, 3);
}

}  // namespace
