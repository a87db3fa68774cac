#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/filesystem/path.hpp>
#include <locale>

#include "err/Exception.h"
#include "ini/document.h"
#include "source/nPluginData.h"
#include "stdpath/path.h"
#include "tests/support/allocations.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"

namespace {

TEST(nPluginData, RequiresIsTheLargestNumberIfTheValueExceeds32Bits) {
    // A long has 32 bits here; elsewhere the low 32 of 64 remain.
    const support::tFolder folder;
    for (const char* const value : {"4294967296", "4294967297", "18446744073709551616"}) {
        tPluginDescription record;
        nPluginData::readDescription(folder.write("a.ini", std::string("[Service]\nRequires=") + value), record);
        EXPECT_EQ(record.requiresMask, 4294967295U) << value;
    }
}

TEST(nPluginData, OpensAFileWhoseNameIsNotValidUtf16) {
    const std::wstring path = L"C:\\计划 🚀\\lone \xDC00 and \xD800.ini";
    std::vector<std::wstring> opened;
    imports::_wfopen.replace([&opened](const wchar_t* name, const wchar_t* /*mode*/) -> FILE* {
        opened.emplace_back(name);
        return nullptr;
    });
    tPluginDescription record;
    EXPECT_THROW(nPluginData::readDescription(nStdPath::pathToUtf8(path), record), zuerr::Exception);
    EXPECT_THAT(opened, testing::ElementsAre(path));
}

TEST(nPluginData, DoesNotConvertPathsWithThePathLibrarysLocale) {
    const support::tFolder folder;
    const std::string file = folder.write(u"计划.ini");
    std::vector<std::string> files;
    // A locale that cannot convert any of its letters; Wine's own may be able to convert all of them.
    const std::locale before = boost::filesystem::path::imbue(std::locale::classic());
    nPluginData::listDescriptionFiles(folder.path().wstring(), L".ini", files);
    boost::filesystem::path::imbue(before);
    EXPECT_THAT(files, testing::ElementsAre(file));
}

/// These tests can make `new` fail.
class nPluginDataMemory : public testing::Test {
protected:
    const support::tFolder folder;
    const std::string path = folder.write("a.ini", "[Service]\nName=A\nPath=" + std::string(20000, 'x'));
    tPluginDescription record{"earlier", {"x", "y"}, 6, "earlier.dll", "i", "s", "c"};
};

TEST_F(nPluginDataMemory, LeavesTheRecordUnchangedIfThereIsNoMemoryForADocument) {
    EXPECT_EQ(allocations::refused(sizeof(nIni::tDocument), [this] { nPluginData::readDescription(path, record); }), 1);
    EXPECT_EQ(record.name, "earlier");
    EXPECT_EQ(record.path, "earlier.dll");
}

TEST_F(nPluginDataMemory, ThrowsTheParsersCodeIfMemoryRunsOutLater) {
    std::string thrown;
    const auto read = [this] { nPluginData::readDescription(path, record); };
    EXPECT_GT(allocations::refused(10000, [&] { thrown = support::caughtReport(read); }), 0);
    EXPECT_EQ(thrown, R"(-12 {"error_constant":"result","file":".\\source\\nPluginData","line":261,)"
                      R"("component":"zuZiptraRemoteService"})");
    EXPECT_EQ(record.name, "earlier");
}

TEST(nPluginData, ReportsAnUnreadableFileWithTheParsersCode) {
    const support::tFolder folder;
    const std::string path = folder.utf8(folder.makeFolder("a.ini").filename());
    tPluginDescription record;
    EXPECT_THAT(support::caughtReport([&] { nPluginData::readDescription(path, record); }),
                testing::StartsWith("-5001 "));
}

}  // namespace
