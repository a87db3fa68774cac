// Plug-ins that throw every kind of exception from every entry. tests/plugins/throwing has its own C++ runtime and its
// own copy of the error model.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <vector>

#include "err/Exception.h"
#include "source/tPluginManager.h"
#include "tests/support/exceptions.h"
#include "tests/support/plugins.h"

namespace {

struct tThrow {
    const char* entry;
    std::int32_t code;  ///< the code that the host derives from it
};

constexpr tThrow known[] = {
    {"ThrowException", -52003},
    {"ThrowRuntimeError", -52003},
    {"ThrowLongText", -52003},
    {"ThrowOddText", -52003},
    {"ThrowEmptyText", -52003},
    {"ThrowNoText", -52003},
    {"ThrowSystemError", -52003},
    {"ThrowIosFailure", -52003},
    {"ThrowBadCast", -52003},
    {"ThrowBadException", -52003},
    {"ThrowLarge", -52003},
    {"ThrowFromBelow", -52003},
    {"ThrowNested", -52003},
    {"ThrowStored", -52003},
    {"ThrowAgain", -52003},
    {"ThrowBadAlloc", -52000},
    {"ThrowBadArrayNewLength", -52000},
    {"ThrowOwnBadAlloc", -52000},
    {"ThrowBadAllocAndMore", -52000},
    {"ThrowOsFault", -52008},
    {"ThrowBaseAlone", -7},
    {"ThrowSmallestCode", INT32_MIN},
    {"ThrowWarning", 5},
    {"ThrowNoCode", 0},
};

constexpr const char* unknown[] = {"ThrowInt",      "ThrowText",   "ThrowString",       "ThrowNull",
                                   "ThrowFunction", "ThrowObject", "ThrowTwoExceptions"};

tPluginDescription plugin(const char* initialize, const char* stop = "", const char* cleanup = "") {
    return support::pluginDescription("throwing", initialize, stop, cleanup);
}

class tPluginManagerThrowing : public testing::Test {
protected:
    void TearDown() override {
        // A library whose clean-up threw is still loaded.
        for (tPluginEntry entry : manager.entries()) entry.library.close();
    }

    [[nodiscard]] const tPluginEntry& last() const { return manager.entries().back(); }

    tPluginManager manager;
};

/// Expects that the host still throws failures when no exception is propagating, and does not when one is.
void expectPropagationStillKnown() {
    tPluginManager manager;
    manager.startAll({plugin("NoSuchEntry")}, 1);
    EXPECT_EQ(manager.entries().at(0).initCode, -52005);
    support::expectPropagationToBeTold();
}

TEST_F(tPluginManagerThrowing, FromInitializeFailWithTheCodeOfTheExceptionAreUnloadedAndFailTheirDependants) {
    for (const tThrow& each : known) {
        tPluginDescription first = plugin(each.entry, "ThrowInt", "ThrowInt");
        first.name = "first";
        tPluginDescription second = plugin("");
        second.dependencies = {"first"};
        manager.startAll({first, second}, 1);
        const tPluginEntry& thrower = manager.entries().end()[-2];
        EXPECT_EQ(thrower.initCode, each.code) << each.entry;
        EXPECT_EQ(thrower.library.loaded, 0) << each.entry;
        EXPECT_EQ(last().initCode, -52006) << each.entry << ", whatever the code";
    }
    manager.stopAll();
    manager.cleanupAll();
    for (const tPluginEntry& entry : manager.entries()) {
        EXPECT_EQ(entry.stopCode, 0) << entry.description.initialize << " is stopped by the built-in entry";
        EXPECT_EQ(entry.cleanupCode, 0) << entry.description.initialize;
    }
    expectPropagationStillKnown();
}

TEST_F(tPluginManagerThrowing, FromStopOrCleanupHaveTheCodeOfTheExceptionAndOnlyTheLatterStayLoaded) {
    for (const tThrow& each : known) manager.startAll({plugin("", each.entry), plugin("", "", each.entry)}, 1);
    manager.stopAll();
    manager.cleanupAll();
    auto entry = manager.entries().begin();
    for (const tThrow& each : known) {
        EXPECT_EQ(entry->stopCode, each.code) << each.entry;
        EXPECT_EQ(entry->cleanupCode, 0) << each.entry;
        EXPECT_EQ(entry->library.loaded, 0) << each.entry;
        ++entry;
        EXPECT_EQ(entry->stopCode, 0) << each.entry;
        EXPECT_EQ(entry->cleanupCode, each.code) << each.entry;
        EXPECT_EQ(entry->library.loaded, 1) << each.entry;
        ++entry;
    }
    expectPropagationStillKnown();
}

/// Expects that an exception that is no std::exception leaves the call. It is caught outside the product here, so the
/// test needs a guard of its own.
template <class Call>
void expectPassedOn(Call call, const char* what) {
    const zuerr::ForeignCallGuard guard;
    try {
        call();
        ADD_FAILURE() << what << " was kept";
    } catch (const std::exception&) {
        ADD_FAILURE() << what << " is a standard exception";
    } catch (...) {
        // Expected.
    }
}

TEST_F(tPluginManagerThrowing, AnUnknownTypeFromInitializePassItOnAndLeaveWhatHasStarted) {
    for (const char* const entry : unknown) {
        const std::size_t before = manager.entries().size();
        expectPassedOn([&] { manager.startAll({plugin(""), plugin(entry), plugin("")}, 1); }, entry);
        EXPECT_EQ(manager.entries().size(), before + 1) << entry;
        EXPECT_EQ(last().library.loaded, 1);
    }
    manager.stopAll();
    manager.cleanupAll();
    for (const tPluginEntry& entry : manager.entries()) EXPECT_EQ(entry.library.loaded, 0);
    expectPropagationStillKnown();
    // The libraries that threw are still loaded, once each, without an entry that knows of it.
    std::uint32_t osError = 0;
    const nLibrary::tHandle library = nLibrary::load(support::pluginPath("throwing").c_str(), osError);
    for (std::size_t i = 0; i < std::size(unknown) + 1; ++i) EXPECT_TRUE(nLibrary::unload(library, osError)) << i;
}

TEST_F(tPluginManagerThrowing, AnUnknownTypeFromStopOrCleanupPassItOn) {
    for (const char* const entry : unknown) {
        tPluginManager own;
        own.startAll({plugin("", entry, entry)}, 1);
        expectPassedOn([&] { own.stopAll(); }, entry);
        expectPassedOn([&] { own.cleanupAll(); }, entry);
        EXPECT_EQ(own.entries()[0].stopCode, 0) << entry;
        EXPECT_EQ(own.entries()[0].cleanupCode, 0) << entry;
        EXPECT_EQ(own.entries()[0].library.loaded, 1) << entry;
        tPluginEntry(own.entries()[0]).library.close();
    }
    expectPropagationStillKnown();
}

}  // namespace
