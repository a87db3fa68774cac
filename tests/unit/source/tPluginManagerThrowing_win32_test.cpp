// Plug-ins that fail while the system loads or unloads them. See tests/plugins/faulting.
#include <gtest/gtest.h>

#include <string>

#include "err/Exception.h"
#include "source/tPluginManager.h"
#include "tests/support/plugins.h"

namespace {

class tPluginManagerFaulting : public testing::Test {
protected:
    void TearDown() override { support::setEnvironment("TEST_FAULT", ""); }

    /// Starts, stops and cleans up a faulting plug-in between two others, whose codes must be 0.
    const tPluginEntry& live(const char* fault) {
        support::setEnvironment("TEST_FAULT", fault);
        const tPluginDescription other = support::pluginDescription("behaviours", "");
        manager.startAll({other, support::pluginDescription("faulting", "InitOk"), other}, 1);
        manager.stopAll();
        manager.cleanupAll();
        for (const tPluginEntry& entry : {manager.entries().front(), manager.entries().back()}) {
            EXPECT_EQ(entry.initCode, 0);
            EXPECT_EQ(entry.cleanupCode, 0);
        }
        return manager.entries()[1];
    }

    tPluginManager manager;
};

TEST_F(tPluginManagerFaulting, AFaultDuringLoadingIsAFailedLoad) {
    for (const char* const fault :
         {"fault while loading", "throw while loading", "throw something while loading", "fault while loading"}) {
        manager = {};
        EXPECT_EQ(live(fault).initCode, -52005) << fault;
        EXPECT_EQ(manager.entries()[1].library.loaded, 0) << fault;
        EXPECT_FALSE(zuerr::ExceptionIsPropagating()) << fault;
    }
}

TEST_F(tPluginManagerFaulting, AFaultDuringUnloadingIsIgnored) {
    const tPluginEntry& entry = live("fault while unloading");
    EXPECT_EQ(entry.initCode, 0);
    EXPECT_EQ(entry.cleanupCode, 0);
    EXPECT_EQ(entry.library.loaded, 0);
}

TEST_F(tPluginManagerFaulting, ALibraryCanBeLoadedOnceItNoLongerFaults) {
    live("throw while loading");
    manager = {};
    EXPECT_EQ(live("").initCode, 0);
}

}  // namespace
