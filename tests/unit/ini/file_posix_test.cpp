// Failures of a file system, as they occur natively.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

#include "ini/file.h"
#include "tests/support/iniFile.h"

namespace {

int parse(const std::filesystem::path& path) {
    nIni::tDocument document;
    return nIni::parseFile(document, path.wstring().c_str());
}

TEST(iniFilePosix, ADirectoryOpensButCannotBeRead) {
    const tIniFile file("");
    EXPECT_EQ(parse(file.path().parent_path()), -5002);
}

TEST(iniFilePosix, AFailedFirstReadLeavesTheDocument) {
    const tIniFile file("[s]");
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    EXPECT_EQ(nIni::parseFile(document, file.path().parent_path().wstring().c_str()), -5002);
    EXPECT_EQ(describe(document), "[s]@1\n");
}

TEST(iniFilePosix, AFileThatExistsButDoesNotOpenGivesMinus5001) {
    const tIniFile file("[s]");
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit none = limit;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const int existing = parse(file.path());
    const int missing = parse(file.path().parent_path() / "missing");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(existing, -5001);
    EXPECT_EQ(missing, -22);
}

TEST(iniFilePosix, ALinkIsAFileWhereverItLeads) {
    const tIniFile file("[s]");
    const std::filesystem::path directory = file.path().parent_path();
    create_symlink(file.path(), directory / "good");
    create_symlink(directory / "missing", directory / "bad");
    EXPECT_EQ(parse(directory / "good"), 0);
    EXPECT_EQ(parse(directory / "bad"), -5001);
}

TEST(iniFilePosix, APathWithoutANarrowFormNamesNoFile) {
    nIni::tDocument document;
    const wchar_t path[] = {L'a', static_cast<wchar_t>(0x110000), 0};
    EXPECT_EQ(nIni::parseFile(document, path), -22);
}

/// Returns `text` once, and then fails.
struct tFailingSource {
    std::string_view text;
};

ssize_t readAndFail(void* cookie, char* buffer, size_t size) {
    auto& source = *static_cast<tFailingSource*>(cookie);
    if (source.text.empty()) {
        errno = EIO;
        return -1;
    }
    const std::size_t count = source.text.copy(buffer, size);
    source.text.remove_prefix(count);
    return static_cast<ssize_t>(count);
}

TEST(iniFilePosix, ALineThatAFailedReadCutShortIsNotUsed) {
    tFailingSource source{"[s]\nk=v\nl=w"};
    const nIni::tFile file(fopencookie(&source, "rb", {readAndFail, nullptr, nullptr, nullptr}));
    ASSERT_NE(file, nullptr);
    nIni::tDocument document;
    EXPECT_EQ(parseStream(document, file.get()), -5002);
    EXPECT_EQ(describe(document), "[s]@1\nk=v@2\n");
}

/// Reads the text up to the first zero byte, which is the end of the file; afterwards, what was appended.
ssize_t readUpToEnd(void* cookie, char* buffer, size_t size) {
    auto& rest = *static_cast<std::string_view*>(cookie);
    const std::size_t end = rest.find('\0');
    const std::size_t count = rest.substr(0, end).copy(buffer, size);
    rest.remove_prefix(count == 0 && !rest.empty() ? 1 : count);
    return static_cast<ssize_t>(count);
}

TEST(iniFilePosix, TextAppendedAfterTheEndWasSeenIsNotRead) {
    using std::string_view_literals::operator""sv;
    // The end is seen within the first four bytes, which may be a byte-order mark, or later.
    for (const std::string_view start : {""sv, ";"sv, "[s]\nk=v"sv}) {
        const std::string text = std::string(start) + '\0' + "x\n[late]\nl=w\n";
        std::string_view rest = text;
        const nIni::tFile file(fopencookie(&rest, "rb", {readUpToEnd, nullptr, nullptr, nullptr}));
        ASSERT_NE(file, nullptr);
        nIni::tDocument document;
        EXPECT_EQ(parseStream(document, file.get()), 0);
        EXPECT_EQ(describe(document), parsed(start));
        EXPECT_TRUE(rest.starts_with("x\n[late]")) << "nothing after the end was asked for";
    }
}

}  // namespace
