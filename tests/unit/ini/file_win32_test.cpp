// The parser on the system calls of Windows, each one checked and each one made to fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/imports_win32.h"
#include "tests/support/iniFile.h"

namespace {

using testing::ElementsAre;

int directorySearch = 0;
const HANDLE searchHandle = &directorySearch;

/// Notes the calls that the parser makes for a file, and passes them on.
class iniFileWin32 : public testing::Test {
protected:
    int parse(std::string_view content) {
        imports::ImportBase::restoreAll();
        file_.write(content);
        standIn();
        calls_.clear();
        return file_.parseInto(document_);
    }

    const tIniFile file_{""};
    nIni::tDocument document_;
    std::vector<std::string> calls_;
    bool opens_ = true;
    bool found_ = true;
    int failingRead_ = 0;  ///< counted from 1

private:
    void standIn() {
        imports::_wfopen.replace([this](const wchar_t* path, const wchar_t* mode) {
            calls_.emplace_back("open");
            EXPECT_EQ(path, file_.widePath());
            EXPECT_STREQ(mode, L"rb");
            return opens_ ? imports::_wfopen.real(path, mode) : nullptr;
        });
        imports::fread.replace([this, reads = 0](void* buffer, size_t size, size_t count, FILE* file) mutable {
            calls_.emplace_back("read " + std::to_string(count));
            EXPECT_EQ(size, 1U);
            if (++reads != failingRead_) return imports::fread.real(buffer, size, count, file);
            file->_flag |= _IOERR;
            return size_t{0};
        });
        imports::fclose.replace([this](FILE* file) {
            calls_.emplace_back("close");
            return imports::fclose.real(file);
        });
        imports::FindFirstFileW.replace([this](const wchar_t* path, WIN32_FIND_DATAW* data) {
            calls_.emplace_back("find");
            EXPECT_EQ(path, file_.widePath());
            data->ftLastWriteTime = {0x89ABCDEF, 0x01234567};
            return found_ ? searchHandle : INVALID_HANDLE_VALUE;
        });
        imports::FindClose.replace([this](HANDLE search) {
            calls_.emplace_back("end find");
            EXPECT_EQ(search, searchHandle);
            return TRUE;
        });
    }
};

TEST_F(iniFileWin32, ReadsFourBytesAndThenChunksAndAsksForTheTimeBeforeClosing) {
    EXPECT_EQ(parse("[s]\nk=v\n"), 0);
    EXPECT_EQ(describe(document_), "[s]@1\nk=v@2\n");
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "read 2084", "find", "end find", "close"));
    EXPECT_EQ(document_.filePath.data(), file_.widePath());
    EXPECT_EQ(document_.fileTime, 0x0123456789ABCDEFU);
}

TEST_F(iniFileWin32, TheContentAloneIsReadWithoutAskingForTheTime) {
    parse("[s]\nk=v\n");
    calls_.clear();
    document_.fileTime = 1;
    document_.filePath[0] = L'x';
    EXPECT_EQ(nIni::parseContent(document_, file_.widePath().c_str()), 0);
    EXPECT_EQ(describe(document_), "[s]@1\nk=v@2\n");
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "read 2084", "close"));
    EXPECT_EQ(document_.fileTime, 1U);
    EXPECT_EQ(document_.filePath[0], L'x');
}

TEST_F(iniFileWin32, ReadsOnUntilAChunkIsNotFull) {
    EXPECT_EQ(parse("[s]\n" + std::string(std::size_t{2} * 2084, ';')), 0);
    EXPECT_THAT(calls_,
                ElementsAre("open", "read 4", "read 2084", "read 2084", "read 2084", "find", "end find", "close"));
}

TEST_F(iniFileWin32, AFileOfLessThanFourBytesIsReadOnce) {
    EXPECT_EQ(parse(";;;"), 0);
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "find", "end find", "close"));
}

TEST_F(iniFileWin32, AFileThatIsGoneAfterTheParseHasNoTime) {
    document_.fileTime = 1;
    found_ = false;
    EXPECT_EQ(parse("[s]\nk=v\n"), 0);
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "read 2084", "find", "close"));
    EXPECT_EQ(document_.fileTime, 0U);
    EXPECT_EQ(document_.filePath.data(), file_.widePath());
}

TEST_F(iniFileWin32, AFileThatCannotBeOpenedButIsFoundGivesMinus5001) {
    opens_ = false;
    EXPECT_EQ(parse("[s]\nk=v\n"), -5001);
    EXPECT_THAT(calls_, ElementsAre("open", "find", "end find"));
}

TEST_F(iniFileWin32, AFileThatCannotBeOpenedNorFoundGivesMinus22) {
    opens_ = false;
    found_ = false;
    EXPECT_EQ(parse("[s]\nk=v\n"), -22);
    EXPECT_THAT(calls_, ElementsAre("open", "find"));
}

TEST_F(iniFileWin32, AFailedFirstReadGivesMinus5002AndLeavesTheDocument) {
    ASSERT_EQ(parse("[s]\nk=v\n"), 0);
    const std::uint64_t time = document_.fileTime;
    failingRead_ = 1;
    EXPECT_EQ(parse("[s]\nk=v\n"), -5002);
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "close"));
    EXPECT_EQ(describe(document_), "[s]@1\nk=v@2\n");
    EXPECT_EQ(document_.filePath.data(), file_.widePath());
    EXPECT_EQ(document_.fileTime, time);
}

TEST_F(iniFileWin32, AFailedLaterReadGivesMinus5002AndKeepsWhatWasRead) {
    failingRead_ = 3;
    EXPECT_EQ(parse("[s]\nk=v\na Line1=b\n;" + std::string(3000, 'x') + "\nl=w\n"), -5002);
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "read 2084", "read 2084", "close"));
    EXPECT_EQ(describe(document_), "[s]@1\nk=v@2\na Line1=b@3\n") << "nothing is joined";
    EXPECT_EQ(document_.filePath[0], 0);
    EXPECT_EQ(document_.fileTime, 0U);
}

TEST_F(iniFileWin32, TheFileIsClosedWhenWideTextIsRefused) {
    EXPECT_EQ(parse("\xFF\xFE"), -3);
    EXPECT_THAT(calls_, ElementsAre("open", "read 4", "close"));
}

TEST_F(iniFileWin32, TheFileIsClosedWhenMemoryRunsOut) {
    file_.write("[a section with a long name]\na key with a long name=a value of some length\n");
    const std::wstring path = file_.widePath();
    int result = -12;
    int nth = 1;
    for (; result == -12; ++nth) {
        int closed = 0;
        imports::fclose.replace([&closed](FILE* file) {
            ++closed;
            return imports::fclose.real(file);
        });
        allocations::startFailingNew(nth, allocations::tHowLong::once);
        result = parseFile(document_, path.c_str());
        allocations::stopFailingNew();
        imports::ImportBase::restoreAll();
        EXPECT_EQ(closed, 1);
    }
    EXPECT_EQ(result, 0);
    EXPECT_GT(nth, 4);
}

// --- the real file system ---

int parse(const std::filesystem::path& path) {
    nIni::tDocument document;
    return parseFile(document, path.wstring().c_str());
}

TEST(iniFileSystem, ADirectoryExistsButDoesNotOpen) {
    const tIniFile file("");
    EXPECT_EQ(parse(file.path().parent_path()), -5001);
}

TEST(iniFileSystem, AFileThatSomebodyHoldsForHimselfExistsButDoesNotOpen) {
    const tIniFile file("[s]");
    const HANDLE held = CreateFileW(file.widePath().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(parse(file.path()), -5001);
    CloseHandle(held);
    EXPECT_EQ(parse(file.path()), 0);
}

TEST(iniFileSystem, AMissingDirectoryOrDriveIsAMissingFile) {
    const tIniFile file("");
    EXPECT_EQ(parse(file.path().parent_path() / "missing" / "x.ini"), -22);
    EXPECT_EQ(parse(L"q:\\x.ini"), -22);
}

TEST(iniFileSystem, APatternIsFoundButDoesNotOpen) {
    const tIniFile file("[s]");
    EXPECT_EQ(parse(file.path().parent_path() / L"*.ini"), -5001);
    EXPECT_EQ(parse(file.path().parent_path() / L"*.txt"), -22);
}

TEST(iniFileSystem, TheCharacterThatEndsATextFileIsTextToo) {
    EXPECT_EQ(parsed("[s]\na=1\x1A\nb=2\n"), "[s]@1\na=1\x1A@2\nb=2@3\n");
}

}  // namespace
