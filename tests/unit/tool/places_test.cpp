#include "tool/check/places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::listPlaces;
using nCheck::tCannotLook;
using nCheck::tListing;
using support::idsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Returns the sentence that says why the places cannot be listed.
std::string failureOf(const std::vector<std::string>& places) {
    try {
        static_cast<void>(listPlaces(places));
        return "listed";
    } catch (const tCannotLook& failure) {
        return failure.what();
    }
}

TEST(places, OfOneDirectoryAreItsDescriptionsInTheOrderOfWindows) {
    const support::tFolder folder;
    const std::string b = folder.write("b.ini");
    const std::string c = folder.write("C.ini");
    const std::string a = folder.write("a.ini");
    folder.write("d.txt");
    folder.write("below/e.ini");
    const tListing listing = listPlaces({folder.utf8()});
    EXPECT_EQ(listing.directory, folder.utf8());
    EXPECT_THAT(listing.files, ElementsAre(a, b, c));
    EXPECT_THAT(listing.messages, IsEmpty());
    EXPECT_THAT(listing.findings, IsEmpty());
}

TEST(places, MayBeFilesOfDifferentFolders) {
    const support::tFolder folder;
    const std::string b = folder.write("x/b.ini");
    const std::string a = folder.write("y/a.ini");
    EXPECT_THAT(listPlaces({b, a}).files, ElementsAre(a, b)) << "as if they were in one directory";
    EXPECT_EQ(listPlaces({b, a}).directory, b);
}

TEST(places, ListAFileOnceEvenIfItIsNamedTwice) {
    const support::tFolder folder;
    const std::string a = folder.write("a.ini");
    folder.write("b.ini");
    EXPECT_EQ(
        listPlaces({folder.utf8(), a, folder.utf8("../") + folder.utf8().substr(folder.utf8().find_last_of("\\/"))})
            .files.size(),
        2U);
    EXPECT_EQ(listPlaces({folder.write("x/a.ini"), folder.write("y/a.ini")}).files.size(), 2U) << "of the same name";
}

TEST(places, ListAFileOnceWhateverIsNamedBetweenTheTwoTimes) {
    const support::tFolder folder;
    const std::string a = folder.write("a/x.ini");
    const std::string b = folder.write("b/x.ini");
    folder.write("a/y.txt");
    EXPECT_THAT(listPlaces({a, b, a}).files, ElementsAre(a, b));
    EXPECT_THAT(listPlaces({folder.utf8("a"), folder.utf8("b"), folder.utf8("a")}).files, ElementsAre(a, b));
    EXPECT_THAT(listPlaces({folder.utf8("a"), b, folder.utf8("b/../a/x.ini")}).files, ElementsAre(a, b));
}

TEST(places, ReportAFileOnceEvenIfItIsNamedTwice) {
    const support::tFolder folder;
    const std::string a = folder.write("a/x.INI");
    const std::string b = folder.write("b/x.INI");
    const tListing listing = listPlaces({folder.utf8("a"), b, folder.utf8("b/../a"), a});
    ASSERT_THAT(idsOf(listing.findings), ElementsAre("unseen-file", "unseen-file"));
    EXPECT_NE(listing.findings[0].file, listing.findings[1].file);
}

TEST(places, AreTwoIfAFileHasTwoNames) {
    const support::tFolder folder;
    const std::string a = folder.write("a.ini");
    create_hard_link(folder.path() / "a.ini", folder.path() / "b.ini");
    EXPECT_THAT(listPlaces({a, folder.utf8("b.ini")}).files, ElementsAre(a, folder.utf8("b.ini")));
}

TEST(places, ReportFilesThatTheHostDoesNotSee) {
    const support::tFolder folder;
    for (const char* name : {"a.INI", "b.Ini", "c.ini.txt", "d.INI.TXT"}) folder.write(name);
    for (const char* name : {"e.ini.bak", "f.txt", "g", "ini"}) folder.write(name);
    const tListing listing = listPlaces({folder.utf8()});
    EXPECT_THAT(listing.files, IsEmpty());
    EXPECT_THAT(idsOf(listing.findings), ElementsAre("unseen-file", "unseen-file", "unseen-file", "unseen-file"));
    EXPECT_EQ(listing.findings[0].file, folder.utf8("a.INI"));
    EXPECT_THAT(listing.findings[0].message, HasSubstr("\".ini\" in lower case"));
}

TEST(places, ReportFoldersThatAreNamedLikeDescriptions) {
    const support::tFolder folder;
    folder.makeFolder("a.ini");
    folder.makeFolder("b.INI");
    folder.makeFolder("c");
    EXPECT_THAT(idsOf(listPlaces({folder.utf8()}).findings), ElementsAre("unseen-folder", "unseen-folder"));
}

TEST(places, ReportANamedFileThatIsNoDescription) {
    const support::tFolder folder;
    const tListing listing = listPlaces({folder.write("a.txt")});
    EXPECT_THAT(listing.files, IsEmpty());
    EXPECT_THAT(idsOf(listing.findings), ElementsAre("unseen-file"));
}

TEST(places, ThatDoNotExistCannotBeListed) {
    const support::tFolder folder;
    const std::string none = folder.utf8("none");
    EXPECT_EQ(failureOf({none}), "There is no file or directory \"" + none + "\"");
    EXPECT_EQ(failureOf({folder.utf8(), none}), "There is no file or directory \"" + none + "\"");
    EXPECT_EQ(failureOf({""}), "There is no file or directory \"\"");
}

TEST(places, MayHaveNamesThatAreNotAscii) {
    const support::tFolder folder;
    const std::string file = folder.write(u"\u540D\u524D/\u00E9.ini");
    EXPECT_THAT(listPlaces({folder.utf8(u"\u540D\u524D")}).files, ElementsAre(file));
    EXPECT_THAT(listPlaces({file}).files, ElementsAre(file));
}

}  // namespace
