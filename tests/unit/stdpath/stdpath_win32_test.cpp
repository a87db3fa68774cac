#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "stdpath/stdpath.h"
#include "tests/support/allocations.h"
#include "tests/support/imports_win32.h"

namespace {

using testing::ElementsAre;

/// The registry's response to one query.
struct tAnswer {
    LSTATUS result;
    DWORD reportedSize;
    std::u16string value;
};

/// A scripted registry that records every call.
class nStdPathRegistryReader : public testing::Test {
protected:
    nStdPathRegistryReader() {
        imports::RegOpenKeyExW.replace([this](HKEY hive, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) {
            EXPECT_EQ(hive, HKEY_LOCAL_MACHINE);
            EXPECT_STREQ(path, L"SOFTWARE\\Corvell\\Common\\Installer");
            EXPECT_EQ(options, 0U);
            EXPECT_EQ(access, 0x20019U);
            calls.emplace_back("open");
            if (openResult == ERROR_SUCCESS) *key = handle();
            return openResult;
        });
        imports::RegQueryValueExW.replace(
            [this](HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
                EXPECT_EQ(key, handle());
                EXPECT_STREQ(name, L"ZUSHAREDDIR64");
                EXPECT_EQ(reserved, nullptr);
                EXPECT_EQ(type, nullptr) << "the type of the value is not used";
                calls.push_back("query " + std::to_string(*size));
                return answer(data, size);
            });
        imports::RegCloseKey.replace([this](HKEY key) -> LSTATUS {
            EXPECT_EQ(key, handle());
            calls.emplace_back("close");
            return closeResult;
        });
        imports::FormatMessageA.replace([this](DWORD flags, const void* source, DWORD code, DWORD language,
                                               char* buffer, DWORD size, va_list* arguments) -> DWORD {
            EXPECT_EQ(flags, 0x1300U);
            EXPECT_EQ(source, nullptr);
            EXPECT_EQ(language, 0x400U);
            EXPECT_EQ(size, 0U);
            EXPECT_EQ(arguments, nullptr);
            calls.push_back("format " + std::to_string(code));
            if (!message) return 0;
            char* const text = static_cast<char*>(::LocalAlloc(LMEM_FIXED, message->size() + 1));
            std::memcpy(text, message->c_str(), message->size() + 1);
            std::memcpy(buffer, &text, sizeof text);
            return static_cast<DWORD>(message->size());
        });
        imports::LocalFree.replace([this](HLOCAL block) -> HLOCAL {
            calls.emplace_back("free");
            reportAtFree = status.json == nullptr ? "" : status.json;
            return imports::LocalFree.real(block);
        });
    }

    HKEY handle() { return reinterpret_cast<HKEY>(&openResult); }

    LSTATUS answer(BYTE* data, DWORD* size) {
        if (answers.empty()) return ERROR_CALL_NOT_IMPLEMENTED;
        const tAnswer next = answers.front();
        answers.erase(answers.begin());
        // The system may fill the whole buffer.
        std::memset(data, 0xEE, *size);
        std::copy_n(reinterpret_cast<const BYTE*>(next.value.data()), next.value.size() * sizeof(char16_t), data);
        *size = next.reportedSize;
        return next.result;
    }

    std::u16string read() {
        nStdPath::readRegistryString(u"SOFTWARE\\Corvell\\Common\\Installer", u"ZUSHAREDDIR64", 0, wide, status);
        return {wide.begin(), wide.end()};
    }

    LSTATUS openResult = ERROR_SUCCESS;
    LSTATUS closeResult = ERROR_SUCCESS;
    std::vector<tAnswer> answers;
    std::optional<std::string> message = "The system's text.\r\n";

    std::vector<std::string> calls;
    std::string reportAtFree;
    zuerr::StatusRecord status;
    nStdPath::tWideBuffer wide;
};

std::string report(int line, unsigned code, const std::string& text, const std::string& description) {
    return R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":)" + std::to_string(line) +
           R"(,"component":"zuZiptraRemoteService","internal_error":{"api":"win32","code":)" + std::to_string(code) +
           text + R"(},"zutolq_debug":{"desc":")" + description + "\"}}";
}

/// The report that running out of memory causes, whichever call needed it.
const std::string outOfMemory =
    R"({"error_constant":"-52000","file":"zubrx/err/Allocator","line":31,"component":"zuZiptraRemoteService"})";

const std::string systemText = R"(,"string":"The system's text.\r\n")";

TEST_F(nStdPathRegistryReader, QueriesWith512BytesAndKeepsExactlyTheValue) {
    answers = {{ERROR_SUCCESS, 10, {u"C:\\D\0", 5}}};
    EXPECT_EQ(read(), std::u16string(u"C:\\D\0", 5));
    EXPECT_EQ(status.code, 0);
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "close"));
}

TEST_F(nStdPathRegistryReader, ReadsAValueThatJustFitsTheFirstBufferAtOnce) {
    const std::u16string value(256, u'x');
    answers = {{ERROR_SUCCESS, 512, value}};
    EXPECT_EQ(read(), value);
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "close"));
}

TEST_F(nStdPathRegistryReader, QueriesAgainWithTheSizeThatTheFirstCallReported) {
    const std::u16string value(300, u'x');
    answers = {{ERROR_MORE_DATA, 600, u""}, {ERROR_SUCCESS, 600, value}};
    EXPECT_EQ(read(), value);
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "query 600", "close"));
}

TEST_F(nStdPathRegistryReader, RepeatsTheQueryWhileTheValueGrows) {
    const std::u16string value(400, u'x');
    answers = {{ERROR_MORE_DATA, 600, u""}, {ERROR_MORE_DATA, 800, u""}, {ERROR_SUCCESS, 800, value}};
    EXPECT_EQ(read(), value);
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "query 600", "query 800", "close"));
}

TEST_F(nStdPathRegistryReader, KeepsLessWhenTheValueShrinksBetweenTwoCalls) {
    answers = {{ERROR_MORE_DATA, 600, u""}, {ERROR_SUCCESS, 4, u"ab"}};
    EXPECT_EQ(read(), u"ab");
}

TEST_F(nStdPathRegistryReader, DropsTheOddByteOfAValueThatIsNotText) {
    answers = {{ERROR_SUCCESS, 5, u"abc"}};
    EXPECT_EQ(read(), u"ab");
}

TEST_F(nStdPathRegistryReader, HasSpaceForTheOddByteOfALongValue) {
    // The stand-in fills the whole buffer; one of 300 characters would be one byte too small.
    answers = {{ERROR_MORE_DATA, 601, u""}, {ERROR_SUCCESS, 601, std::u16string(300, u'x')}};
    EXPECT_EQ(read(), std::u16string(300, u'x'));
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "query 601", "close"));
}

TEST_F(nStdPathRegistryReader, ReturnsAnEmptyTextForAValueWithoutData) {
    answers = {{ERROR_SUCCESS, 0, u""}};
    EXPECT_EQ(read(), u"");
    EXPECT_EQ(status.code, 0);
}

TEST_F(nStdPathRegistryReader, IgnoresAFailureToCloseTheKey) {
    closeResult = ERROR_INVALID_HANDLE;
    answers = {{ERROR_SUCCESS, 4, u"ab"}};
    EXPECT_EQ(read(), u"ab");
    EXPECT_EQ(status.code, 0);
}

TEST_F(nStdPathRegistryReader, ReportsAMissingKeyAndClosesNothing) {
    openResult = ERROR_FILE_NOT_FOUND;
    EXPECT_EQ(read(), u"");
    EXPECT_EQ(status.code, -52006);
    EXPECT_EQ(status.json, report(232, 2, systemText, "RegOpenKeyEx failed"));
    EXPECT_THAT(calls, ElementsAre("open", "format 2", "free"));
    EXPECT_EQ(reportAtFree, status.json) << "the text is freed after the report is built";
}

TEST_F(nStdPathRegistryReader, ReportsAMissingValueAndClosesTheKey) {
    answers = {{ERROR_FILE_NOT_FOUND, 512, u""}};
    read();
    EXPECT_EQ(status.code, -52006);
    EXPECT_EQ(status.json, report(256, 2, systemText, "RegQueryValue failed"));
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "format 2", "free", "close"));
    EXPECT_EQ(reportAtFree, status.json);
}

TEST_F(nStdPathRegistryReader, ReportsAFailureOfTheSecondQuery) {
    answers = {{ERROR_MORE_DATA, 600, u""}, {ERROR_ACCESS_DENIED, 600, u""}};
    read();
    EXPECT_EQ(status.json, report(256, 5, systemText, "RegQueryValue failed"));
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "query 600", "format 5", "free", "close"));
}

TEST_F(nStdPathRegistryReader, OmitsTheTextIfTheSystemHasNone) {
    message.reset();
    openResult = static_cast<LSTATUS>(0xDEADBEEF);
    read();
    EXPECT_EQ(status.json, report(232, 0xDEADBEEF, "", "RegOpenKeyEx failed"));
    EXPECT_THAT(calls, ElementsAre("open", "format 3735928559"));
}

TEST_F(nStdPathRegistryReader, ReportsThatMemoryRunsOutBeforeTheFirstQueryAndClosesTheKey) {
    EXPECT_EQ(allocations::refused(512, [this] { read(); }), 2) << "the buffer, and the report's";
    EXPECT_EQ(status.code, -52000);
    EXPECT_THAT(calls, ElementsAre("open", "close"));
}

TEST_F(nStdPathRegistryReader, ReportsThatMemoryRunsOutForALongValueAndClosesTheKey) {
    answers = {{ERROR_MORE_DATA, 60000, u""}};
    EXPECT_EQ(allocations::refused(60000, [this] { read(); }), 1);
    EXPECT_EQ(status.code, -52000);
    EXPECT_EQ(status.json, outOfMemory);
    EXPECT_THAT(calls, ElementsAre("open", "query 512", "close"));
}

TEST_F(nStdPathRegistryReader, ReadsTheSharedDirectoryFromAValueOfAnyType) {
    const std::u16string value(u" D:\\Shared\\ \0", 13);
    answers = {{ERROR_SUCCESS, 26, value}};
    std::string result;
    nStdPath::getSharedDirectory(result, status);
    EXPECT_EQ(result, "D:\\Shared");
}

TEST_F(nStdPathRegistryReader, WritesThePluginDirectoryWithBackslashes) {
    answers = {{ERROR_SUCCESS, 20, {u"D:\\Shared\\", 10}}};
    EXPECT_EQ(nStdPath::getPluginDirectory().native(), L"D:\\Shared\\ZiptraRemoteService\\plugins");
}

TEST(nStdPathRegistry, ReportsAMissingKeyWithTheSystemsOwnText) {
    zuerr::StatusRecord status;
    nStdPath::tWideBuffer wide;
    nStdPath::readRegistryString(u"SOFTWARE\\Corvell\\No such key", u"x", 0, wide, status);
    EXPECT_EQ(status.code, -52006);
    EXPECT_NE(std::string(status.json).find(R"("code":2,"string":")"), std::string::npos) << status.json;
}

class nStdPathKnownFolder : public testing::Test {
protected:
    nStdPathKnownFolder() {
        imports::SHGetFolderPathW.replace([this](HWND window, int csidl, HANDLE token, DWORD flags, wchar_t* path) {
            EXPECT_EQ(window, nullptr);
            EXPECT_EQ(csidl, 35);
            EXPECT_EQ(token, nullptr);
            EXPECT_EQ(flags, 0U);
            for (int i = 0; i < 260; ++i) EXPECT_EQ(path[i], 0) << i;
            std::memcpy(path, folder.data(), folder.size() * sizeof(wchar_t));
            ++calls;
            return result;
        });
        imports::FormatMessageA.replace([](auto...) -> DWORD {
            ADD_FAILURE() << "an HRESULT is reported without a text";
            return 0;
        });
    }

    HRESULT result = S_OK;
    std::wstring folder = L"C:\\ProgramData";
    int calls = 0;
    zuerr::StatusRecord status;
};

TEST_F(nStdPathKnownFolder, IsQueriedWithABufferOf260Zeros) {
    nStdPath::tWideBuffer wide;
    nStdPath::getKnownFolder(35, wide, status);
    EXPECT_EQ(calls, 1);
    ASSERT_EQ(wide.size(), 260U);
    EXPECT_EQ(std::u16string(wide.begin(), wide.end()), u"C:\\ProgramData" + std::u16string(246, 0));
}

TEST_F(nStdPathKnownFolder, ReportsEveryResultExceptZero) {
    for (const HRESULT failing : {E_INVALIDARG, E_FAIL, S_FALSE}) {
        result = failing;
        zuerr::StatusRecord failed;
        std::string directory = "as it was";
        nStdPath::getCommonAppDataDirectory(directory, failed);
        EXPECT_EQ(failed.code, -52006);
        EXPECT_EQ(failed.json, R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":293,)"
                               R"("component":"zuZiptraRemoteService","internal_error":{"api":"hresult","code":)" +
                                   std::to_string(failing) + R"(},"zutolq_debug":{"desc":"SHGetFolderPathW failed"}})");
        EXPECT_EQ(directory, "C:\\ProgramData\\Corvell")
            << "the content that the failed call left is converted nevertheless";
    }
}

TEST_F(nStdPathKnownFolder, IsNotQueriedIfThereIsNoMemoryForTheBuffer) {
    std::string directory = "as it was";
    EXPECT_EQ(allocations::refused(513, [&] { nStdPath::getCommonAppDataDirectory(directory, status); }), 1);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(status.code, -52000);
    EXPECT_EQ(status.json, outOfMemory);
    EXPECT_EQ(directory, "\\Corvell");
}

/// A loader of a process that has not loaded shell32 yet.
class nStdPathShell32 : public nStdPathKnownFolder {
protected:
    nStdPathShell32() {
        imports::GetSystemDirectoryW.replace(
            [](wchar_t* path, UINT) { return UINT(std::wcslen(std::wcscpy(path, L"S:\\s"))); });
        imports::GetModuleHandleW.replace([this](const wchar_t* path) {
            loaderCalls += "find ";
            EXPECT_EQ(std::wstring(path), L"S:\\s\\shell32.dll");
            return loaded ? handle : nullptr;
        });
        imports::LoadLibraryExW.replace([this](const wchar_t* path, HANDLE file, DWORD flags) {
            loaderCalls += "load ";
            EXPECT_EQ(std::wstring(path), L"S:\\s\\shell32.dll");
            EXPECT_EQ(file, nullptr);
            EXPECT_EQ(flags, DWORD{LOAD_WITH_ALTERED_SEARCH_PATH});
            EXPECT_EQ(mode, DWORD{SEM_FAILCRITICALERRORS}) << "a message box would block the start";
            loaded = canBeLoaded;
            SetLastError(ERROR_MOD_NOT_FOUND);
            return loaded ? handle : nullptr;
        });
        imports::SetThreadErrorMode.replace([this](DWORD newMode, DWORD* previous) {
            if (previous != nullptr) *previous = mode;
            mode = newMode;
            SetLastError(ERROR_SUCCESS);
            return TRUE;
        });
    }

    std::string directory;
    const HMODULE handle =
        GetModuleHandleA("shell32.dll") != nullptr ? GetModuleHandleA("shell32.dll") : LoadLibraryA("shell32.dll");
    bool loaded = false;
    bool canBeLoaded = true;
    DWORD mode = SEM_NOOPENFILEERRORBOX;
    std::string loaderCalls;
};

TEST_F(nStdPathShell32, IsLoadedFromTheSystemFolderByTheFirstCallAndReusedByLaterOnes) {
    nStdPath::getCommonAppDataDirectory(directory, status);
    nStdPath::getCommonAppDataDirectory(directory, status);
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(directory, "C:\\ProgramData\\Corvell");
    EXPECT_EQ(loaderCalls, "find load find ");
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(mode, DWORD{SEM_NOOPENFILEERRORBOX}) << "the thread's mode is restored";
}

TEST_F(nStdPathShell32, IsReportedAndTriedAgainIfItCannotBeLoaded) {
    canBeLoaded = false;
    zuerr::StatusRecord failed;
    nStdPath::getCommonAppDataDirectory(directory, failed);
    EXPECT_EQ(failed.code, -52006);
    EXPECT_STREQ(failed.json,
                 R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":293,)"
                 R"("component":"zuZiptraRemoteService","internal_error":{"api":"hresult","code":-2147024770},)"
                 R"("zutolq_debug":{"desc":"SHGetFolderPathW failed"}})");
    EXPECT_EQ(mode, DWORD{SEM_NOOPENFILEERRORBOX});

    canBeLoaded = true;
    nStdPath::getCommonAppDataDirectory(directory, status);
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(directory, "C:\\ProgramData\\Corvell");
    EXPECT_EQ(loaderCalls, "find load find load ");
}

TEST_F(nStdPathShell32, WithoutTheFunctionIsAFailureRegardlessOfTheLastError) {
    imports::GetProcAddress.replace([](auto...) -> FARPROC { return nullptr; });
    nStdPath::getCommonAppDataDirectory(directory, status);
    EXPECT_EQ(status.code, -52006);
    EXPECT_EQ(calls, 0);
}

TEST_F(nStdPathShell32, IsNotSearchedForAtTheRootOfADriveIfTheSystemFolderIsUnknown) {
    imports::GetSystemDirectoryW.replace([](auto...) { return UINT{0}; });
    nStdPath::getCommonAppDataDirectory(directory, status);
    EXPECT_EQ(status.code, -52006);
    EXPECT_EQ(loaderCalls, "");
}

TEST(nStdPathKnownFolders, IncludeTheMachinesApplicationData) {
    zuerr::StatusRecord status;
    std::string directory;
    nStdPath::getCommonAppDataDirectory(directory, status);
    EXPECT_EQ(status.code, 0);
    EXPECT_TRUE(directory.ends_with("\\Corvell"));
    EXPECT_GT(directory.size(), std::strlen("C:\\\\Corvell"));
}

// The whole process shares the C library, and a plug-in may set its locale.
TEST(nStdPathTrimPathInALocale, KeepsTheLastByteOfALetterThatTheLocaleTreatsAsASpace) {
    ASSERT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
    EXPECT_NE(std::isspace(0xA0), 0) << "this locale proves nothing";
    std::string path = " \xC2\xA0 voil\xC3\xA0 ";
    nStdPath::trimPath(path);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(path, "\xC2\xA0 voil\xC3\xA0");
}

}  // namespace
