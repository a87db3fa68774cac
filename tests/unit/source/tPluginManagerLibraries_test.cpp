#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "err/Exception.h"
#include "source/tPluginManager.h"
#include "tests/support/plugins.h"

// The manager with real libraries. On Windows each of them has its own C++ runtime.
namespace {

using testing::ElementsAre;

tPluginDescription behaviours(const std::string& initialize, const std::string& stop = "StopOk",
                              const std::string& cleanup = "CleanupOk") {
    tPluginDescription description;
    description.path = support::pluginPath("behaviours");
    description.initialize = initialize;
    description.stop = stop;
    description.cleanup = cleanup;
    return description;
}

/// Starts, stops and cleans up one plug-in, and returns its entry.
tPluginEntry live(const tPluginDescription& description) {
    tPluginManager manager;
    manager.startAll({description}, 1);
    manager.stopAll();
    manager.cleanupAll();
    return manager.entries().at(0);
}

class tPluginManagerLibraries : public testing::Test {
protected:
    /// Unloads a library that a throwing clean-up has left loaded.
    static void unload(tPluginEntry entry) { entry.library.close(); }

    /// The same for a library without an entry: obtains its handle by loading it again.
    static void unloadOnceMore(const char* name) {
        std::uint32_t osError = 0;
        const nLibrary::tHandle library = nLibrary::load(support::pluginPath(name).c_str(), osError);
        EXPECT_TRUE(nLibrary::unload(library, osError) && nLibrary::unload(library, osError));
    }

    support::tPluginLog log_;
};

TEST_F(tPluginManagerLibraries, AWellBehavedPluginIsStartedStoppedAndCleanedUp) {
    const tPluginEntry entry = live(behaviours("InitOk"));
    EXPECT_EQ(entry.initCode, 0);
    EXPECT_EQ(entry.stopCode, 0);
    EXPECT_EQ(entry.cleanupCode, 0);
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours InitOk", "behaviours StopOk",
                                          "behaviours CleanupOk", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, AWarningIsKept) { EXPECT_EQ(live(behaviours("InitWarning3")).initCode, 3); }

TEST_F(tPluginManagerLibraries, AFailingPluginIsUnloadedAtOnce) {
    const tPluginEntry entry = live(behaviours("InitFails7"));
    EXPECT_EQ(entry.initCode, -7);
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours InitFails7", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, TheResultsOfStopAndCleanupAreIgnored) {
    const tPluginEntry entry = live(behaviours("InitOk", "StopReturnsMinus9", "CleanupReturnsMinus9"));
    EXPECT_EQ(entry.stopCode, 0);
    EXPECT_EQ(entry.cleanupCode, 0);
}

TEST_F(tPluginManagerLibraries, AMissingEntryFailsThePluginAndUnloadsIt) {
    EXPECT_EQ(live(behaviours("InitOk", "NoSuchEntry")).initCode, -52005);
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, ALibraryThatRefusesToLoadFailsThePlugin) {
    tPluginDescription description;
    description.path = support::pluginPath("refusing");
    EXPECT_EQ(live(description).initCode, -52005);
}

TEST_F(tPluginManagerLibraries, AMissingFileFailsThePlugin) {
    tPluginDescription description;
    description.path = support::pluginPath("no such library");
    EXPECT_EQ(live(description).initCode, -52005);
}

TEST_F(tPluginManagerLibraries, AnExceptionFromThePluginsRuntimeIsRecognisedInOurs) {
    EXPECT_EQ(live(behaviours("InitThrowsRuntimeError")).initCode, -52003);
    EXPECT_EQ(live(behaviours("InitThrowsBadAlloc")).initCode, -52000);
    EXPECT_EQ(live(behaviours("InitThrowsOwnException")).initCode, -52003);
    EXPECT_EQ(live(behaviours("InitOk", "StopThrowsRuntimeError")).stopCode, -52003);
    EXPECT_EQ(live(behaviours("InitOk", "StopThrowsBadAlloc")).stopCode, -52000);
    EXPECT_EQ(live(behaviours("InitOk", "StopThrowsOwnException")).stopCode, -52003);
}

TEST_F(tPluginManagerLibraries, AnExceptionIsDestroyedBeforeItsLibraryIsUnloaded) {
    live(behaviours("InitThrowsOwnException"));
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours InitThrowsOwnException",
                                          "behaviours destroys its exception", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, APluginIsCleanedUpEvenAfterAnExceptionFromStop) {
    live(behaviours("InitOk", "StopThrowsOwnException"));
    EXPECT_THAT(log_.lines(),
                ElementsAre("behaviours loads", "behaviours InitOk", "behaviours StopThrowsOwnException",
                            "behaviours destroys its exception", "behaviours CleanupOk", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, AnExceptionFromCleanupLeavesItsLibraryLoaded) {
    for (const char* const cleanup : {"CleanupThrowsRuntimeError", "CleanupThrowsOwnException"}) {
        const tPluginEntry entry = live(behaviours("InitOk", "StopOk", cleanup));
        EXPECT_EQ(entry.cleanupCode, -52003);
        EXPECT_EQ(entry.library.loaded, 1);
        unload(entry);
    }
    const tPluginEntry entry = live(behaviours("InitOk", "StopOk", "CleanupThrowsBadAlloc"));
    EXPECT_EQ(entry.cleanupCode, -52000);
    EXPECT_EQ(entry.library.loaded, 1);
    unload(entry);
}

TEST_F(tPluginManagerLibraries, AnExceptionOfUnknownTypeFromInitializeIsPassedOnWithTheLibraryLoaded) {
    // The exception is caught outside the product, so the test needs its own guard.
    const zuerr::ForeignCallGuard guard;
    tPluginManager manager;
    EXPECT_THROW(manager.startAll({behaviours("InitThrowsInt")}, 1), int);
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours InitThrowsInt"));
    unloadOnceMore("behaviours");
}

TEST_F(tPluginManagerLibraries, AnExceptionOfUnknownTypeFromStopOrCleanupIsPassedOn) {
    const zuerr::ForeignCallGuard guard;
    tPluginManager manager;
    manager.startAll({behaviours("InitOk", "StopThrowsInt", "CleanupThrowsInt")}, 1);
    EXPECT_THROW(manager.stopAll(), int);
    EXPECT_THROW(manager.cleanupAll(), int);
    unload(manager.entries().at(0));
}

TEST_F(tPluginManagerLibraries, PropagationIsDetectedCorrectlyAfterHundredsOfPluginExceptions) {
    constexpr int rounds = 100;
    for (int round = 0; round < rounds; ++round) {
        live(behaviours("InitThrowsOwnException"));
        unload(live(behaviours("InitOk", "StopThrowsRuntimeError", "CleanupThrowsBadAlloc")));
    }
    EXPECT_FALSE(zuerr::ExceptionIsPropagating());
    EXPECT_EQ(live(behaviours("NoSuchEntry")).initCode, -52005) << "a failure must still be thrown";

    struct CleanUp {
        ~CleanUp() { EXPECT_TRUE(zuerr::ExceptionIsPropagating()) << "a failure must not be thrown now"; }
    };
    EXPECT_THROW(
        {
            const CleanUp cleanUp;
            throw std::runtime_error("propagating");
        },
        std::runtime_error);
}

TEST_F(tPluginManagerLibraries, OnePluginsExceptionDoesNotAffectTheOthers) {
    tPluginDescription first = behaviours("InitOk");
    first.name = "first";
    tPluginDescription second = behaviours("InitThrowsOwnException");
    second.name = "second";
    tPluginDescription third = behaviours("InitOk", "StopThrowsOwnException");
    third.name = "third";
    third.dependencies = {"first"};
    tPluginDescription fourth = behaviours("InitOk");
    fourth.dependencies = {"second"};
    tPluginManager manager;
    manager.startAll({first, second, third, fourth}, 1);
    manager.stopAll();
    manager.cleanupAll();
    EXPECT_EQ(manager.entries()[0].initCode, 0);
    EXPECT_EQ(manager.entries()[1].initCode, -52003);
    EXPECT_EQ(manager.entries()[2].initCode, 0);
    EXPECT_EQ(manager.entries()[2].stopCode, -52003);
    EXPECT_EQ(manager.entries()[3].initCode, -52006);
    EXPECT_THAT(log_.lines(), testing::Contains("behaviours unloads").Times(1))
        << "one library, unloaded with its last reference";
}

TEST_F(tPluginManagerLibraries, APathMayContainAnyName) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(support::pluginPath("behaviours")).parent_path() / u8"插件 Blüte";
    fs::create_directories(folder);
    const fs::path copy = folder / u8"名前 ö.library";
    fs::copy_file(support::pluginPath("behaviours"), copy, fs::copy_options::overwrite_existing);
    tPluginDescription description = behaviours("InitOk");
    const std::u8string path = copy.u8string();
    description.path = std::string(path.begin(), path.end());
    EXPECT_EQ(live(description).initCode, 0);
    EXPECT_THAT(log_.lines(), testing::Contains("\xE5\x90\x8D\xE5\x89\x8D \xC3\xB6 InitOk"));
    fs::remove_all(folder);
}

}  // namespace
