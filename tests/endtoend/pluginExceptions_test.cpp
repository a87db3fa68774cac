#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

using testing::HasSubstr;

/// The test plug-ins carry a C++ runtime of their own, whose exceptions the host has to deal with all the same.
class PluginExceptions : public EndToEnd {
protected:
    /// A plug-in whose library is the one given, not a copy of its own.
    void describePlugin(const std::string& name, const tPath& library, const std::string& keys) const {
        describe(wide(name + ".ini"), "[Service]\nName=" + name + "\nPath=" + utf8Path(library) + "\n" + keys);
    }
};

struct tThrown {
    const char* kind;
    std::int32_t code;
};
constexpr tThrown thrown[] = {{"RuntimeError", -52003}, {"BadAlloc", -52000}, {"OwnException", -52003}};

TEST_F(PluginExceptions, FailTheStartOfThePluginThatThrows) {
    for (const tThrown& each : thrown) addPlugin(each.kind, {.initialize = std::string("InitThrows") + each.kind});
    addPlugin("Z");
    const tStatusFile status = runThrough();
    for (const tThrown& each : thrown) {
        EXPECT_EQ(status.plugin(each.kind).code(std::string("InitThrows") + each.kind), each.code) << each.kind;
        EXPECT_THAT(calls(), HasSubstr(std::string(each.kind) + " unloads\n"));
    }
    EXPECT_THAT(calls(), HasSubstr("Z InitOk\n"));
}

TEST_F(PluginExceptions, OfStopAreKeptAndTheOthersAreStoppedAllTheSame) {
    addPlugin("A", {.stop = "StopOk"});
    for (const tThrown& each : thrown) addPlugin(each.kind, {.stop = std::string("StopThrows") + each.kind});
    const tStatusFile status = runThrough();
    for (const tThrown& each : thrown) {
        EXPECT_EQ(status.plugin(each.kind).code(std::string("StopThrows") + each.kind), each.code) << each.kind;
    }
    EXPECT_THAT(calls(), HasSubstr("A StopOk\n"));
}

TEST_F(PluginExceptions, OfCleanupAreKeptAndTheLibraryStaysLoaded) {
    addPlugin("A", {.cleanup = "CleanupOk"});
    for (const tThrown& each : thrown) addPlugin(each.kind, {.cleanup = std::string("CleanupThrows") + each.kind});
    const tStatusFile status = runThrough();
    for (const tThrown& each : thrown) {
        EXPECT_EQ(status.plugin(each.kind).code(std::string("CleanupThrows") + each.kind), each.code) << each.kind;
    }
    // The libraries left go in the end of the process, after the orderly unload of A.
    EXPECT_THAT(calls(), HasSubstr("A CleanupOk\nA unloads\n"));
}

TEST_F(PluginExceptions, AreDestroyedBeforeTheirLibraryIsUnloaded) {
    addPlugin("A", {.initialize = "InitThrowsOwnException"});
    runThrough();
    EXPECT_EQ(calls(), "A loads\nA InitThrowsOwnException\nA destroys its exception\nA unloads\n");
}

TEST_F(PluginExceptions, HundredsOfThemLeaveTheHostJudgingRightly) {
    // After each of them a failed look-up has to be thrown inside the host, which must not take the plug-in's past
    // exception for one that is still on its way.
    const tPath library = addLibrary(libraries() / L"shared.dll");
    const char* const initialize[] = {"InitThrowsRuntimeError", "InitThrowsBadAlloc", "InitThrowsOwnException"};
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(1000 + i);
        describePlugin("A" + number, library, std::string("Initialize=") + initialize[i % 3]);
        describePlugin("A" + number + "lacks", library, "Initialize=NoSuchEntry");
    }
    startPlugins();
    const tStatusFile status = stop();
    for (int i = 0; i < count; ++i) {
        const std::string name = "A" + std::to_string(1000 + i);
        ASSERT_EQ(status.plugin(name).code(initialize[i % 3]), i % 3 == 1 ? -52000 : -52003) << name;
        ASSERT_EQ(status.plugin(name + "lacks").code("NoSuchEntry"), -52005) << name;
    }
}

TEST_F(PluginExceptions, HundredsDuringTheStopLeaveTheStatusFileRight) {
    const tPath library = addLibrary(libraries() / L"shared.dll");
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        describePlugin("A" + std::to_string(1000 + i), library,
                       "Stop=StopThrowsOwnException\nCleanup=CleanupThrowsBadAlloc");
    }
    startPlugins();
    for (const tPluginStatus& plugin : stop().plugins) {
        ASSERT_EQ(plugin.code("StopThrowsOwnException"), -52003) << plugin.name;
        ASSERT_EQ(plugin.code("CleanupThrowsBadAlloc"), -52000) << plugin.name;
    }
}

// A type that derives from no std::exception ends the process.

class UnknownException : public EndToEnd {
protected:
    /// Ends by the exception. What the status file showed before is what it shows in the end.
    void expectDeathWhenStopped(const tPlugin& plugin) {
        addPlugin("A", {.initialize = "InitWarning3"});
        addPlugin("B", plugin);
        const std::string before = startPlugins().bytes;
        process().interrupt();
        EXPECT_NE(process().exitCode(), 0u);
        EXPECT_EQ(tStatusFile::read().bytes, before);
    }
};

TEST_F(UnknownException, FromInitializeEndsTheProcess) {
    addPlugin("A", {.initialize = "InitThrowsInt"});
    EXPECT_NE(start().exitCode(), 0u);
    EXPECT_EQ(tStatusFile::read().names(), "");
    EXPECT_EQ(tStatusFile::read().allowed, "0xffffffff");
}

TEST_F(UnknownException, FromStopEndsTheProcessAndLosesNothingOfTheStatusFile) {
    expectDeathWhenStopped({.stop = "StopThrowsInt"});
}

TEST_F(UnknownException, FromCleanupEndsTheProcessAndLosesNothingOfTheStatusFile) {
    expectDeathWhenStopped({.cleanup = "CleanupThrowsInt"});
}

TEST_F(UnknownException, EndsAServiceToo) {
    addPlugin("A", {.stop = "StopThrowsInt"});
    tInstalledService service(executable());
    service.start();
    service.waitForState(SERVICE_RUNNING);
    EXPECT_EQ(service.control(SERVICE_CONTROL_STOP), 0u);
    EXPECT_TRUE(becomesTrue([&] { return !service.processRunning(); }));
}

// So does what is no C++ exception at all: nothing in the host takes it for one, and its code is the exit code.

struct tStructured {
    const char* entry;
    DWORD code;
};

class StructuredException : public EndToEnd, public testing::WithParamInterface<tStructured> {
protected:
    /// Ends by the exception. What the status file showed before is what it shows in the end.
    void expectDeathWhenStopped(const tPlugin& plugin) {
        addPlugin("A", {.initialize = "InitWarning3"});
        addPlugin("B", plugin);
        const std::string before = startPlugins().bytes;
        process().interrupt();
        EXPECT_EQ(process().exitCode(), GetParam().code);
        EXPECT_EQ(tStatusFile::read().bytes, before);
    }
};

TEST_P(StructuredException, FromInitializeEndsTheProcessAndLeavesTheStatusFileOfThePreparation) {
    addPlugin("A", {.initialize = "InitWarning3"});
    addPlugin("B", {.initialize = GetParam().entry, .library = L"raising.dll"});
    EXPECT_EQ(start().exitCode(), GetParam().code);
    EXPECT_EQ(tStatusFile::read().names(), "");
    EXPECT_EQ(tStatusFile::read().allowed, "0xffffffff");
}

TEST_P(StructuredException, FromStopEndsTheProcessAndLosesNothingOfTheStatusFile) {
    expectDeathWhenStopped({.initialize = "", .stop = GetParam().entry, .library = L"raising.dll"});
}

TEST_P(StructuredException, FromCleanupEndsTheProcessAndLosesNothingOfTheStatusFile) {
    expectDeathWhenStopped({.initialize = "", .cleanup = GetParam().entry, .library = L"raising.dll"});
}

INSTANTIATE_TEST_SUITE_P(Kinds, StructuredException,
                         testing::Values(tStructured{"Faults", EXCEPTION_ACCESS_VIOLATION},
                                         tStructured{"RaisesItsOwnCode", 0xE0000001},
                                         tStructured{"RaisesAnotherCompilersException", 0xE06D7363}),
                         [](const auto& test) { return std::string(test.param.entry); });

}  // namespace
}  // namespace endtoend
