#include "tool/install/access.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace nAccess;
using testing::IsEmpty;

constexpr const char* system = "S-1-5-18";
constexpr const char* administrators = "S-1-5-32-544";
constexpr const char* installer = "S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";
constexpr const char* users = "S-1-5-32-545";
constexpr const char* everyone = "S-1-1-0";
constexpr const char* someone = "S-1-5-21-1-2-3-1001";

tEntry allow(const char* sid, std::uint32_t rights) { return {true, false, false, rights, sid, sid}; }
tEntry deny(const char* sid, std::uint32_t rights) { return {false, false, false, rights, sid, sid}; }

/// Owned by the Administrators.
tList listOf(std::vector<tEntry> entries) { return {administrators, administrators, false, std::move(entries)}; }

/// Returns "SID: RIGHTS" for each grant, with an "i" for inherited and an "o" for the owner's.
std::vector<std::string> grantsOf(const tList& list, tKind kind, const std::string& administrator = "") {
    std::vector<std::string> texts;
    for (const tGrant& grant : grants(list, kind, administrator)) {
        texts.push_back(grant.sid + ": " + inWords(grant.rights, kind) + (grant.inherited ? " i" : "") +
                        (grant.asOwner ? " o" : ""));
    }
    return texts;
}

using tTexts = std::vector<std::string>;

TEST(nAccess, TrustsSystemAdministratorsAndTheInstallerOfWindows) {
    const tList list = listOf({allow(system, 0x1F01FF), allow(administrators, 0x10000000), allow(installer, 0x1F01FF)});
    for (const tKind kind : {tKind::file, tKind::folder, tKind::passage, tKind::key, tKind::service}) {
        EXPECT_THAT(grantsOf(list, kind), IsEmpty());
    }
    EXPECT_THAT(grantsOf(listOf({allow("S-1-5-18-1", 2)}), tKind::file), testing::SizeIs(1));
}

TEST(nAccess, DoesNotMindWhoReadsOrRuns) {
    EXPECT_THAT(grantsOf(listOf({allow(users, 0x1200A9), allow(everyone, 0xA0000000)}), tKind::file), IsEmpty());
    EXPECT_THAT(grantsOf(listOf({allow(users, 0x20019)}), tKind::key), IsEmpty());
    EXPECT_THAT(grantsOf(listOf({allow(users, 0x2018D)}), tKind::service), IsEmpty());
}

TEST(nAccess, NamesTheRightsThatChangeEachKindOfObject) {
    const tList all = listOf({allow(someone, 0x1F01FF)});
    const std::string rest = ", delete, change the access list, take ownership";
    const std::string who = std::string(someone) + ": ";
    EXPECT_EQ(grantsOf(all, tKind::file), tTexts{who + "write, append" + rest});
    EXPECT_EQ(grantsOf(all, tKind::folder), tTexts{who + "create files, create folders, delete what is in it" + rest});
    EXPECT_EQ(grantsOf(all, tKind::passage), tTexts{who + "delete what is in it" + rest});
    EXPECT_EQ(grantsOf(all, tKind::key), tTexts{who + "set values, create keys, create links" + rest});
    EXPECT_EQ(grantsOf(all, tKind::service), tTexts{who + "change the configuration" + rest});
}

TEST(nAccess, DoesNotMindWhoCreatesSomethingBesideTheWay) {
    EXPECT_THAT(grantsOf(listOf({allow(users, 0x120116)}), tKind::passage), IsEmpty());
}

TEST(nAccess, KnowsWhatGenericRightsConsistOf) {
    const std::string who = std::string(everyone) + ": ";
    const tList write = listOf({allow(everyone, 0x40000000)});
    EXPECT_EQ(grantsOf(write, tKind::file), tTexts{who + "write, append"});
    EXPECT_EQ(grantsOf(write, tKind::folder), tTexts{who + "create files, create folders"});
    EXPECT_THAT(grantsOf(write, tKind::passage), IsEmpty());
    EXPECT_EQ(grantsOf(write, tKind::key), tTexts{who + "set values, create keys"});
    EXPECT_EQ(grantsOf(write, tKind::service), tTexts{who + "change the configuration"});
    EXPECT_EQ(grantsOf(listOf({allow(everyone, 0x10000000)}), tKind::service),
              tTexts{who + "change the configuration, delete, change the access list, take ownership"});
}

TEST(nAccess, IgnoresEntriesThatOnlyConcernWhatIsCreatedInside) {
    tEntry entry = allow("S-1-3-0", 0x10000000);
    entry.inheritOnly = true;
    tEntry modify = allow(users, 0x1301BF);
    modify.inheritOnly = true;
    EXPECT_THAT(grantsOf(listOf({entry, modify}), tKind::folder), IsEmpty());
}

TEST(nAccess, IgnoresEntriesOfTheCreatorWhomNoTokenContains) {
    EXPECT_THAT(grantsOf(listOf({allow("S-1-3-0", 0x1F01FF), allow("S-1-3-1", 0x1F01FF)}), tKind::folder), IsEmpty());
}

TEST(nAccess, SubtractsWhatAnEarlierEntryDenies) {
    EXPECT_THAT(grantsOf(listOf({deny(users, 6), allow(users, 6)}), tKind::file), IsEmpty());
    EXPECT_THAT(grantsOf(listOf({deny(everyone, 0x10000000), allow(users, 6)}), tKind::file), IsEmpty());
    EXPECT_EQ(grantsOf(listOf({deny(users, 0x40000000), allow(users, 0x10006)}), tKind::file),
              tTexts{std::string(users) + ": delete"});
}

TEST(nAccess, DoesNotSubtractWhatIsDeniedLaterOrToOthersOrInside) {
    tEntry inside = deny(users, 6);
    inside.inheritOnly = true;
    for (const std::vector<tEntry>& entries : {std::vector{allow(users, 2), deny(users, 2)},
                                               {deny(someone, 2), allow(users, 2)},
                                               {inside, allow(users, 2)}}) {
        EXPECT_EQ(grantsOf(listOf(entries), tKind::file), tTexts{std::string(users) + ": write"});
    }
}

TEST(nAccess, AddsUpTheEntriesOfAPrincipal) {
    tEntry inherited = allow(users, 4);
    inherited.inherited = true;
    EXPECT_EQ(grantsOf(listOf({allow(users, 2), allow(someone, 2), inherited}), tKind::file),
              (tTexts{std::string(users) + ": write, append i", std::string(someone) + ": write"}));
}

TEST(nAccess, LetsAnOwnerChangeTheListWhateverItSays) {
    tList list{someone, "Someone", false, {}};
    EXPECT_EQ(grantsOf(list, tKind::file), tTexts{std::string(someone) + ": change the access list o"});
    EXPECT_EQ(grants(list, tKind::file, "")[0].name, "Someone");
    list.ownerSid = "";
    EXPECT_THAT(grantsOf(list, tKind::file), IsEmpty());
}

TEST(nAccess, LimitsTheOwnerToAnEntryForOwners) {
    constexpr const char* ownerRights = "S-1-3-4";
    EXPECT_THAT(grantsOf({someone, "", false, {allow(ownerRights, 0x20000)}}, tKind::file), IsEmpty());
    EXPECT_EQ(grantsOf({someone, "", false, {allow(ownerRights, 2)}}, tKind::file), tTexts{"S-1-3-4: write"});
    EXPECT_THAT(grantsOf({administrators, "", false, {allow(ownerRights, 2)}}, tKind::file), IsEmpty());
    tEntry inside = allow(ownerRights, 2);
    inside.inheritOnly = true;
    EXPECT_EQ(grantsOf({someone, "", false, {inside}}, tKind::file),
              tTexts{std::string(someone) + ": change the access list o"});
}

TEST(nAccess, WithoutAListGrantsEverythingToEveryone) {
    const tList list{administrators, "", true, {}};
    EXPECT_EQ(grantsOf(list, tKind::service),
              tTexts{"S-1-1-0: change the configuration, delete, change the access list, take ownership"});
    EXPECT_EQ(grants(list, tKind::service, "")[0].name, "Everyone");
}

TEST(nAccess, WithAnEmptyListGrantsNothing) { EXPECT_THAT(grantsOf(listOf({}), tKind::file), IsEmpty()); }

TEST(nAccess, TrustsTheAdministratorWhoAsks) {
    const tList list{someone, "", false, {allow(someone, 0x1F01FF)}};
    EXPECT_THAT(grantsOf(list, tKind::file, someone), IsEmpty());
    EXPECT_EQ(grantsOf(list, tKind::file, users).size(), 2U);
}

}  // namespace
