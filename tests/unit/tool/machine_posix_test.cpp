#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"
#include "tool/pe/locate.h"
#include "tool/pe/machine.h"

namespace nPe {
namespace {

using testing::ElementsAre;
using testing::Optional;

TEST(nPeMachinePosix, SearchesTheMappedFolders) {
    const support::tFolder folder;
    const tMachine machine =
        thisMachine({{R"(C:\Program Files\X)", folder.utf8("x")}, {R"(C:\Tools)", folder.utf8("tools")}});
    EXPECT_THAT(machine.searchFolders, ElementsAre(folder.utf8("x"), folder.utf8("tools")));
    EXPECT_EQ(machine.systemFolder, "");
}

TEST(nPeMachinePosix, FindsFilesWhateverTheirCase) {
    const support::tFolder folder;
    folder.write("Mixed.DLL");
    folder.write("größe.dll");
    const tMachine machine = thisMachine({});
    EXPECT_THAT(machine.findFile(folder.utf8(), "mIXED.dll"), Optional(folder.utf8("Mixed.DLL")));
    EXPECT_THAT(machine.findFile(folder.utf8(), "GRößE.dll"), Optional(folder.utf8("größe.dll")));
    EXPECT_EQ(machine.findFile(folder.utf8(), "other.dll"), std::nullopt);
    EXPECT_EQ(machine.findFile(folder.utf8("none"), "Mixed.DLL"), std::nullopt);
}

TEST(nPeMachinePosix, PrefersAFileOfExactlyThatName) {
    const support::tFolder folder;
    for (const char* const name : {"A.dll", "a.dll", "a.DLL"}) folder.write(name);
    const tMachine machine = thisMachine({});
    for (const char* const name : {"A.dll", "a.dll", "a.DLL"}) {
        EXPECT_THAT(machine.findFile(folder.utf8(), name), Optional(folder.utf8(name)));
    }
    EXPECT_THAT(machine.findFile(folder.utf8(), "A.DLL"), Optional(folder.utf8("a.dll")));
}

TEST(nPeMachinePosix, FindsNoFileInAnotherFolder) {
    const support::tFolder folder;
    folder.write("below/a.dll");
    const tMachine machine = thisMachine({});
    EXPECT_EQ(machine.findFile(folder.utf8(), "below/a.dll"), std::nullopt);
    EXPECT_EQ(machine.findFile(folder.utf8("below"), "../below/a.dll"), std::nullopt);
}

TEST(nPeMachinePosix, ListsAFolderOnce) {
    const support::tFolder folder;
    const tMachine machine = thisMachine({});
    EXPECT_EQ(machine.findFile(folder.utf8(), "a.dll"), std::nullopt);
    folder.write("a.dll");
    EXPECT_EQ(machine.findFile(folder.utf8(), "a.dll"), std::nullopt);
}

TEST(nPeMachinePosix, FindsWindowsPathsBelowTheMappedFolders) {
    const support::tFolder folder;
    const std::string file = folder.write("x/Sub/A.dll");
    const tMachine machine = thisMachine({{R"(C:\Program Files\X\)", folder.utf8("x")}});
    for (const char* const path :
         {R"(C:\Program Files\X\Sub\A.dll)", R"(c:\PROGRAM FILES\x\sub\a.DLL)", "C:/Program Files/X/Sub/A.dll",
          R"(\\?\C:\Program Files\X\Sub\A.dll)", R"(C:\Program Files\X\.\nowhere\..\Sub\\A.dll. )"}) {
        EXPECT_THAT(machine.findPath(path), Optional(file)) << path;
    }
    for (const char* const path : {R"(C:\Program Files\X\Sub\B.dll)", R"(C:\Program Files\Y\Sub\A.dll)",
                                   R"(C:\Program Files)", R"(D:\Program Files\X\Sub\A.dll)", "", R"(C:\..\..)"}) {
        EXPECT_EQ(machine.findPath(path), std::nullopt) << path;
    }
}

TEST(nPeMachinePosix, PrefersTheLongestMapping) {
    const support::tFolder folder;
    folder.write("all/a.dll");
    folder.write("x/a.dll");
    for (const bool longestFirst : {true, false}) {
        tFolderMap map{{R"(C:\X)", folder.utf8("x")}, {R"(C:)", folder.utf8("all")}};
        if (!longestFirst) std::swap(map[0], map[1]);
        const tMachine machine = thisMachine(map);
        EXPECT_THAT(machine.findPath(R"(C:\X\a.dll)"), Optional(folder.utf8("x/a.dll")));
        EXPECT_THAT(machine.findPath(R"(C:\a.dll)"), Optional(folder.utf8("all/a.dll")));
    }
}

TEST(nPeMachinePosix, MayHaveAMappedSystemFolder) {
    const support::tFolder folder;
    folder.makeFolder("windows/system32");
    const tMachine machine = thisMachine({{R"(C:\WINDOWS)", folder.utf8("windows")}});
    EXPECT_EQ(machine.systemFolder, folder.utf8("windows/system32"));
}

TEST(nPeMachinePosix, KnowsTheLibrariesOfWindowsByName) {
    const tMachine machine = thisMachine({});
    EXPECT_TRUE(machine.isSystemLibrary("KERNEL32.dll"));
    EXPECT_TRUE(machine.isSystemLibrary("api-ms-win-core-file-l1-1-0.dll"));
    EXPECT_FALSE(machine.isSystemLibrary("vcruntime140.dll"));
    EXPECT_TRUE(machine.mayBeSystemLibrary("vcruntime140.dll"));
    EXPECT_FALSE(machine.mayBeSystemLibrary("zlib1.dll"));
}

TEST(nPeMachinePosix, TakesTheHostsFoldersAsGiven) {
    EXPECT_EQ(thisMachine({}).currentFolder, R"(C:\Windows\System32)");
    EXPECT_EQ(thisMachine({}).applicationFolder, "");
    const tMachine machine = thisMachine({}, {"dist", R"(D:\now)"});
    EXPECT_EQ(machine.currentFolder, R"(D:\now)");
    EXPECT_EQ(machine.applicationFolder, "dist");
}

TEST(nPeMachinePosix, ServesTheResolver) {
    const support::tFolder folder;
    support::tPeFile plugin;
    plugin.imports = {importOf("KERNEL32.dll", {"Sleep"}), importOf("Helper.dll", {"help", "gone"}),
                      importOf("lost.dll", {"x"}), importOf("d3d12.dll", {"x"})};
    support::tPeFile helper;
    helper.exports = named({"help"});
    folder.write("dist/plugin.dll", plugin.bytes());
    folder.write("dist/helper.dll", helper.bytes());
    const tMachine machine = thisMachine({{R"(C:\X)", folder.utf8("dist")}});
    const auto location = locate(R"(C:\x\PLUGIN)", machine);
    ASSERT_TRUE(location);
    EXPECT_EQ(location->file, folder.utf8("dist/plugin.dll"));
    const tLoad load = followImports(*location, machine);
    EXPECT_THAT(load.loaded, ElementsAre(folder.utf8("dist/plugin.dll"), folder.utf8("dist/helper.dll")));
    ASSERT_EQ(load.missing.size(), 3U);
    EXPECT_EQ(load.missing[0].library, "Helper.dll");
    EXPECT_EQ(load.missing[0].symbol, "gone");
    EXPECT_EQ(load.missing[1].library, "lost.dll");
    EXPECT_FALSE(load.missing[1].maybeSystem);
    EXPECT_EQ(load.missing[2].library, "d3d12.dll");
    EXPECT_TRUE(load.missing[2].maybeSystem);
}

}  // namespace
}  // namespace nPe
