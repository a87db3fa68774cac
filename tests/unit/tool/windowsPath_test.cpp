#include "tool/pe/windowsPath.h"

#include <gtest/gtest.h>

namespace nPe {
namespace {

TEST(nPeWindowsPath, LowersOnlyAsciiLetters) { EXPECT_EQ(toLowerAscii("AZaz09@[`{ Ö"), "azaz09@[`{ Ö"); }

TEST(nPeWindowsPath, HasAFolderAndAFileName) {
    const auto expect = [](std::string_view path, std::string_view folder, std::string_view name) {
        EXPECT_EQ(folderOf(path), folder) << path;
        EXPECT_EQ(fileNameOf(path), name) << path;
    };
    expect(R"(C:\a b\c.dll)", R"(C:\a b)", "c.dll");
    expect(R"(C:\a/c.dll)", R"(C:\a)", "c.dll");
    expect(R"(C:\c.dll)", R"(C:\)", "c.dll");
    expect("/c.dll", "/", "c.dll");
    expect("a/c.dll", "a", "c.dll");
    expect(R"(ab\c.dll)", "ab", "c.dll");
    expect("c.dll", "", "c.dll");
    expect("a/", "a", "");
    expect("", "", "");
}

TEST(nPeWindowsPath, IsInsideAFolderWhateverItsCaseAndDetours) {
    const auto inside = [](std::string_view path) { return isInside(partsOf(path), partsOf(R"(C:\P\Q\)")); };
    for (const char* path :
         {R"(C:\P\Q\a.dll)", "c:/p/q/a.dll", R"(C:\P\.\Q\a.dll)", R"(C:\P\R\..\Q\a.dll)", R"(\\?\C:\P\Q)"}) {
        EXPECT_TRUE(inside(path)) << path;
    }
    for (const char* path : {R"(C:\P\Q2\a.dll)", R"(C:\P\a.dll)", R"(C:\P\Q\..\a.dll)", R"(D:\P\Q\a.dll)", ""}) {
        EXPECT_FALSE(inside(path)) << path;
    }
}

TEST(nPeWindowsPath, IsJoinedWithTheSeparatorOfTheFolder) {
    EXPECT_EQ(joined(R"(C:\a)", "b"), R"(C:\a\b)");
    EXPECT_EQ(joined(R"(C:\)", "b"), R"(C:\b)");
    EXPECT_EQ(joined("C:", "b"), R"(C:\b)");
    EXPECT_EQ(joined(R"(\\server\share)", "b"), R"(\\server\share\b)");
    EXPECT_EQ(joined("dist", "b"), "dist/b");
    EXPECT_EQ(joined("/", "b"), "/b");
    EXPECT_EQ(joined("", "b"), "b");
}

TEST(nPeWindowsPath, IsCompletedAsTheLoaderDoes) {
    EXPECT_EQ(withExtension("a"), "a.dll");
    EXPECT_EQ(withExtension("a.exe"), "a.exe");
    EXPECT_EQ(withExtension("a."), "a.");
    EXPECT_EQ(withExtension("a  "), "a.dll");
    EXPECT_EQ(withExtension("a.dll  "), "a.dll");
    EXPECT_EQ(withExtension(R"(C:\x.y\a)"), R"(C:\x.y\a.dll)");
    EXPECT_EQ(withExtension("x.y/a"), "x.y/a.dll");
    EXPECT_EQ(withExtension(""), ".dll");
}

TEST(nPeWindowsPath, IsSearchedForUnlessItBeginsWithADriveOrASeparator) {
    for (const char* const path : {"a.dll", R"(a\b.dll)", R"(.\b.dll)", "../b.dll"}) EXPECT_TRUE(isSearched(path));
    for (const char* const path : {R"(C:\a.dll)", "C:a.dll", R"(\a.dll)", "/a.dll", R"(\\s\a)", ""}) {
        EXPECT_FALSE(isSearched(path)) << path;
    }
}

TEST(nPeWindowsPath, BecomesAbsoluteFromTheCurrentFolder) {
    const auto expect = [](std::string_view path, std::string_view absolute) {
        EXPECT_EQ(absolutePath(path, R"(C:\now)"), absolute) << path;
    };
    expect("a.dll", R"(C:\now\a.dll)");
    expect(R"(b\a.dll)", R"(C:\now\b\a.dll)");
    expect(R"(\a.dll)", R"(C:\a.dll)");
    expect("/a.dll", "C:/a.dll");
    expect("C:a.dll", R"(C:\now\a.dll)");
    expect("c:a.dll", R"(C:\now\a.dll)");
    expect("D:a.dll", R"(D:\a.dll)");
    expect(R"(D:\a.dll)", R"(D:\a.dll)");
    expect("D:/a.dll", "D:/a.dll");
    expect("D:", R"(D:\)");
    expect(R"(\\server\share\a.dll)", R"(\\server\share\a.dll)");
    expect("//server/share/a.dll", "//server/share/a.dll");
    expect("", "C:");
}

TEST(nPeWindowsPath, IsTakenLiterallyIfItIsNative) {
    EXPECT_TRUE(isNative(R"(\??\C:\a.dll)"));
    for (const char* const path : {R"(\\?\C:\a.dll)", R"(\?\a.dll)", "C:\\a.dll", ""}) EXPECT_FALSE(isNative(path));
    EXPECT_EQ(absolutePath(R"(\??\C:\a.dll)", R"(C:\now)"), R"(\\?\C:\a.dll)");
    EXPECT_EQ(partsOf(R"(\??\C:\a.dll)"), (std::vector<std::string>{"C:", "a.dll"}));
}

}  // namespace
}  // namespace nPe
