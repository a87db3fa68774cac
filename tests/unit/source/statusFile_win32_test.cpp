#include <gtest/gtest.h>

#include <string>

#include "source/statusFile.h"
#include "tests/support/imports_win32.h"

namespace {

/// Makes all file calls of the runtime fail and counts them.
class statusFileInvalidPath : public testing::Test {
protected:
    statusFileInvalidPath() {
        imports::_wfsopen.replace([this](auto...) -> FILE* { return ++calls, nullptr; });
        imports::_wremove.replace([this](auto...) { return ++calls, -1; });
        imports::_wrename.replace([this](auto...) { return ++calls, -1; });
    }

    int calls = 0;
};

TEST_F(statusFileInvalidPath, MakesNoCallForTextThatIsNotUtf8) {
    EXPECT_EQ(nStatusFile::open("C:\\\xC0\x80"), nullptr);
    EXPECT_FALSE(nStatusFile::remove("C:\\\xFF"));
    EXPECT_FALSE(nStatusFile::rename("C:\\\xE4\xB8", "C:\\b"));
    EXPECT_FALSE(nStatusFile::rename("C:\\a", "C:\\\xE4\xB8"));
    EXPECT_EQ(calls, 0);
}

TEST_F(statusFileInvalidPath, MakesNoCallForAnEmptyPath) {
    EXPECT_EQ(nStatusFile::open(""), nullptr);
    EXPECT_EQ(calls, 0);
}

TEST_F(statusFileInvalidPath, MakesNoCallWhenTheSecondConversionFails) {
    imports::MultiByteToWideChar.replace(
        [](UINT, DWORD, LPCCH, int, LPCWSTR wide, int) { return wide == nullptr ? 1 : 0; });
    EXPECT_EQ(nStatusFile::open("a"), nullptr);
    EXPECT_EQ(calls, 0);
}

TEST_F(statusFileInvalidPath, DoesNotPreventCallsForAValidPath) {
    EXPECT_EQ(nStatusFile::open("C:\\missing\\a"), nullptr);
    EXPECT_FALSE(nStatusFile::remove("C:\\missing\\a"));
    EXPECT_FALSE(nStatusFile::rename("C:\\missing\\a", "C:\\missing\\b"));
    EXPECT_EQ(calls, 3);
}

TEST(statusFilePath, IsConvertedCompletelyFromUtf8AndRejectedIfInvalid) {
    std::string calls;
    const std::string path = "C:\\missing\\\xE4\xB8\xAD";
    imports::MultiByteToWideChar.replace([&](UINT page, DWORD flags, LPCCH text, int size, LPWSTR wide, int room) {
        EXPECT_EQ(page, 65001U);
        EXPECT_EQ(flags, 8U);  // MB_ERR_INVALID_CHARS
        EXPECT_EQ(std::string(text, static_cast<std::size_t>(size)), path);
        calls += wide == nullptr ? "size " : "text ";
        EXPECT_EQ(room, wide == nullptr ? 0 : 12);
        return imports::MultiByteToWideChar.real(page, flags, text, size, wide, room);
    });
    imports::_wremove.replace([&](const wchar_t* wide) {
        calls += "remove ";
        EXPECT_EQ(std::wstring(wide), L"C:\\missing\\\x4E2D");
        return 0;
    });
    EXPECT_TRUE(nStatusFile::remove(path));
    EXPECT_EQ(calls, "size text remove ");
}

}  // namespace
