#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "source/tPluginManager.h"
#include "tests/support/plugins.h"

// The manager with real libraries. On Windows each of them carries a C++ runtime of its own.
namespace {

using support::pluginDescription;
using testing::ElementsAre;

/// The whole life of one plug-in.
tPluginEntry live(const tPluginDescription& description) {
    tPluginManager manager;
    manager.startAll({description}, 1);
    manager.stopAll();
    manager.cleanupAll();
    return manager.entries().at(0);
}

class tPluginManagerLibraries : public testing::Test {
protected:
    support::tPluginLog log_;
};

TEST_F(tPluginManagerLibraries, AWellBehavedPluginLivesItsLife) {
    const tPluginEntry entry = live(pluginDescription("behaviours", "InitOk", "StopOk", "CleanupOk"));
    EXPECT_EQ(entry.initCode, 0);
    EXPECT_EQ(entry.stopCode, 0);
    EXPECT_EQ(entry.cleanupCode, 0);
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours InitOk", "behaviours StopOk",
                                          "behaviours CleanupOk", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, WhatStopAndCleanupReturnIsIgnored) {
    const tPluginEntry entry =
        live(pluginDescription("behaviours", "InitOk", "StopReturnsMinus9", "CleanupReturnsMinus9"));
    EXPECT_EQ(entry.stopCode, 0);
    EXPECT_EQ(entry.cleanupCode, 0);
}

TEST_F(tPluginManagerLibraries, AnExceptionIsDestroyedByItsLibraryBeforeThatIsUnloaded) {
    live(pluginDescription("behaviours", "InitThrowsOwnException"));
    EXPECT_THAT(log_.lines(), ElementsAre("behaviours loads", "behaviours InitThrowsOwnException",
                                          "behaviours destroys its exception", "behaviours unloads"));
}

TEST_F(tPluginManagerLibraries, APathMayHoldAnyName) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(support::pluginPath("behaviours")).parent_path() / u8"插件 Blüte";
    fs::create_directories(folder);
    const fs::path copy = folder / u8"名前 ö.library";
    fs::copy_file(support::pluginPath("behaviours"), copy, fs::copy_options::overwrite_existing);
    tPluginDescription description = pluginDescription("behaviours", "InitOk");
    const std::u8string path = copy.u8string();
    description.path = std::string(path.begin(), path.end());
    EXPECT_EQ(live(description).initCode, 0);
    EXPECT_THAT(log_.lines(), testing::Contains("\xE5\x90\x8D\xE5\x89\x8D \xC3\xB6 InitOk"));
    fs::remove_all(folder);
}

}  // namespace
