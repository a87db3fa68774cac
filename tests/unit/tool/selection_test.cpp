#include "tool/run/selection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"

namespace {

using nRun::select;
using nRun::tCannotRun;
using nRun::tPlugin;
using testing::ElementsAre;
using testing::HasSubstr;

class nRunSelection : public testing::Test {
protected:
    std::string add(const std::string& name, const std::string& dependencies = "", std::string file = "") const {
        if (file.empty()) file = name + ".ini";
        return folder.write(file, "[Service]\nName=" + name + "\nDependencies=" + dependencies + "\nPath=p.dll\n");
    }

    static std::vector<std::string> names(const std::vector<std::string>& files) {
        std::vector<std::string> result;
        for (const tPlugin& plugin : select(files)) result.push_back(plugin.description.name);
        return result;
    }

    support::tFolder folder;
};

TEST_F(nRunSelection, AddsDependenciesOfAnyDepthFromTheSameDirectoryInStartOrder) {
    const std::string c = add("C", "B");
    add("B", "A");
    add("A");
    add("Other");
    EXPECT_THAT(names({c}), ElementsAre("A", "B", "C"));
}

TEST_F(nRunSelection, SeesTheWorkingDirectoryInANameWithoutOne) {
    add("A");
    add("B", "A");
    const auto before = std::filesystem::current_path();
    current_path(folder.path());
    EXPECT_THAT(names({"B.ini"}), ElementsAre("A", "B"));
    current_path(before);
}

TEST_F(nRunSelection, LeavesOutWhatNoDescriptionHasAsItsName) {
    EXPECT_THAT(names({add("A", "Missing, A")}), ElementsAre("A"));
}

TEST_F(nRunSelection, PrefersAFileThatIsNamedToOthersWithTheSameName) {
    add("A", "", "other.ini");
    EXPECT_THAT(names({add("B", "A"), add("A")}), ElementsAre("A", "B"));
}

TEST_F(nRunSelection, AddsAllThatHaveTheNameOfADependency) {
    add("A", "", "1.ini");
    add("A", "", "2.ini");
    EXPECT_THAT(names({add("B", "A")}), ElementsAre("A", "A", "B"));
}

TEST_F(nRunSelection, TakesAFileOnceThatIsNamedTwice) {
    const std::string a = add("A");
    EXPECT_THAT(names({a, a, folder.utf8("./A.ini")}), ElementsAre("A"));
}

TEST_F(nRunSelection, LooksInTheDirectoryOfEachFile) {
    add("X", "", "one/x.ini");
    EXPECT_THAT(names({add("A", "X", "two/a.ini"), add("B", "X", "one/b.ini")}), ElementsAre("X", "A", "B"));
}

TEST_F(nRunSelection, IgnoresNeighboursThatTheHostCannotRead) {
    folder.write("broken.ini", "\n\n");
    add("A");
    EXPECT_THAT(names({add("B", "A")}), ElementsAre("A", "B"));
}

TEST_F(nRunSelection, SaysWhichFileTheHostCannotRead) {
    folder.write("broken.ini", "\n\n");
    folder.makeFolder("folder.ini");
    for (const char* const file : {"broken.ini", "missing.ini", "folder.ini"}) {
        try {
            static_cast<void>(select({folder.utf8(file)}));
            ADD_FAILURE() << file;
        } catch (const tCannotRun& error) {
            EXPECT_THAT(error.what(), HasSubstr("The host cannot read '" + folder.utf8(file) + "' as a description"));
        }
    }
}

}  // namespace
