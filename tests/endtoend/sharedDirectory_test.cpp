#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// The registry value, in whatever form it comes.
class SharedDirectory : public EndToEnd {
protected:
    SharedDirectory() {
        addPlugin("A");
        describe(L"bad.ini", "nonsense");
    }

    /// The plug-ins are found there. How the directory is written shows in what is told of the bad one.
    void expectFound(const std::wstring& directory) {
        startPlugins();
        const tStatusFile status = stop();
        EXPECT_EQ(status.names(), "A");
        EXPECT_EQ(status.messages, "Failed to parse service description file: " +
                                       utf8(directory + L"ZiptraRemoteService\\plugins\\bad.ini\n"));
    }
    void expectFound() { expectFound(shared() + L"\\"); }
    /// Nothing is found, which the status file says, and the host ends by itself.
    void expectNotFound() {
        start().exitCode();
        EXPECT_EQ(tStatusFile::read().messages, "Failed to open plugins directory.\n");
        EXPECT_EQ(tStatusFile::read().names(), "");
        EXPECT_EQ(calls(), "");
    }

    [[nodiscard]] std::wstring shared() const { return (root() / L"shared").native(); }
};

TEST_F(SharedDirectory, BackslashesAtTheEndAreDropped) {
    registry::setSharedDirectory(shared() + L"\\\\\\");
    expectFound();
}

TEST_F(SharedDirectory, BlanksAtBothEndsAreDropped) {
    registry::setSharedDirectory(L" \t" + shared() + L" \t ");
    expectFound();
}

TEST_F(SharedDirectory, ASlashAtTheEndStays) {
    registry::setSharedDirectory(shared() + L"/");
    expectFound(shared() + L"/");
}

TEST_F(SharedDirectory, AValueLongerThanTheFirstBufferIsReadWhole) {
    // The directory comes behind the first 255 characters.
    registry::setSharedDirectory(std::wstring(300, L' ') + shared());
    expectFound();
}

TEST_F(SharedDirectory, AValueThatJustFitsTheFirstBufferIsReadWhole) {
    for (const std::size_t length : {254U, 255U, 256U}) {
        SCOPED_TRACE(length);
        registry::setSharedDirectory(std::wstring(length - shared().size(), L' ') + shared());
        expectFound();
    }
}

TEST_F(SharedDirectory, TheTypeOfTheValueDoesNotMatter) {
    for (const DWORD type : {REG_BINARY, REG_EXPAND_SZ, REG_MULTI_SZ, REG_NONE}) {
        SCOPED_TRACE(type);
        registry::setSharedDirectory(shared(), type);
        expectFound();
    }
}

TEST_F(SharedDirectory, VariablesInTheValueAreNotExpanded) {
    const tEnvironmentVariable variable(L"ENDTOEND_SHARED", shared());
    registry::setSharedDirectory(L"%ENDTOEND_SHARED%", REG_EXPAND_SZ);
    expectNotFound();
}

TEST_F(SharedDirectory, IsNotFoundWithoutTheKey) {
    registry::removeKey();
    expectNotFound();
}

TEST_F(SharedDirectory, IsNotFoundWithoutTheValue) {
    registry::setSharedDirectory(shared());
    registry::removeValue();
    expectNotFound();
}

TEST_F(SharedDirectory, IsNotFoundWhenItDoesNotExist) {
    registry::setSharedDirectory(shared() + L"2");
    expectNotFound();
}

TEST_F(SharedDirectory, IsNotFoundWhenThePluginDirectoryIsAFile) {
    registry::setSharedDirectory((root() / L"other").native());
    std::filesystem::create_directories(root() / L"other" / L"ZiptraRemoteService");
    writeFile(root() / L"other" / L"ZiptraRemoteService" / L"plugins", "");
    expectNotFound();
}

// Names of any script, all the way from the registry to the loaded library.

class Names : public EndToEnd, public testing::WithParamInterface<const char*> {};

TEST_P(Names, OfAnyKindServeForDirectoriesFilesPluginsAndLibraries) {
    const std::string name = GetParam();
    share(root() / wide(name));
    const tPath folder = root() / (L"lib " + wide(name));
    std::filesystem::create_directories(folder);
    addLibrary(folder / wide(name + ".dll"));
    const std::string path = utf8Path(folder / wide(name + ".dll"));
    describe(wide(name + ".ini"), "[Service]\nName=" + name + "\nInitialize=InitWarning3\nPath=" + path);
    describe(wide("bad " + name + ".ini"), "nonsense");
    addPlugin("B", {.dependencies = name});
    startPlugins();
    const tStatusFile status = stop();
    EXPECT_EQ(status.plugin(name).code("InitWarning3"), 3);
    EXPECT_EQ(status.plugin(name).loadedFrom, path);
    EXPECT_EQ(status.plugin("B").dependencies, name);
    EXPECT_EQ(status.plugin("B").code("InitOk"), 0);
    EXPECT_EQ(status.messages, "Failed to parse service description file: " +
                                   utf8Path(descriptions() / wide("bad " + name + ".ini")) + "\n");
}

INSTANTIATE_TEST_SUITE_P(Scripts, Names,
                         testing::Values("with blanks in it", "\xE8\xBF\x9C\xE7\xA8\x8B\xE6\x9C\x8D\xE5\x8A\xA1",
                                         "\xF0\x9F\x98\x80", "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", "100% & (more)"));

}  // namespace
}  // namespace endtoend
