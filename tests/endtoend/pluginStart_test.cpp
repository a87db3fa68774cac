#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// What becomes of a plug-in A. Another plug-in, Z, must start whatever A does.
class PluginStart : public EndToEnd {
protected:
    PluginStart() { addPlugin("Z"); }

    /// The code of A's start.
    std::int32_t startCodeOfA(const tPlugin& plugin) {
        addPlugin("A", plugin);
        return startCode(plugin.initialize);
    }
    std::int32_t startCodeOfPath(const std::string& path, const std::string& initialize = "InitOk") {
        describe(L"A.ini", "[Service]\nName=A\nPath=" + path + "\nInitialize=" + initialize + "\n");
        return startCode(initialize);
    }

private:
    std::int32_t startCode(const std::string& initialize) {
        const tStatusFile status = runThrough();
        EXPECT_THAT(calls(), testing::HasSubstr("Z InitOk\n"));
        return status.plugin("A").code(initialize);
    }
};

TEST_F(PluginStart, ALibraryWhoseOwnLibraryIsMissingFails) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitAnswer", .library = L"dependant.dll"}), -52005);
}

TEST_F(PluginStart, ARelativePathIsLookedUpBesideTheExecutable) {
    addLibrary(besideExecutable(L"besideTheHost.dll"));
    EXPECT_EQ(startCodeOfPath("besideTheHost.dll", "InitWarning3"), 3);
}

TEST_F(PluginStart, AFeatureThatIsNotAllowedFailsBeforeTheLibraryIsLoaded) {
    EXPECT_EQ(startCodeOfA({.requires_ = "0"}), -52002);
    EXPECT_THAT(calls(), testing::Not(testing::HasSubstr("A loads")));
}

TEST_F(PluginStart, AnErrorOfTheHostsOwnTypeKeepsItsCode) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitRaisesInsufficientPermissions", .library = L"raising.dll"}), -52026);
}

// With the error mode that a process has by default, Windows shows a message box for such a library and waits, unless
// the host forbids it. A test program's own mode would hide that: processes inherit it.
TEST_F(PluginStart, ADamagedLibraryFailsAndNobodyHasToAnswerAMessageBox) {
    const tPath damaged = addLibrary(libraries() / L"damaged.dll");
    std::filesystem::resize_file(damaged, std::filesystem::file_size(damaged) / 2);
    startWithDefaultErrorMode();
    EXPECT_EQ(startCodeOfPath(utf8Path(damaged)), -52005);
}

}  // namespace
}  // namespace endtoend
