#include "tool/pe/symptoms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/peHelpers.h"

namespace nPe {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> near(const std::vector<std::string>& names, std::string_view entry) {
    tLibrary library;
    library.exports = named(names);
    return nearMisses(library, entry);
}

/// Returns whether an export of that name is a near miss of "Start".
bool isNear(const std::string& name) { return !near({name}, "Start").empty(); }

TEST(nPeNearMisses, AreManglingsOfGccAndClang) {
    for (const char* const name : {"_Z5Startv", "_Z5Starti", "_ZL5Startv", "_ZN5space5StartEv", "_ZN1a2bb5StartEv",
                                   "_ZNK5Class5StartEv", "_ZNVK5Class5StartEv", "_ZNKR5Class5StartEv", "_ZNSt5StartEv",
                                   "_Z5StartIiEvT_", "_ZN1a5StartIiEEvv", "__Z5Startv", "_Z5startv"}) {
        EXPECT_TRUE(isNear(name)) << name;
    }
    for (const char* const name : {"_Z6Start2v", "_Z4Starv", "_Z6Startv", "_Z50Start", "_ZN5Start4StopEv",
                                   "_ZN5Start99999999999999999999Ev", "_ZN5Start", "_ZN5StartC1Ev", "_ZN5StartplEv",
                                   "_Z", "_ZN", "_ZNK", "_Z99999999999999999999Start", "_Z-5Start", "Z5Startv"}) {
        EXPECT_FALSE(isNear(name)) << name;
    }
}

TEST(nPeNearMisses, AreManglingsOfMicrosoft) {
    EXPECT_TRUE(isNear("?Start@@YAHXZ"));
    EXPECT_TRUE(isNear("?Start@Class@space@@QEAAXXZ"));
    EXPECT_TRUE(isNear("?START@@YAHXZ"));
    EXPECT_FALSE(isNear("?Starts@@YAHXZ"));
    EXPECT_FALSE(isNear("?Other@Start@@YAHXZ"));
    EXPECT_FALSE(isNear("??0Start@@QEAA@XZ"));
    EXPECT_FALSE(isNear("?"));
}

TEST(nPeNearMisses, AreDecorationsOfCallingConventions) {
    for (const char* const name : {"_Start@8", "_Start@0", "Start@12", "@Start@8", "Start@@16", "_start@8"}) {
        EXPECT_TRUE(isNear(name)) << name;
    }
    for (const char* const name : {"Start@", "Start@x", "_Start@8x", "Sta@rt@8", "@8", "@", "8"}) {
        EXPECT_FALSE(isNear(name)) << name;
    }
}

TEST(nPeNearMisses, DifferInAnUnderscoreOrInCase) {
    EXPECT_THAT(near({"START", "Start", "_Start", "__Start", "start", "Start_"}, "Start"),
                ElementsAre("START", "_Start", "start"));
    EXPECT_THAT(near({"Start", "_start", "_Start"}, "_Start"), ElementsAre("Start", "_start"));
    EXPECT_THAT(near({"Start"}, "_Start@8"), ElementsAre("Start"));
}

TEST(nPeNearMisses, KeepTheLibrarysOrder) {
    EXPECT_THAT(near({"b", "_Z1av", "A", "?a@@YAXXZ"}, "a"), ElementsAre("_Z1av", "A", "?a@@YAXXZ"));
}

TEST(nPeNearMisses, DoNotExistForAnEmptyName) {
    EXPECT_THAT(near({"_", "@8", "a"}, ""), IsEmpty());
    EXPECT_THAT(near({"a", "@8"}, "_"), IsEmpty());
    tLibrary library;
    library.exports = {{"", 1, {}}};
    EXPECT_THAT(nearMisses(library, "_"), IsEmpty());
}

TEST(nPeDebugRuntimes, AreThoseOfMicrosoft) {
    tLibrary library;
    const std::vector<std::string> debug{"ucrtbased.dll",   "VCRUNTIME140D.dll", "vcruntime140_1d.dll", "MSVCP140D.dll",
                                         "msvcp140_1d.dll", "msvcr71d.dll",      "MSVCR120D.dll",       "msvcrtd.dll",
                                         "mfc140ud.dll",    "mfcm140d.dll",      "concrt140d.dll",      "vcomp140d.dll",
                                         "vccorlib140d.dll"};
    const std::vector<std::string> other{"ucrtbase.dll",   "vcruntime140.dll", "msvcp140.dll",   "msvcrt.dll",
                                         "msvcr120.dll",   "mfc140u.dll",      "d.dll",          "mydebug.dll",
                                         "cmsvcr120d.dll", "msvcr120d",        "msvcr120dd.dll", "msvcr120d.dll.x"};
    for (const std::string& name : other) library.imports.push_back(importOf(name, {"f"}));
    EXPECT_THAT(debugRuntimes(library), IsEmpty());
    for (const std::string& name : debug) library.imports.push_back(importOf(name, {"f"}));
    EXPECT_EQ(debugRuntimes(library), debug);
}

}  // namespace
}  // namespace nPe
