#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tests/unit/tool/sharedDirectory_win32.h"
#include "tool/check/places.h"

namespace {

using nCheck::listPlaces;
using support::idsOf;
using support::tSharedDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(placesOnWindows, AreThePluginDirectoryOfTheMachineIfNoneIsNamed) {
    const support::tFolder folder;
    const std::string file = folder.write("ZiptraRemoteService/plugins/a.ini");
    folder.write("ZiptraRemoteService/plugins/b.INI");
    const std::wstring value = folder.path().wstring();
    const tSharedDirectory shared(&value);
    const nCheck::tListing listing = listPlaces({});
    EXPECT_EQ(listing.directory, folder.utf8("ZiptraRemoteService/plugins"));
    EXPECT_THAT(listing.files, ElementsAre(file));
    EXPECT_THAT(idsOf(listing.findings), ElementsAre("unseen-file"));
    EXPECT_THAT(listing.messages, IsEmpty());
}

TEST(placesOnWindows, AreMissingAsTheHostSaysIfTheDirectoryIsMissing) {
    const support::tFolder folder;
    const std::wstring value = folder.path().wstring();
    const tSharedDirectory shared(&value);
    const nCheck::tListing listing = listPlaces({});
    EXPECT_THAT(listing.messages, ElementsAre("Failed to open plugins directory."));
    ASSERT_THAT(idsOf(listing.findings), ElementsAre("plugins-directory"));
    EXPECT_EQ(listing.findings[0].file, folder.utf8("ZiptraRemoteService/plugins"));
}

TEST(placesOnWindows, AreMissingAsTheHostSaysIfTheSharedDirectoryIsUnknown) {
    const tSharedDirectory shared(nullptr);
    const nCheck::tListing listing = listPlaces({});
    EXPECT_THAT(listing.messages, ElementsAre("Failed to open plugins directory."));
    EXPECT_EQ(listing.directory, "");
}

TEST(placesOnWindows, AreSpelledAsInTheirFolderWhateverWasTyped) {
    const support::tFolder folder;
    const std::string upper = folder.write("UPPER.INI");
    const std::string lower = folder.write("lower.ini");
    const nCheck::tListing listing = listPlaces({folder.utf8("upper.ini"), folder.utf8("LOWER.INI")});
    EXPECT_THAT(listing.files, ElementsAre(lower));
    ASSERT_THAT(idsOf(listing.findings), ElementsAre("unseen-file"));
    EXPECT_EQ(listing.findings[0].file, upper);
    EXPECT_THAT(listing.findings[0].message, testing::HasSubstr("\".ini\" in lower case"));
}

TEST(placesOnWindows, AreListedOnceWhateverTheirSpelling) {
    const support::tFolder folder;
    const std::string file = folder.write("a.ini");
    EXPECT_THAT(listPlaces({file, folder.utf8("A.INI"), folder.utf8("a.INI")}).files, ElementsAre(file));
}

TEST(placesOnWindows, MayBeWrittenLikeADevice) {
    const support::tFolder folder;
    const std::string file = R"(\\.\)" + folder.write("a.ini");
    EXPECT_THAT(listPlaces({file}).files, ElementsAre(file));
}

TEST(placesOnWindows, ThatAreDevicesNeedNoOtherName) {
    for (const char* device : {"NUL", R"(\\.\NUL)"}) {
        const nCheck::tListing listing = listPlaces({device});
        EXPECT_THAT(support::remedyOf(listing.findings, "unseen-file"), testing::StartsWith("Use a regular file"))
            << device;
    }
}

}  // namespace
