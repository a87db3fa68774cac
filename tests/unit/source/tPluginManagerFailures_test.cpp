#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "err/Exception.h"
#include "tests/support/allocations.h"
#include "tests/support/exceptions.h"
#include "tests/support/managerTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class tPluginManagerFailures : public support::tManagerTest {};

// Memory that runs out, at each request in turn.

TEST_F(tPluginManagerFailures, APluginWithoutMemoryFailsAloneAndBeforeItIsInitialised) {
    std::vector<tPluginDescription> descriptions = {describe("A"), describe("B")};
    for (tPluginDescription& description : descriptions) description.name += ", which does not fit a small buffer";
    int lost = 0;
    bool struck = true;
    for (int nth = 1; struck; ++nth) {
        tPluginManager manager;
        plugins_.calls.clear();
        allocations::startFailing(nth, allocations::tHowLong::once);
        try {
            manager.startAll(descriptions, 1);
        } catch (const std::bad_alloc&) {
            EXPECT_THAT(plugins_.calls, IsEmpty()) << "there was no memory for the entries";
        }
        struck = allocations::stopFailing().refused > 0;
        std::vector<std::string> initialised;
        for (const tPluginEntry& entry : manager.entries()) {
            if (entry.initCode == 0) initialised.push_back(entry.description.path + " Init");
            if (entry.initCode == -52000) ++lost;
        }
        EXPECT_EQ(plugins_.callsOf("call"), initialised) << nth;
        manager.cleanupAll();
        EXPECT_EQ(plugins_.plugin("A").references + plugins_.plugin("B").references, 0) << nth;
    }
    EXPECT_GE(lost, 2);
}

// Libraries and Initialize entries that fail.

TEST_F(tPluginManagerFailures, ALibraryThatDoesNotLoadIsNotUnloaded) {
    plugins_.plugin("A").loads = false;
    start({describe("A")});
    EXPECT_THAT(initCodes(), ElementsAre(-52005));
    EXPECT_THAT(plugins_.calls, ElementsAre("load A"));
    EXPECT_THAT(reports_.texts, ElementsAre(R"({"file":"zukest/quarks/library","line":134,"component":"zuZiptraR"})"));
}

TEST_F(tPluginManagerFailures, ALibraryThatLacksAnEntryIsUnloadedWithoutACallIntoIt) {
    plugins_.plugin("A").missing = {"Stop"};
    start({describe("A")});
    EXPECT_THAT(initCodes(), ElementsAre(-52005));
    EXPECT_THAT(plugins_.calls, ElementsAre("load A", "symbol A Init", "symbol A Stop", "unload A"));
    EXPECT_THAT(reports_.texts, ElementsAre(R"({"file":"zukest/quarks/library","line":299,"component":"zuZiptraR"})"));
}

TEST_F(tPluginManagerFailures, ANegativeInitializeResultIsReportedAsThePluginsOwn) {
    plugins_.plugin("A").initialize = [] { return -7; };
    start({describe("A")});
    EXPECT_THAT(reports_.texts,
                ElementsAre(R"({"error_constant":"pluginStatus",)"
                            R"("file":".\\source\\tPluginManager","line":55,"component":"zuZiptraRemoteService"})"));
}

TEST_F(tPluginManagerFailures, TheSmallestInitializeResultIsKeptAsItIs) {
    plugins_.plugin("A").initialize = [] { return INT32_MIN; };
    start({describe("A")});
    EXPECT_THAT(initCodes(), ElementsAre(INT32_MIN));
}

TEST_F(tPluginManagerFailures, AFailedPluginIsNeitherStoppedNorCleanedUp) {
    plugins_.plugin("A").initialize = [] { return -7; };
    start({describe("A")});
    plugins_.calls.clear();
    stopAndCleanUp();
    EXPECT_THAT(plugins_.calls, IsEmpty());
    EXPECT_THAT(stopCodes(), ElementsAre(0));
    EXPECT_THAT(cleanupCodes(), ElementsAre(0));
    EXPECT_THAT(initCodes(), ElementsAre(-7));
}

TEST_F(tPluginManagerFailures, AnExceptionFromInitializeFailsThePluginWithItsCode) {
    plugins_.plugin("A").initialize = []() -> std::int32_t { throw std::runtime_error("A"); };
    plugins_.plugin("B").initialize = []() -> std::int32_t { throw std::bad_alloc(); };
    plugins_.plugin("C").initialize = []() -> std::int32_t { zuerr::Raise({"own", {"file", 1}, nullptr}, -9); };
    start({describe("A"), describe("B"), describe("C"), describe("D", {"A"}), describe("E")});
    EXPECT_THAT(initCodes(), ElementsAre(-52003, -52000, -9, -52006, 0));
    EXPECT_THAT(plugins_.callsOf("unload"), ElementsAre("A", "B", "C"));
    plugins_.calls.clear();
    stopAndCleanUp();
    EXPECT_THAT(plugins_.calls, ElementsAre("call E Stop", "call E Cleanup", "unload E"));
}

// Unloads that fail.

TEST_F(tPluginManagerFailures, AnUnloadThatFailsOnceReplacesTheNegativeResultAndIsTriedOnceMore) {
    plugins_.plugin("A").initialize = [] { return -7; };
    plugins_.plugin("A").refusedUnloads = 1;
    start({describe("A"), describe("B")});
    EXPECT_THAT(initCodes(), ElementsAre(-52005, 0));
    EXPECT_THAT(plugins_.callsOf("unload"), ElementsAre("A", "A"));
    EXPECT_EQ(manager_.entries()[0].library.loaded, 0);
    EXPECT_THAT(reports_.texts, ElementsAre(R"({"file":"zukest/quarks/library","line":225,"component":"zuZiptraR"})"));
}

TEST_F(tPluginManagerFailures, AnUnloadThatFailsTwiceEndsTheStartWithoutThatEntry) {
    plugins_.plugin("B").initialize = [] { return -7; };
    plugins_.plugin("B").refusedUnloads = 2;
    EXPECT_EQ(support::caughtReport([&] {
                  start({describe("A"), describe("B"), describe("C")});
              }),
              R"(-52005 {"file":"zukest/quarks/library","line":225,"component":"zuZiptraR"})");
    EXPECT_THAT(plugins_.callsOf("unload"), ElementsAre("B", "B"));
    EXPECT_THAT(plugins_.callsOf("load"), ElementsAre("A", "B"));
    ASSERT_EQ(manager_.entries().size(), 1U);
    EXPECT_EQ(manager_.entries()[0].description.name, "A");
}

TEST_F(tPluginManagerFailures, AFailedPluginWhoseOneUnloadFailsEndsTheStart) {
    plugins_.plugin("A").initialize = []() -> std::int32_t { throw std::runtime_error("A"); };
    plugins_.plugin("A").refusedUnloads = 1;
    EXPECT_THROW(start({describe("A")}), zuerr::Exception);
    EXPECT_THAT(plugins_.callsOf("unload"), ElementsAre("A"));
    EXPECT_THAT(manager_.entries(), IsEmpty());
}

TEST_F(tPluginManagerFailures, WhatHasStartedBeforeTheStartEndedIsStoppedAndCleanedUp) {
    plugins_.plugin("B").missing = {"Init"};
    plugins_.plugin("B").refusedUnloads = 1;
    EXPECT_THROW(start({describe("A"), describe("B")}), zuerr::Exception);
    plugins_.calls.clear();
    stopAndCleanUp();
    EXPECT_THAT(plugins_.calls, ElementsAre("call A Stop", "call A Cleanup", "unload A"));
}

}  // namespace
