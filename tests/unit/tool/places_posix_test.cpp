#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/places.h"

namespace {

using nCheck::listPlaces;
using nCheck::tCannotLook;
using support::idsOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(placesHere, MustBeNamedBecauseTheHostDoesNotRunHere) {
    try {
        static_cast<void>(listPlaces({}));
        FAIL();
    } catch (const tCannotLook& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("name a directory or files"));
    }
}

TEST(placesHere, AreReportedIfTheyCannotBeRead) {
    const support::tFolder folder;
    rlimit usual{};
    getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit none{0, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    std::string reason;
    try {
        static_cast<void>(listPlaces({folder.utf8()}));
    } catch (const tCannotLook& failure) {
        reason = failure.what();
    }
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_EQ(reason, "The directory \"" + folder.utf8() + "\" cannot be read");
}

TEST(placesHere, MayContainLinksToFilesButNotToNothing) {
    const support::tFolder folder;
    folder.write("target", "[Service]\n");
    create_symlink(folder.path() / "target", folder.path() / "a.ini");
    create_symlink(folder.path() / "none", folder.path() / "b.ini");
    mkfifo((folder.path() / "c.ini").c_str(), 0600);
    const nCheck::tListing listing = listPlaces({folder.utf8()});
    EXPECT_THAT(listing.files, ElementsAre(folder.utf8("a.ini")));
    EXPECT_THAT(idsOf(listing.findings), ElementsAre("unseen-file", "unseen-file"));
    EXPECT_THAT(listing.findings[0].message, HasSubstr("not a regular file"));
}

TEST(placesHere, ThatAreNoRegularFilesNeedNoOtherName) {
    const support::tFolder folder;
    mkfifo((folder.path() / "a.ini").c_str(), 0600);
    for (const std::string& place : {std::string("/dev/null"), folder.utf8("a.ini"), folder.utf8()}) {
        const nCheck::tListing listing = listPlaces({place});
        EXPECT_EQ(support::remedyOf(listing.findings, "unseen-file"),
                  "Use a regular file: the host reads neither devices nor pipes, nor links that lead nowhere.")
            << place;
    }
}

TEST(placesHere, ThatLeadNowhereAreListedOnce) {
    const support::tFolder folder;
    folder.makeFolder("real");
    create_symlink(folder.path() / "none", folder.path() / "real" / "a.ini");
    create_directory_symlink(folder.path() / "real", folder.path() / "link");
    const nCheck::tListing listing =
        listPlaces({folder.utf8("real"), folder.utf8("link"), folder.utf8("real/a.ini"), folder.utf8("real/../real")});
    EXPECT_THAT(idsOf(listing.findings), ElementsAre("unseen-file"));
}

TEST(placesHere, OfOneFileInTwoFoldersAreTwo) {
    const support::tFolder folder;
    folder.write("a/x.ini");
    folder.makeFolder("b");
    create_hard_link(folder.path() / "a" / "x.ini", folder.path() / "b" / "x.ini");
    EXPECT_THAT(listPlaces({folder.utf8("a/x.ini"), folder.utf8("b/x.ini")}).files, testing::SizeIs(2));
}

TEST(placesHere, MayBePipesWhichAreNotWaitedFor) {
    const support::tFolder folder;
    mkfifo((folder.path() / "a.ini").c_str(), 0600);
    const nCheck::tListing listing = listPlaces({folder.utf8("a.ini")});
    EXPECT_THAT(idsOf(listing.findings), ElementsAre("unseen-file"));
}

}  // namespace
