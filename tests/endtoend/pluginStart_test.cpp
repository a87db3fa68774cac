#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// Starts a plug-in A. Another plug-in, Z, must start whatever A does.
class pluginStart : public tEndToEnd {
protected:
    pluginStart() { addPlugin("Z"); }

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

TEST_F(pluginStart, ALibraryWhoseOwnLibraryIsMissingFails) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitAnswer", .library = L"dependant.dll"}), -52005);
}

TEST_F(pluginStart, ARelativePathIsLookedUpBesideTheExecutable) {
    addLibrary(besideExecutable(L"besideTheHost.dll"));
    EXPECT_EQ(startCodeOfPath("besideTheHost.dll", "InitWarning3"), 3);
}

// In a process with the default error mode, Windows shows a message box for such a library and waits, unless the host
// prevents it. The host would otherwise inherit the mode of the test program.
TEST_F(pluginStart, ADamagedLibraryFailsWithoutAMessageBox) {
    const tPath damaged = addLibrary(libraries() / L"damaged.dll");
    std::filesystem::resize_file(damaged, std::filesystem::file_size(damaged) / 2);
    startWithDefaultErrorMode();
    EXPECT_EQ(startCodeOfPath(utf8Path(damaged)), -52005);
}

}  // namespace
}  // namespace endtoend
