#include <gmock/gmock.h>

#include <sstream>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Beside whatever a plug-in A does, a plug-in Z starts.
class PluginStart : public EndToEnd {
protected:
    PluginStart() { addPlugin("Z"); }

    /// Hosts A and gives the code of its start.
    std::int32_t startCodeOfA(const tPlugin& plugin) {
        addPlugin("A", plugin);
        return startCode(plugin.initialize);
    }

    /// For an A that is described already.
    std::int32_t startCode(const std::string& initialize) {
        startPlugins();
        const tStatusFile status = stop();
        EXPECT_THAT(calls(), HasSubstr("Z InitOk\n"));
        return status.plugin("A").code(initialize.empty() ? "Init" : initialize);
    }

    /// A's description with another library path.
    std::int32_t startCodeOfPath(const std::string& path, const std::string& initialize = "InitOk") {
        describe(L"A.ini", "[Service]\nName=A\nPath=" + path + "\nInitialize=" + initialize + "\n");
        return startCode(initialize);
    }

    /// What of the call log is about A.
    [[nodiscard]] std::string callsOfA() const {
        std::string result;
        std::istringstream lines(calls());
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("A ")) result += line.substr(2) + "; ";
        }
        return result;
    }
};

TEST_F(PluginStart, ASuccessIsZeroAndEachEntryIsCalledOnce) {
    EXPECT_EQ(startCodeOfA({.stop = "StopOk", .cleanup = "CleanupOk"}), 0);
    EXPECT_EQ(callsOfA(), "loads; InitOk; StopOk; CleanupOk; unloads; ");
}

TEST_F(PluginStart, AWarningCountsAsStartedAndIsKept) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitWarning3", .stop = "StopOk"}), 3);
    EXPECT_EQ(callsOfA(), "loads; InitWarning3; StopOk; unloads; ");
}

TEST_F(PluginStart, ANegativeResultIsKeptAndUnloadsThePluginForGood) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitFails7", .stop = "StopOk", .cleanup = "CleanupOk"}), -7);
    EXPECT_EQ(callsOfA(), "loads; InitFails7; unloads; ");
}

TEST_F(PluginStart, WithoutEntriesThereIsOnlyALibraryToLoad) {
    EXPECT_EQ(startCodeOfA({.initialize = ""}), 0);
    EXPECT_EQ(callsOfA(), "loads; unloads; ");
}

TEST_F(PluginStart, WhatStopAndCleanupReturnDoesNotMatter) {
    addPlugin("A", {.stop = "StopReturnsMinus9", .cleanup = "CleanupReturnsMinus9"});
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.plugin("A").code("StopReturnsMinus9"), 0);
    EXPECT_EQ(status.plugin("A").code("CleanupReturnsMinus9"), 0);
    EXPECT_EQ(callsOfA(), "loads; InitOk; StopReturnsMinus9; CleanupReturnsMinus9; unloads; ");
}

TEST_F(PluginStart, AMissingEntryFailsAndNothingOfThePluginIsCalled) {
    for (const tPlugin& plugin : {tPlugin{.initialize = "NoSuchEntry"}, tPlugin{.stop = "NoSuchEntry"},
                                  tPlugin{.cleanup = "NoSuchEntry"}, tPlugin{.initialize = "initok"}}) {
        std::filesystem::remove(libraries() / L"A.dll");
        std::filesystem::remove(root() / L"calls");
        EXPECT_EQ(startCodeOfA(plugin), -52005);
        EXPECT_EQ(callsOfA(), "loads; unloads; ");
    }
}

TEST_F(PluginStart, ALibraryThatRefusesToBeLoadedFails) {
    EXPECT_EQ(startCodeOfA({.initialize = "", .library = L"refusing.dll"}), -52005);
}

TEST_F(PluginStart, AMissingLibraryFails) { EXPECT_EQ(startCodeOfPath(utf8Path(libraries() / L"none.dll")), -52005); }

TEST_F(PluginStart, ADescriptionWithoutAPathFails) { EXPECT_EQ(startCodeOfPath(""), -52005); }

TEST_F(PluginStart, AFileThatIsNoLibraryFails) {
    writeFile(libraries() / L"text.dll", "not a library");
    EXPECT_EQ(startCodeOfPath(utf8Path(libraries() / L"text.dll")), -52005);
}

TEST_F(PluginStart, ALibraryFindsTheLibrariesThatItNeedsInItsOwnFolder) {
    addLibrary(libraries() / L"neighbour.dll", L"neighbour.dll");
    EXPECT_EQ(startCodeOfA({.initialize = "InitAnswer", .library = L"dependant.dll"}), 42);
}

TEST_F(PluginStart, ALibraryWhoseOwnLibraryIsMissingFails) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitAnswer", .library = L"dependant.dll"}), -52005);
}

TEST_F(PluginStart, ARelativePathIsLookedUpBesideTheExecutable) {
    addLibrary(executable().parent_path() / L"besideTheHost.dll");
    EXPECT_EQ(startCodeOfPath("besideTheHost.dll", "InitWarning3"), 3);
}

TEST_F(PluginStart, AFeatureThatIsNotAllowedFailsBeforeTheLibraryIsLoaded) {
    EXPECT_EQ(startCodeOfA({.requires_ = "0"}), -52002);
    EXPECT_EQ(callsOfA(), "");
}

TEST_F(PluginStart, AnErrorOfTheHostsOwnTypeKeepsItsCode) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitRaisesOsFault", .library = L"raising.dll"}), -52008);
}

TEST_F(PluginStart, AnotherErrorOfTheHostsOwnTypeKeepsItsCode) {
    EXPECT_EQ(startCodeOfA({.initialize = "InitRaisesInsufficientPermissions", .library = L"raising.dll"}), -52026);
}

// What "Requires" may say, with everything allowed and with deployment (bit value 2) not allowed.

struct tRequirement {
    std::string text;
    std::string mask;
    std::int32_t code;
    std::int32_t codeWithoutDeployment;
};
const tRequirement requirements[] = {
    {"0", "0", -52002, -52002},
    {"1", "1", 0, 0},
    {"2", "2", 0, -52002},
    {"3", "3", 0, 0},
    {"-1", "4294967295", 0, 0},
    {"4294967295", "4294967295", 0, 0},
    {"2147483648", "2147483648", 0, 0},
    {"2x", "2", 0, -52002},
    {"deployment", "0", -52002, -52002},
    {"\"  2\"", "2", 0, -52002},
};

class Requires : public EndToEnd {
protected:
    void expectCodes(std::int32_t tRequirement::*code) {
        int number = 0;
        for (const tRequirement& requirement : requirements) {
            addPlugin("P" + std::to_string(number++), {.requires_ = requirement.text});
        }
        const tStatusFile status = runThrough();
        number = 0;
        for (const tRequirement& requirement : requirements) {
            const tPluginStatus& plugin = status.plugin("P" + std::to_string(number++));
            EXPECT_EQ(plugin.requiresMask, requirement.mask) << requirement.text;
            EXPECT_EQ(plugin.code("InitOk"), requirement.*code) << requirement.text;
        }
    }
};

TEST_F(Requires, MustShareABitWithWhatIsAllowed) { expectCodes(&tRequirement::code); }

TEST_F(Requires, DeploymentAloneIsNotEnoughWhereItIsNotAllowed) {
    const tEnvironmentVariable notAllowed(L"ZUSYSAPI_SETTING", L"0");
    expectCodes(&tRequirement::codeWithoutDeployment);
}

TEST_F(Requires, IsOneWhenNothingIsSaid) {
    addPlugin("A");
    describe(L"B.ini", "[Service]\nName=B\nRequires=\n");
    startPlugins();
    const tStatusFile status = stop();
    EXPECT_EQ(status.plugin("A").requiresMask, "1");
    EXPECT_EQ(status.plugin("B").requiresMask, "1");
}

}  // namespace
}  // namespace endtoend
