#include "tool/check/libraryFindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tExamined;
using nCheck::tLoadVerdict;
using support::described;
using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

class libraryFindings : public testing::Test {
protected:
    libraryFindings() {
        lines_.set("Path", 3);
        lines_.set("Initialize", 4);
        lines_.set("Stop", 5);
    }

    tLoadVerdict examine(const nPe::tLibrary& library) { return nCheck::examineLibrary(library, examined_); }
    tLoadVerdict examine(const std::vector<nPe::tMissing>& missing) {
        return nCheck::examineMissing(missing, examined_);
    }
    tLoadVerdict examine(const std::string& file, const nPe::tUnreadable& unreadable) {
        return nCheck::examineUnreadable(file, unreadable, examined_);
    }
    std::vector<tFinding> taken() { return findings_.take("A"); }

    tPluginDescription description_ = described("A");

private:
    nCheck::tKeyLines lines_;
    nCheck::tFileFindings findings_{"a.ini"};
    tExamined examined_{description_, lines_, findings_};
};

nPe::tLibrary library(const std::vector<std::string>& exports = {}) {
    nPe::tLibrary library;
    library.machine = nPe::machineX64;
    library.pe32Plus = true;
    library.isDll = true;
    for (const std::string& name : exports) library.exports.push_back({name, 1, {}});
    return library;
}

TEST_F(libraryFindings, DoNotExistForALibraryWithAllEntries) {
    description_.initialize = "I";
    description_.stop = "S";
    EXPECT_EQ(examine(library({"C", "I", "S"})), tLoadVerdict::succeeds);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(libraryFindings, LeaveOpenWhetherALibraryLoadsWhoseOwnCodeRunsThen) {
    nPe::tLibrary usual = library();
    usual.hasEntryPoint = true;
    EXPECT_EQ(examine(usual), tLoadVerdict::uncertain);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(libraryFindings, AcceptALibraryForAnotherProcessorThatContainsNoCode) {
    nPe::tLibrary resources = library();
    resources.machine = nPe::machineX86;
    EXPECT_EQ(examine(resources), tLoadVerdict::succeeds);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(libraryFindings, SayThatTheLibraryIsForAnotherProcessor) {
    nPe::tLibrary other = library();
    other.machine = nPe::machineX86;
    other.hasCode = true;
    description_.stop = "S";
    EXPECT_EQ(examine(other), tLoadVerdict::fails);
    const auto findings = taken();
    EXPECT_THAT(idsOf(findings), ElementsAre("3 wrong-processor")) << "its entries do not matter then";
    EXPECT_EQ(findings[0].message, "the library is for 32-bit x86, not x86-64");
}

TEST_F(libraryFindings, SayThatTheFileIsAProgramWhichWindowsMayMap) {
    nPe::tLibrary program = library({"S"});
    program.isDll = false;
    description_.stop = "S";
    EXPECT_EQ(examine(program), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(taken()), ElementsAre("3 not-a-dll"));
    description_.stop = "T";
    EXPECT_EQ(examine(program), tLoadVerdict::fails) << "in any case";
}

TEST_F(libraryFindings, SayWhichEntriesAreMissing) {
    description_.initialize = "I";
    description_.stop = "S";
    description_.cleanup = "C";
    EXPECT_EQ(examine(library({"S"})), tLoadVerdict::fails);
    const auto findings = taken();
    EXPECT_THAT(idsOf(findings), ElementsAre("4 missing-entry", "missing-entry"));
    EXPECT_EQ(findings[0].message, "the library does not export \"I\"");
    EXPECT_EQ(findings[1].message, "the library does not export \"C\"");
}

TEST_F(libraryFindings, NameAnExportThatTheAuthorMayHaveMeant) {
    description_.initialize = "InitOk";
    EXPECT_EQ(examine(library({"_Z6InitOkv", "initok"})), tLoadVerdict::fails);
    EXPECT_EQ(taken().at(0).message, "the library does not export \"InitOk\"; it exports \"_Z6InitOkv\", \"initok\"");
}

TEST_F(libraryFindings, NameAnExportThatIsSpeltSimilarly) {
    description_.initialize = "SettingsInitialise";
    EXPECT_EQ(examine(library({"Other", "SettingsInitialize"})), tLoadVerdict::fails);
    EXPECT_EQ(taken().at(0).message,
              "the library does not export \"SettingsInitialise\"; it exports \"SettingsInitialize\"");
}

TEST_F(libraryFindings, NameAFewOfManySimilarExports) {
    description_.initialize = "Start";
    EXPECT_EQ(examine(library({"Start1", "Start2", "Start3", "Start4", "Start5", "Start6"})), tLoadVerdict::fails);
    EXPECT_EQ(taken().at(0).message,
              "the library does not export \"Start\"; it exports \"Start1\", \"Start2\", \"Start3\", \"Start4\", "
              "\"Start5\" and others");
}

TEST_F(libraryFindings, LeaveOpenWhetherAnEntryOfAnotherLibraryIsFound) {
    nPe::tLibrary forwarding = library();
    forwarding.exports.push_back({"S", 1, "OTHER.S"});
    description_.stop = "S";
    EXPECT_EQ(examine(forwarding), tLoadVerdict::uncertain);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(libraryFindings, WarnOfADebugRuntime) {
    nPe::tLibrary debug = library();
    debug.imports.push_back({"VCRUNTIME140D.dll", false, {{"memcpy", 0}}});
    EXPECT_EQ(examine(debug), tLoadVerdict::succeeds);
    const auto findings = taken();
    EXPECT_THAT(idsOf(findings), ElementsAre("3 debug-runtime"));
    EXPECT_EQ(findings[0].message, "the library needs \"VCRUNTIME140D.dll\"");
}

TEST_F(libraryFindings, SayWhyAFileIsNoLibrary) {
    const support::tFolder folder;
    const std::string file = folder.write("a.dll", "text");
    EXPECT_EQ(examine(file, {"it has no MZ signature"}), tLoadVerdict::fails);
    const auto findings = taken();
    EXPECT_THAT(idsOf(findings), ElementsAre("3 not-a-library"));
    EXPECT_EQ(findings[0].message, '"' + file + "\" is no library that Windows loads: it has no MZ signature");
}

TEST_F(libraryFindings, LeaveOpenWhatTheLoaderDoesWithDamagedTables) {
    const support::tFolder folder;
    EXPECT_EQ(examine(folder.write("a.dll"), {"its tables overlap", false}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(taken()), ElementsAre("3 damaged-library"));
}

TEST_F(libraryFindings, SayThatThePathIsThatOfAFolder) {
    const support::tFolder folder;
    EXPECT_EQ(examine(folder.utf8(), {"it is not a file"}), tLoadVerdict::fails);
    EXPECT_EQ(taken().at(0).message, '"' + folder.utf8() + "\" is a folder");
}

TEST_F(libraryFindings, LeaveOpenWhetherTheServiceCanOpenWhatOthersCannot) {
    const support::tFolder folder;
    EXPECT_EQ(examine(folder.utf8("gone.dll"), {"it cannot be opened"}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(taken()), ElementsAre("3 unreadable-library"));
}

TEST_F(libraryFindings, SayWhichImportedLibraryIsMissingAndHowItIsNeeded) {
    EXPECT_EQ(examine({{{"a.dll"}, "b.dll", "", "", false}, {{"a.dll", "c.dll", "d.dll"}, "e.dll", "", "", false}}),
              tLoadVerdict::fails);
    const auto findings = taken();
    EXPECT_THAT(idsOf(findings), ElementsAre("3 missing-import", "3 missing-import"));
    EXPECT_EQ(findings[0].message, "\"a.dll\" needs \"b.dll\", which is missing");
    EXPECT_EQ(findings[1].message, "\"d.dll\" needs \"e.dll\", which is missing (a.dll -> c.dll -> d.dll)");
}

TEST_F(libraryFindings, SayWhyAnImportedLibraryIsNoHelp) {
    EXPECT_EQ(examine({{{"a.dll"}, "b.dll", "", "it is for ARM64", false}}), tLoadVerdict::fails);
    EXPECT_EQ(taken().at(0).message, "\"a.dll\" needs \"b.dll\", but it is for ARM64");
}

TEST_F(libraryFindings, LeaveAMissingFunctionOpenBecauseWineDoesNotMind) {
    EXPECT_EQ(examine({{{"a.dll"}, "b.dll", "f", "", false}, {{"a.dll"}, "b.dll", "#7", "it forwards", false}}),
              tLoadVerdict::uncertain);
    const auto findings = taken();
    EXPECT_THAT(idsOf(findings), ElementsAre("3 missing-function", "3 missing-function"));
    EXPECT_EQ(findings[0].message, "\"a.dll\" needs the function \"f\" of \"b.dll\", which lacks it");
    EXPECT_EQ(findings[1].message, "\"a.dll\" needs the function \"#7\" of \"b.dll\", but it forwards");
}

TEST_F(libraryFindings, LeaveALibraryOpenThatMayBePartOfWindows) {
    EXPECT_EQ(examine({{{"a.dll"}, "d3d9.dll", "", "", true}}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(taken()), ElementsAre("3 unchecked-import"));
    EXPECT_EQ(examine({{{"a.dll"}, "d3d9.dll", "", "", true}, {{"a.dll"}, "b.dll", "", "", false}}),
              tLoadVerdict::fails);
}

TEST_F(libraryFindings, DoNotExistIfNoImportIsMissing) {
    EXPECT_EQ(examine(std::vector<nPe::tMissing>()), tLoadVerdict::succeeds);
    EXPECT_THAT(taken(), IsEmpty());
}

}  // namespace
