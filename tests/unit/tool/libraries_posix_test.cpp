// Libraries of a machine that runs the host, examined on another one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/libraries.h"

namespace {

using nCheck::tLibraries;
using nCheck::tLoadVerdict;
using support::idsOf;
using support::plainLibrary;
using support::tPluginFolder;
using testing::ElementsAre;

TEST(librariesElsewhere, AreNotLookedForIfNoFolderIsMapped) {
    tLibraries libraries(nPe::tFolderMap{{R"(C:\P)", "somewhere"}});
    tPluginDescription description;
    const nCheck::tKeyLines lines;
    nCheck::tFileFindings findings("a.ini");
    description.path = R"(C:\Q\a.dll)";
    EXPECT_EQ(libraries.examine({description, lines, findings}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(findings.take("")), ElementsAre("unmapped-path"));
    description.path = R"(C:\P2\a.dll)";
    EXPECT_EQ(libraries.examine({description, lines, findings}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(findings.take("")), ElementsAre("unmapped-path"));
    description.path = R"(C:\P\..\Q\a.dll)";
    EXPECT_EQ(libraries.examine({description, lines, findings}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(findings.take("")), ElementsAre("unmapped-path"));
    description.path = R"(C:\Q\..\P\a.dll)";
    EXPECT_EQ(libraries.examine({description, lines, findings}), tLoadVerdict::fails);
    EXPECT_THAT(idsOf(findings.take("")), ElementsAre("missing-library"));
    description.path = R"(c:\p\a.dll)";
    EXPECT_EQ(libraries.examine({description, lines, findings}), tLoadVerdict::fails);
    EXPECT_THAT(idsOf(findings.take("")), ElementsAre("missing-library"));
    description.path = "a.dll";
    EXPECT_EQ(libraries.examine({description, lines, findings}), tLoadVerdict::uncertain);
    EXPECT_THAT(idsOf(findings.take("")), ElementsAre("relative-path"));
}

TEST(librariesElsewhere, AreOpenIfTheirPathHasForwardSlashesOnly) {
    tPluginFolder folder;
    std::string path = folder.addLibrary("a.dll", plainLibrary().bytes());
    folder.add("a.ini", "[Service]\nName=A\nPath=" + path + "\n");
    std::replace(path.begin(), path.end(), '\\', '/');
    folder.add("b.ini", "[Service]\nName=B\nPath=" + path + "\n");
    EXPECT_THAT(tPluginFolder::codes(folder.predict()), ElementsAre("A 0", "B -"));
}

TEST(librariesElsewhere, AreSharedIfOneIsALinkToTheOtherOrIsWrittenWithAPrefix) {
    tPluginFolder folder;
    const std::string path = folder.addLibrary("a.dll", plainLibrary({"I"}).bytes());
    create_symlink(folder.folder().path() / "libraries/a.dll", folder.folder().path() / "libraries/b.dll");
    folder.add("a.ini", "[Service]\nName=A\nInitialize=I\nPath=" + path + "\n");
    folder.add("b.ini", "[Service]\nName=B\nInitialize=I\nPath=" + folder.library("b.dll") + "\n");
    folder.add("c.ini", "[Service]\nName=C\nInitialize=I\nPath=\\\\?\\" + path + "\n");
    EXPECT_THAT(idsOf(folder.predict().findings), ElementsAre("4 shared-library", "4 shared-library"));
}

}  // namespace
