#include "tool/pe/locate.h"

#include <gtest/gtest.h>

#include <set>

#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

/// A machine with a host in C:\host, whose current folder is C:\now.
struct tInvented {
    std::set<std::string> files;
    tMachine machine;

    tInvented() {
        machine.searchFolders = {R"(C:\system)", R"(C:\path)"};
        machine.applicationFolder = R"(C:\host)";
        machine.currentFolder = R"(C:\now)";
        machine.systemFolder = R"(C:\system)";
        machine.knownLibraries = {"known.dll"};
        machine.findPath = [this](const std::string& path) -> std::optional<std::string> {
            return files.contains(path) ? std::optional(path) : std::nullopt;
        };
        machine.findFile = [this](const std::string& folder, const std::string& name) {
            return machine.findPath(joined(folder, name));
        };
    }

    /// Returns "FILE, imports from FOLDER" or "nowhere".
    [[nodiscard]] std::string place(const std::string& path) const {
        const std::optional<tLocation> found = locate(path, machine);
        return found ? found->file + ", imports from " + found->folder : "nowhere";
    }
};

TEST(nPeLocate, TakesAnAbsolutePathAsItIs) {
    tInvented world;
    world.files = {R"(C:\a\x.dll)", R"(C:\host\x.dll)"};
    EXPECT_EQ(world.place(R"(C:\a\x.dll)"), R"(C:\a\x.dll, imports from C:\a)");
    EXPECT_EQ(world.place(R"(C:\b\x.dll)"), "nowhere");
}

TEST(nPeLocate, TakesANativePathLiterally) {
    tInvented world;
    world.files = {R"(\\?\C:\a\x.dll)"};
    EXPECT_EQ(world.place(R"(\??\C:\a\x)"), R"(\\?\C:\a\x.dll, imports from \\?\C:\a)");
}

TEST(nPeLocate, CompletesTheName) {
    tInvented world;
    world.files = {R"(C:\a\x.dll)", R"(C:\a\y)"};
    EXPECT_EQ(world.place(R"(C:\a\x)"), R"(C:\a\x.dll, imports from C:\a)");
    EXPECT_EQ(world.place(R"(C:\a\x.dll  )"), R"(C:\a\x.dll, imports from C:\a)");
    EXPECT_EQ(world.place(R"(C:\a\y)"), "nowhere");
}

TEST(nPeLocate, SearchesTheHostsFolderForImportsIfThePathHasOnlySlashes) {
    tInvented world;
    world.files = {"C:/a/x.dll", R"(C:/a\x.dll)"};
    EXPECT_EQ(world.place("C:/a/x.dll"), R"(C:/a/x.dll, imports from C:\host)");
    EXPECT_EQ(world.place(R"(C:/a\x.dll)"), R"(C:/a\x.dll, imports from C:/a)");
}

TEST(nPeLocate, BeginsAPathWithoutDriveAtTheCurrentOne) {
    tInvented world;
    world.files = {R"(C:\a\x.dll)", R"(C:\now\y.dll)"};
    EXPECT_EQ(world.place(R"(\a\x.dll)"), R"(C:\a\x.dll, imports from C:\a)");
    EXPECT_EQ(world.place("C:y.dll"), R"(C:\now\y.dll, imports from C:\host)");
}

TEST(nPeLocate, SearchesForAPlainNameInTheHostsFolderFirst) {
    tInvented world;
    world.files = {R"(C:\host\x.dll)", R"(C:\system\x.dll)", R"(C:\system\y.dll)",
                   R"(C:\path\y.dll)", R"(C:\path\z.dll)",   R"(C:\now\n.dll)"};
    EXPECT_EQ(world.place("x.dll"), R"(C:\host\x.dll, imports from C:\host)");
    EXPECT_EQ(world.place("y"), R"(C:\system\y.dll, imports from C:\host)");
    EXPECT_EQ(world.place("z.dll"), R"(C:\path\z.dll, imports from C:\host)");
    EXPECT_EQ(world.place("n.dll"), "nowhere");
}

TEST(nPeLocate, FindsAPlainNameAmongTheLoadedLibrariesFirst) {
    tInvented world;
    world.files = {R"(C:\host\x.dll)"};
    addLoaded(world.machine, {R"(D:\b\x.dll)"});
    EXPECT_EQ(world.place("X.dll"), R"(D:\b\x.dll, imports from C:\host)");
    EXPECT_EQ(world.place(R"(C:\host\x.dll)"), R"(C:\host\x.dll, imports from C:\host)");
}

TEST(nPeLocate, TakesAKnownLibraryFromTheSystemFolderOnly) {
    tInvented world;
    world.files = {R"(C:\host\Known.dll)"};
    EXPECT_EQ(world.place("Known.dll"), "nowhere");
    world.files.insert(R"(C:\system\Known.dll)");
    EXPECT_EQ(world.place("Known.dll"), R"(C:\system\Known.dll, imports from C:\host)");
}

TEST(nPeLocate, SearchesForARelativePathBelowItsOwnFolderFirst) {
    tInvented world;
    world.files = {R"(C:\now\a\a\x.dll)", R"(C:\system\a\x.dll)"};
    EXPECT_EQ(world.place(R"(a\x.dll)"), R"(C:\now\a\a\x.dll, imports from C:\now\a)");
    world.files.erase(R"(C:\now\a\a\x.dll)");
    EXPECT_EQ(world.place(R"(a\x.dll)"), R"(C:\system\a\x.dll, imports from C:\now\a)");
    EXPECT_EQ(world.place(R"(b\x.dll)"), "nowhere");
}

TEST(nPeLocate, SearchesForARelativePathWithSlashesBelowTheHostsFolder) {
    tInvented world;
    world.files = {R"(C:\host\a/x.dll)"};
    EXPECT_EQ(world.place("a/x.dll"), R"(C:\host\a/x.dll, imports from C:\host)");
}

TEST(nPeLocate, SkipsUnknownFolders) {
    tInvented world;
    world.machine.applicationFolder.clear();
    world.files = {"x.dll", R"(C:\path\x.dll)"};
    EXPECT_EQ(world.place("x.dll"), R"(C:\path\x.dll, imports from )");
}

TEST(nPeLocate, FindsNothingAtAnEmptyPath) {
    tInvented world;
    EXPECT_EQ(world.place(""), "nowhere");
    EXPECT_EQ(world.place("  "), "nowhere");
}

}  // namespace
}  // namespace nPe
