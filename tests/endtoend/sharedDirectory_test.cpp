#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

class sharedDirectory : public tEndToEnd {};

TEST_F(sharedDirectory, MayHaveAPathOfMoreThan256Characters) {
    // Windows requires this prefix for such paths, unless the machine was told to do without.
    const tPath directory = LR"(\\?\)" + (root() / std::wstring(120, L'd')).native();
    share(directory / std::wstring(120, L'e'));
    ASSERT_GT(descriptions().native().size(), 256u);
    addPlugin("A");
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.plugin("A").code("InitOk"), 0);
    EXPECT_EQ(status.messages, "");
}

/// Names in any script, from the registry to the loaded library.
class sharedDirectoryScripts : public tEndToEnd, public testing::WithParamInterface<const char*> {};

TEST_P(sharedDirectoryScripts, MayBeUsedForDirectoriesFilesPluginsAndLibraries) {
    const std::string name = GetParam();
    share(root() / wide(name));
    const tPath folder = root() / (L"lib " + wide(name));
    std::filesystem::create_directories(folder);
    addLibrary(folder / wide(name + ".dll"));
    const std::string path = utf8Path(folder / wide(name + ".dll"));
    describe(wide(name + ".ini"), "[Service]\nName=" + name + "\nInitialize=InitWarning3\nPath=" + path);
    describe(wide("bad " + name + ".ini"), "nonsense");
    addPlugin("B", {.dependencies = name});
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.plugin(name).code("InitWarning3"), 3);
    EXPECT_EQ(status.plugin(name).loadedFrom, path);
    EXPECT_EQ(status.plugin("B").dependencies, name);
    EXPECT_EQ(status.plugin("B").code("InitOk"), 0);
    EXPECT_EQ(status.messages, "Failed to parse service description file: " +
                                   utf8Path(descriptions() / wide("bad " + name + ".ini")) + "\n");
}

INSTANTIATE_TEST_SUITE_P(Names, sharedDirectoryScripts,
                         testing::Values("with blanks in it", "\xE8\xBF\x9C\xE7\xA8\x8B\xE6\x9C\x8D\xE5\x8A\xA1",
                                         "\xF0\x9F\x98\x80", "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", "100% & (more)"));

}  // namespace
}  // namespace endtoend
