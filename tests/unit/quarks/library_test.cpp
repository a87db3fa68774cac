#include "quarks/library.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/plugins.h"

// The contract of both platforms' implementations.
namespace {

constexpr std::uint32_t untouched = 0xABCD;
constexpr std::uint32_t moduleNotFound = 126;
constexpr std::uint32_t procedureNotFound = 127;

int call(void* function) { return reinterpret_cast<int (*)()>(function)(); }

/// Loads a test plug-in for the duration of a test.
class nLibraryLoaded : public testing::Test {
protected:
    void TearDown() override {
        if (library_ != nullptr) nLibrary::unload(library_, osError_);
    }

    std::uint32_t osError_ = untouched;
    nLibrary::tHandle library_ = nLibrary::load(support::pluginPath("behaviours").c_str(), osError_);
};

TEST_F(nLibraryLoaded, LoadsAndLeavesTheErrorNumberUnchanged) {
    EXPECT_NE(library_, nullptr);
    EXPECT_EQ(osError_, untouched);
}

TEST_F(nLibraryLoaded, FindsAnExportedFunctionByItsName) {
    void* const address = nLibrary::symbol(library_, "InitWarning3", osError_);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(call(address), 3);
    EXPECT_EQ(osError_, untouched);
}

TEST_F(nLibraryLoaded, ReturnsNullAndTheErrorNumberForANameThatIsNotExported) {
    EXPECT_EQ(nLibrary::symbol(library_, "NoSuchEntry", osError_), nullptr);
    EXPECT_EQ(osError_, procedureNotFound);
}

TEST_F(nLibraryLoaded, DistinguishesNamesByCase) {
    EXPECT_EQ(nLibrary::symbol(library_, "initwarning3", osError_), nullptr);
}

TEST_F(nLibraryLoaded, LoadingItAgainReturnsTheSameHandle) {
    const nLibrary::tHandle again = nLibrary::load(support::pluginPath("behaviours").c_str(), osError_);
    EXPECT_EQ(again, library_);
    EXPECT_TRUE(nLibrary::unload(again, osError_));
    EXPECT_NE(nLibrary::symbol(library_, "InitOk", osError_), nullptr) << "one of two references is left";
}

TEST(nLibrary, RunsTheLibrarysInitialisationAndTerminationOnce) {
    const support::tPluginLog log;
    std::uint32_t osError = untouched;
    const nLibrary::tHandle library = nLibrary::load(support::pluginPath("behaviours").c_str(), osError);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"behaviours loads"}));
    EXPECT_TRUE(nLibrary::unload(library, osError));
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"behaviours loads", "behaviours unloads"}));
    EXPECT_EQ(osError, untouched);
}

TEST(nLibrary, ReturnsNullAndTheErrorNumberForAMissingFile) {
    std::uint32_t osError = untouched;
    EXPECT_EQ(nLibrary::load(support::pluginPath("no such library").c_str(), osError), nullptr);
    EXPECT_EQ(osError, moduleNotFound);
}

TEST(nLibrary, ReturnsNullAndAnErrorNumberForAnEmptyPath) {
    std::uint32_t osError = untouched;
    EXPECT_EQ(nLibrary::load("", osError), nullptr);
    EXPECT_NE(osError, untouched);
    EXPECT_NE(osError, 0U);
}

TEST(nLibrary, ReturnsNullAndAnErrorNumberForAFileThatIsNotALibrary) {
    const std::string path = support::testProgramFolder() + "/no library.dll";
    std::ofstream(path) << "MZ, but no more";
    std::uint32_t osError = untouched;
    EXPECT_EQ(nLibrary::load(path.c_str(), osError), nullptr);
    EXPECT_NE(osError, untouched);
    EXPECT_NE(osError, 0U);
    std::remove(path.c_str());
}

TEST(nLibrary, ReturnsNullAndAnErrorNumberForALibraryThatRefusesToLoad) {
    std::uint32_t osError = untouched;
    EXPECT_EQ(nLibrary::load(support::pluginPath("refusing").c_str(), osError), nullptr);
    EXPECT_NE(osError, untouched);
    EXPECT_NE(osError, 0U);
}

TEST(nLibrary, SearchesTheLibrarysOwnFolderForItsDependencies) {
    std::uint32_t osError = untouched;
    const nLibrary::tHandle library = nLibrary::load(support::pluginPath("dependant").c_str(), osError);
    ASSERT_NE(library, nullptr) << osError;
    EXPECT_EQ(call(nLibrary::symbol(library, "InitAnswer", osError)), 42);
    EXPECT_TRUE(nLibrary::unload(library, osError));
}

}  // namespace
