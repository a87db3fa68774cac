#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// The registry value that names the shared directory.
class SharedDirectory : public EndToEnd {
protected:
    SharedDirectory() { addPlugin("A"); }

    [[nodiscard]] std::wstring shared() const { return (root() / L"shared").native(); }
};

TEST_F(SharedDirectory, IsTheRegistryValueWithoutBlanksAndBackslashesAroundIt) {
    describe(L"bad.ini", "nonsense");
    registry::setSharedDirectory(L" \t" + shared() + L"\\\\ ");
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.names(), "A");
    EXPECT_EQ(status.messages, "Failed to parse service description file: " +
                                   utf8(shared() + L"\\ZiptraRemoteService\\plugins\\bad.ini\n"));
}

TEST_F(SharedDirectory, IsNotFoundWithoutTheKeyAndTheHostEndsByItself) {
    registry::removeKey();
    start().exitCode();
    EXPECT_EQ(tStatusFile::read().messages, "Failed to open plugins directory.\n");
    EXPECT_EQ(calls(), "");
}

TEST_F(SharedDirectory, IsNotExpanded) {
    const tEnvironmentVariable variable(L"ENDTOEND_SHARED", shared());
    registry::setSharedDirectory(L"%ENDTOEND_SHARED%", REG_EXPAND_SZ);
    start().exitCode();
    EXPECT_EQ(tStatusFile::read().messages, "Failed to open plugins directory.\n");
}

// Names of any script, all the way from the registry to the loaded library.

class Scripts : public EndToEnd, public testing::WithParamInterface<const char*> {};

TEST_P(Scripts, ServeForDirectoriesFilesPluginsAndLibraries) {
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

INSTANTIATE_TEST_SUITE_P(Names, Scripts,
                         testing::Values("with blanks in it", "\xE8\xBF\x9C\xE7\xA8\x8B\xE6\x9C\x8D\xE5\x8A\xA1",
                                         "\xF0\x9F\x98\x80", "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", "100% & (more)"));

}  // namespace
}  // namespace endtoend
