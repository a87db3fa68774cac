#include "tool/pe/resolve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "tests/unit/tool/peHelpers.h"
#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A machine whose files a test invents. Names are looked up without regard to case.
struct tInvented {
    std::map<std::string, std::variant<tLibrary, tUnreadable>> files;
    std::vector<std::string> provided;  ///< names of libraries that the system has
    std::vector<std::string> perhaps;   ///< names that look like a system's
    std::map<std::string, int> reads;   ///< how often a path was asked for
    tMachine machine;

    tInvented() {
        machine.searchFolders = {"system", "path"};
        machine.findFile = [this](const std::string& folder, const std::string& name) -> std::optional<std::string> {
            for (const auto& [path, content] : files) {
                if (toLowerAscii(path) == toLowerAscii(folder + '/' + name)) return path;
            }
            return std::nullopt;
        };
        machine.readLibrary = [this](const std::string& path) -> const std::variant<tLibrary, tUnreadable>& {
            ++reads[path];
            static const std::variant<tLibrary, tUnreadable> missing = tUnreadable{"it cannot be opened"};
            const auto found = files.find(path);
            return found == files.end() ? missing : found->second;
        };
        machine.isSystemLibrary = [this](const std::string& name) { return std::ranges::count(provided, name) > 0; };
        machine.mayBeSystemLibrary = [this](const std::string& name) { return std::ranges::count(perhaps, name) > 0; };
    }

    tLibrary& add(const std::string& path, const std::vector<tImport>& imports,
                  const std::vector<tExport>& exports = {}) {
        return std::get<tLibrary>(files[path] = tLibrary{machineX64, true, true, exports, imports});
    }

    [[nodiscard]] std::vector<std::string> missing(const std::string& path) const {
        std::vector<std::string> texts;
        for (const tMissing& found : findMissingImports(path, machine)) {
            std::string text;
            for (const std::string& file : found.chain) text += file + " > ";
            text += found.library + (found.symbol.empty() ? "" : " lacks " + found.symbol);
            if (!found.reason.empty()) text += ": " + found.reason;
            texts.push_back(text + (found.maybeSystem ? " (perhaps Windows)" : ""));
        }
        return texts;
    }
};

TEST(nPeResolve, FindsNothingMissingInALibraryWithoutImports) {
    tInvented world;
    world.add("dir/a.dll", {});
    EXPECT_THAT(world.missing("dir/a.dll"), IsEmpty());
}

TEST(nPeResolve, FindsNothingMissingInAFileThatIsNoLibrary) {
    tInvented world;
    world.files["dir/a.dll"] = tUnreadable{"it is empty"};
    EXPECT_THAT(world.missing("dir/a.dll"), IsEmpty());
    EXPECT_THAT(world.missing("dir/none.dll"), IsEmpty());
    EXPECT_THAT(followImports({"dir/a.dll", "dir"}, world.machine).loaded, IsEmpty());
}

TEST(nPeResolve, SearchesTheLibrarysFolderThenTheOthersInOrder) {
    tInvented world;
    world.add("dir/a.dll", {importOf("B.dll", {"b"}), importOf("C.dll", {"c"}), importOf("D.dll", {"d"})});
    world.add("dir/b.dll", {}, named({"b"}));
    world.add("system/b.dll", {});
    world.add("system/c.dll", {}, named({"c"}));
    world.add("path/c.dll", {});
    world.add("path/d.dll", {}, named({"d"}));
    EXPECT_THAT(followImports({"dir/a.dll", "dir"}, world.machine).loaded,
                ElementsAre("dir/a.dll", "dir/b.dll", "system/c.dll", "path/d.dll"));
    EXPECT_THAT(world.missing("dir/a.dll"), IsEmpty());
}

TEST(nPeResolve, SearchesTheFolderThatItIsTold) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"})});
    world.add("host/b.dll", {}, named({"b"}));
    EXPECT_THAT(followImports({"dir/a.dll", "host"}, world.machine).missing, IsEmpty());
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > b.dll"));
}

TEST(nPeResolve, SearchesTheFirstLibrarysFolderForAllOthersToo) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"})});
    world.add("path/b.dll", {importOf("c.dll", {"c"}), importOf("d.dll", {"d"})}, named({"b"}));
    world.add("dir/c.dll", {}, named({"c"}));
    world.add("path/below/d.dll", {}, named({"d"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > b.dll > d.dll"));
}

TEST(nPeResolve, ReportsMissingLibrariesWithTheChainThatNeedsThem) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"}), importOf("x.dll", {"x"})});
    world.add("dir/b.dll", {importOf("c.dll", {"c"})}, named({"b"}));
    world.add("dir/c.dll", {importOf("y.dll", {"y"})}, named({"c"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > x.dll", "a.dll > b.dll > c.dll > y.dll"));
}

TEST(nPeResolve, ReportsMissingFunctionsByNameAndByNumber) {
    tInvented world;
    world.add("dir/a.dll", {{"b.dll", false, {{"here", 0}, {"gone", 0}, {"", 7}, {"", 8}, {"", 1}}}});
    world.add("dir/b.dll", {}, {{"here", 1, {}}, {"", 7, {}}});
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > b.dll lacks gone", "a.dll > b.dll lacks #8"));
}

TEST(nPeResolve, CompletesNamesAsTheLoaderDoes) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b", {"b"}), importOf("c.dll ", {"c"}), importOf("d.", {"d"})});
    world.add("dir/b.dll", {}, named({"b"}));
    world.add("dir/c.dll", {}, named({"c"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > d."));
}

TEST(nPeResolve, FollowsEachLibraryOnce) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"}), importOf("B.DLL", {"b"}), importOf("c.dll", {"c"})});
    world.add("dir/b.dll", {importOf("c.dll", {"c"}), importOf("x.dll", {"x"})}, named({"b"}));
    world.add("dir/c.dll", {}, named({"c"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > b.dll > x.dll"));
    EXPECT_EQ(world.reads["dir/c.dll"], 1);
}

TEST(nPeResolve, ComesToAnEndIfLibrariesImportEachOther) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"}), importOf("a.dll", {"a", "z"})}, named({"a"}));
    world.add("dir/b.dll", {importOf("A.DLL", {"a"}), importOf("x.dll", {"x"})}, named({"b"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > a.dll lacks z", "a.dll > b.dll > x.dll"));
}

TEST(nPeResolve, TakesAnImportOfTheLibrarysOwnNameForTheLibraryItself) {
    tInvented world;
    world.add("elsewhere/a.dll", {importOf("b.dll", {"b"})}, named({"a"}));
    world.add("host/b.dll", {importOf("a.dll", {"a"})}, named({"b"}));
    world.add("host/a.dll", {});
    EXPECT_THAT(followImports({"elsewhere/a.dll", "host"}, world.machine).missing, IsEmpty());
}

TEST(nPeResolve, IgnoresWhatDoesNotStopALoad) {
    tInvented world;
    world.add("dir/a.dll", {importOf("late.dll", {"x"}, true), importOf("unused.dll", {})});
    EXPECT_THAT(world.missing("dir/a.dll"), IsEmpty());
}

TEST(nPeResolve, IgnoresTheImportsOfAnExecutable) {
    tInvented world;
    world.add("dir/a.dll", {importOf("x.dll", {"x"})}).isDll = false;
    EXPECT_THAT(world.missing("dir/a.dll"), IsEmpty());
    EXPECT_THAT(followImports({"dir/a.dll", "dir"}, world.machine).loaded, ElementsAre("dir/a.dll"));
}

TEST(nPeResolve, SaysWhyALibraryThatIsThereIsNoHelp) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"}), importOf("c.dll", {"c"})});
    world.files["dir/b.dll"] = tUnreadable{"it is truncated"};
    world.add("path/b.dll", {}, named({"b"}));
    world.add("dir/c.dll", {}, named({"c"})).machine = machineX86;
    EXPECT_THAT(world.missing("dir/a.dll"),
                ElementsAre("a.dll > b.dll: it is truncated", "a.dll > c.dll: it is for 32-bit x86"));
}

TEST(nPeResolve, GoesOnSearchingIfALibraryIsForAnotherProcessor) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"})}).machine = machineArm64;
    world.add("dir/b.dll", {}, named({"b"}));
    world.add("path/b.dll", {}, named({"b"})).machine = machineArm64;
    EXPECT_THAT(followImports({"dir/a.dll", "dir"}, world.machine).loaded, ElementsAre("dir/a.dll", "path/b.dll"));
}

TEST(nPeResolve, AsksTheSystemForWhatNoFolderContains) {
    tInvented world;
    world.provided = {"KERNEL32.dll", "b.dll", "c.dll"};
    world.add("dir/a.dll", {importOf("KERNEL32.dll", {"Sleep"}), importOf("b.dll", {"b"}), importOf("c.dll", {"c"})});
    world.add("dir/b.dll", {});
    world.add("dir/c.dll", {}).machine = machineX86;
    EXPECT_THAT(world.missing("dir/a.dll"),
                ElementsAre("a.dll > b.dll lacks b", "a.dll > c.dll: it is for 32-bit x86"));
}

TEST(nPeResolve, MarksMissingLibrariesThatMayBePartOfWindows) {
    tInvented world;
    world.perhaps = {"d3d12.dll", "here.dll"};
    world.add("dir/a.dll", {importOf("d3d12.dll", {"x"}), importOf("here.dll", {"x"}), importOf("x.dll", {"x"})});
    world.add("dir/here.dll", {});
    EXPECT_THAT(world.missing("dir/a.dll"),
                ElementsAre("a.dll > d3d12.dll (perhaps Windows)", "a.dll > here.dll lacks x", "a.dll > x.dll"));
    world.machine.mayBeSystemLibrary = nullptr;
    EXPECT_EQ(world.missing("dir/a.dll").at(0), "a.dll > d3d12.dll");
    world.machine.mayBeSystemLibrary = [](const std::string&) { return true; };
    world.files["dir/here.dll"] = tUnreadable{"it is empty"};
    EXPECT_EQ(world.missing("dir/a.dll").at(1), "a.dll > here.dll: it is empty");
}

TEST(nPeResolve, TakesKnownLibrariesFromTheSystemFolderOnly) {
    tInvented world;
    world.machine.systemFolder = "system";
    world.machine.knownLibraries = {"known.dll", "lost.dll"};
    world.add("dir/a.dll", {importOf("Known.dll", {"k"}), importOf("lost.dll", {"l"})});
    world.add("dir/known.dll", {});
    world.add("system/known.dll", {}, named({"k"}));
    world.add("dir/lost.dll", {}, named({"l"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > lost.dll"));
}

TEST(nPeResolve, TakesLibrariesOfTheSystemFolderForComplete) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b", "z"})});
    world.add("system/b.dll", {importOf("x.dll", {"x"})}, named({"b"}));
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > b.dll lacks z", "a.dll > b.dll > x.dll"));
    world.machine.systemFolder = "system";
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > b.dll lacks z"));
}

TEST(nPeResolve, FollowsAPathWithoutFolder) {
    tInvented world;
    world.add("a.dll", {importOf("x.dll", {"x"})});
    EXPECT_THAT(world.missing("a.dll"), ElementsAre("a.dll > x.dll"));
}

TEST(nPeResolve, PrefersLibrariesThatAreLoadedAlready) {
    tInvented world;
    world.add("dir/a.dll", {importOf("B.dll", {"b", "z"})});
    world.add("dir/b.dll", {importOf("y.dll", {"y"})});
    world.add("other/b.dll", {importOf("x.dll", {"x"})}, named({"b"}));
    EXPECT_THAT(world.missing("dir/a.dll"),
                ElementsAre("a.dll > B.dll lacks b", "a.dll > B.dll lacks z", "a.dll > b.dll > y.dll"));
    addLoaded(world.machine, {"other/b.dll", "dir/b.dll"});
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > B.dll lacks z"));
}

TEST(nPeResolve, TrustsALoadedLibraryThatCannotBeRead) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"b"})});
    addLoaded(world.machine, {"gone/b.dll"});
    EXPECT_THAT(world.missing("dir/a.dll"), IsEmpty());
}

TEST(nPeResolve, FindsAnotherLibraryOfTheSameNameIfThatIsLoaded) {
    tInvented world;
    world.add("dir/a.dll", {importOf("A.dll", {"z"})}, named({"z"}));
    world.add("other/a.dll", {});
    addLoaded(world.machine, {"other/a.dll"});
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > A.dll lacks z"));
}

TEST(nPeResolve, FollowsForwardsToTheirEnd) {
    tInvented world;
    world.provided = {"api-ms-win-x.dll"};
    world.add("dir/a.dll", {importOf("b.dll", {"f", "g", "h"})});
    world.add("dir/b.dll", {}, {{"f", 1, "C.f"}, {"g", 2, "c.dotted.#5"}, {"h", 3, "api-ms-win-x.h"}});
    world.add("dir/c.dll", {importOf("x.dll", {"x"})}, {{"f", 1, "D.#9"}});
    world.add("dir/c.dotted", {}, {{"", 5, {}}});
    world.add("dir/d.dll", {}, {{"", 9, {}}});
    EXPECT_THAT(world.missing("dir/a.dll"), ElementsAre("a.dll > c.dll > x.dll"));
    EXPECT_THAT(followImports({"dir/a.dll", "dir"}, world.machine).loaded,
                ElementsAre("dir/a.dll", "dir/b.dll", "dir/c.dll", "dir/d.dll", "dir/c.dotted"));
}

TEST(nPeResolve, ReportsForwardsThatLeadNowhere) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"f", "g", "h", "i", "j"})});
    world.add("dir/b.dll", {},
              {{"f", 1, "x.f"}, {"g", 2, "c.gone"}, {"h", 3, "b.h"}, {"i", 4, "nothing"}, {"j", 5, ""}});
    world.add("dir/c.dll", {});
    EXPECT_THAT(world.missing("dir/a.dll"),
                ElementsAre("a.dll > b.dll lacks f: it forwards the function to x.f, which is missing",
                            "a.dll > b.dll lacks g: it forwards the function to c.gone, which is missing",
                            "a.dll > b.dll lacks h: it forwards the function to b.h, which is missing",
                            "a.dll > b.dll lacks i: it forwards the function to nothing, which is missing"));
}

/// Imports a function that so many forwards in a row lead to, and returns how many imports are missing.
std::size_t missingAfter(std::uint32_t forwards) {
    tInvented world;
    world.add("dir/a.dll", {importOf("b.dll", {"f10"})});
    std::vector<tExport> exports;
    for (std::uint32_t i = 0; i < forwards; ++i) {
        exports.push_back({"f" + std::to_string(10 + i), i, "b.f" + std::to_string(11 + i)});
    }
    exports.push_back({"f" + std::to_string(10 + forwards), forwards, {}});
    world.add("dir/b.dll", {}, exports);
    return world.missing("dir/a.dll").size();
}

TEST(nPeResolve, FollowsNoMoreThanThirtyTwoForwardsInARow) {
    EXPECT_EQ(missingAfter(32), 0U);
    EXPECT_EQ(missingAfter(33), 1U);
}

TEST(nPeResolve, StopsAtTheThousandthMissingImport) {
    tInvented world;
    const tImport import = importOf("b.dll", std::vector<std::string>(2000, "gone"));
    world.add("dir/a.dll", {import});
    world.add("dir/b.dll", {});
    EXPECT_EQ(world.missing("dir/a.dll").size(), mostMissing);
}

TEST(nPeResolve, FollowsAChainOfAnyLength) {
    tInvented world;
    constexpr int count = 500;
    for (int i = 0; i < count; ++i) {
        world.add("dir/" + std::to_string(i) + ".dll", {importOf(std::to_string(i + 1) + ".dll", {"f"})}, named({"f"}));
    }
    const auto missing = findMissingImports("dir/0.dll", world.machine);
    ASSERT_EQ(missing.size(), 1U);
    EXPECT_EQ(missing[0].library, "500.dll");
    EXPECT_EQ(missing[0].chain.size(), static_cast<std::size_t>(count));
}

}  // namespace
}  // namespace nPe
