#include "tool/audit/audit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/auditedMachine.h"

namespace {

using nAccess::tKind;
using nAudit::tTarget;
using support::allow;
using support::tAuditedMachine;
using testing::ElementsAre;
using testing::IsEmpty;

class nAuditTargets : public testing::Test {
protected:
    /// Returns "KIND PATH" for each target and what leads to it; the kinds are f, d (folder), p (passage), k, s.
    [[nodiscard]] std::vector<std::string> withPassages(const std::vector<tTarget>& targets) const {
        std::vector<std::string> texts;
        for (const tTarget& target : nAudit::withPassages(targets, fake.machine)) {
            texts.push_back("fdpks"[static_cast<int>(target.kind)] + (' ' + target.path));
        }
        return texts;
    }

    tAuditedMachine fake;
};

TEST_F(nAuditTargets, OfAFileIncludeItsFolderAndTheWayToIt) {
    fake.exist({"C:\\", "C:\\a", "C:\\a\\b", R"(C:\a\b\x.exe)"});
    EXPECT_THAT(withPassages({{"C:\\a\\b\\x.exe", tKind::file, "exposed-code"}}),
                ElementsAre("f C:\\a\\b\\x.exe", "d C:\\a\\b", "p C:\\a", "p C:\\"));
}

TEST_F(nAuditTargets, OfAFolderIncludeTheWayToIt) {
    fake.exist({"C:\\", "C:\\a", "C:\\a\\b"});
    EXPECT_THAT(withPassages({{"C:\\a\\b", tKind::folder, "exposed-code"}}),
                ElementsAre("d C:\\a\\b", "p C:\\a", "p C:\\"));
}

TEST_F(nAuditTargets, OccurOnceWhateverTheirCaseAndMoreThanAPassageIfTheyAreThat) {
    fake.exist({"C:\\", "C:\\A", "C:\\a", "C:\\A\\x", "C:\\a\\b"});
    EXPECT_THAT(
        withPassages({{"C:\\a\\b", tKind::folder, "exposed-status"}, {"C:\\A\\x", tKind::file, "exposed-code"}}),
        ElementsAre("d C:\\a\\b", "d C:\\A", "p C:\\", "f C:\\A\\x"));
}

TEST_F(nAuditTargets, AreTheFolderInWhichOthersCouldCreateWhatIsMissing) {
    fake.exist({"C:\\", "C:\\a", "HKLM\\SOFTWARE"});
    EXPECT_THAT(withPassages({{"C:\\a\\b\\x.dll", tKind::file, "exposed-code"},
                              {"HKLM\\SOFTWARE\\Corvell\\Common", tKind::key, "exposed-setting"}}),
                ElementsAre("d C:\\a", "p C:\\", "k HKLM\\SOFTWARE"));
}

TEST_F(nAuditTargets, DoNotIncludeWhatIsNowhereOrCannotBeFollowed) {
    fake.exist({R"(\\server\share\a)", "service"});
    EXPECT_THAT(withPassages({{"D:\\x.dll", tKind::file, "exposed-code"},
                              {"x.dll", tKind::file, "exposed-code"},
                              {"\\\\server\\share\\a", tKind::folder, "exposed-code"},
                              {"service", tKind::service, "exposed-setting"}}),
                ElementsAre("d \\\\server\\share\\a", "s service"));
}

TEST(nAuditFindings, NamePrincipalRightAndTheLineThatRemovesIt) {
    tAuditedMachine fake;
    fake.exist({"C:\\", "C:\\O'Neill"});
    fake.machine.targets = {{"C:\\O'Neill", tKind::folder, "exposed-code", "Transport"}};
    fake.lists["C:\\O'Neill"].entries = {allow("S-1-5-32-545", "BUILTIN\\Users", 0x10002)};
    const auto findings = nAudit::findings(fake.machine);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].finding.id, "exposed-code");
    EXPECT_EQ(findings[0].finding.severity, tSeverity::error);
    EXPECT_EQ(findings[0].finding.file, "C:\\O'Neill");
    EXPECT_EQ(findings[0].finding.plugin, "Transport");
    EXPECT_EQ(findings[0].finding.message, "BUILTIN\\Users can create files, delete");
    EXPECT_EQ(findings[0].principal, "BUILTIN\\Users");
    EXPECT_EQ(findings[0].sid, "S-1-5-32-545");
    EXPECT_EQ(findings[0].right, "create files, delete");
    EXPECT_EQ(findings[0].fix, "icacls 'C:\\O''Neill' /remove:g '*S-1-5-32-545'");
}

TEST(nAuditFindings, SayThatAListCannotBeRead) {
    tAuditedMachine fake;
    fake.exist({"C:\\x"});
    fake.machine.targets = {{"C:\\x", tKind::file, "exposed-code"}};
    fake.error = 5;
    const auto findings = nAudit::findings(fake.machine);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].finding.id, "unreadable-access");
    EXPECT_EQ(findings[0].finding.message, "the access list cannot be read: Reason (5)");
    EXPECT_EQ(findings[0].fix, "");
}

/// Returns "FILE (PLUG-IN): MESSAGE" for each finding, all of which must be about what is not examined.
std::vector<std::string> unexamined(const tAuditedMachine& fake) {
    std::vector<std::string> texts;
    for (const auto& [finding, principal, sid, right, fix] : nAudit::findings(fake.machine)) {
        EXPECT_EQ(finding.id, "unexamined-path");
        EXPECT_EQ(finding.severity, tSeverity::warning);
        EXPECT_EQ(principal + sid + right + fix, "");
        texts.push_back(finding.file + " (" + finding.plugin.value_or("") + "): " + finding.message);
    }
    return texts;
}

TEST(nAuditFindings, SayThatAPathLeadsToNoDriveOfThisMachine) {
    tAuditedMachine fake;
    fake.machine.targets = {{R"(\\server\share\x.dll)", tKind::file, "exposed-code", "A"},
                            {"N:\\plugins", tKind::folder, "exposed-description"},
                            {"HKLM\\x", tKind::key, "exposed-setting"},
                            {"x", tKind::service, "exposed-setting"}};
    for (const tTarget& target : fake.machine.targets) fake.places[target.path] = nAudit::tPlace::elsewhere;
    const std::string message = "this is on no drive of this machine; not all who can change it are examined";
    EXPECT_THAT(unexamined(fake),
                ElementsAre("\\\\server\\share\\x.dll (A): " + message, "N:\\plugins (): " + message));
}

TEST(nAuditFindings, SayThatALinkOnTheWayIsNotFollowed) {
    tAuditedMachine fake;
    fake.exist({"C:\\", "C:\\a", "C:\\a\\b", R"(C:\a\b\x.dll)", "HKLM\\x", "x"});
    fake.machine.targets = {{R"(C:\a\b\x.dll)", tKind::file, "exposed-code", "A"},
                            {"HKLM\\x", tKind::key, "exposed-setting"},
                            {"x", tKind::service, "exposed-setting"}};
    for (const char* const path : {"C:\\a", R"(C:\a\b\x.dll)", "HKLM\\x", "x"}) {
        fake.places[path] = nAudit::tPlace::linked;
    }
    EXPECT_THAT(unexamined(fake), ElementsAre("C:\\a\\b\\x.dll (A): this is a link; what it leads to is not examined",
                                              "C:\\a (A): this is a link; what it leads to is not examined"));
}

/// Returns the targets after the description "f.ini" of the plug-in "A", whose library has this path.
std::vector<std::string> targetsOf(const std::string& path, tAuditedMachine& fake) {
    tPluginDescription description;
    description.name = "A";
    description.path = path;
    nAudit::addPlugin(fake.machine, "f.ini", description, "C:\\windows\\system32");
    std::vector<std::string> paths;
    for (const tTarget& target : fake.machine.targets) {
        EXPECT_EQ(target.plugin, "A");
        EXPECT_EQ(target.rule, paths.empty() ? "exposed-description" : "exposed-code");
        EXPECT_EQ(target.kind, tKind::file);
        paths.push_back(target.path);
    }
    return paths;
}

/// Returns the library that is examined.
std::string libraryOf(const std::string& path) {
    tAuditedMachine fake;
    const std::vector<std::string> paths = targetsOf(path, fake);
    EXPECT_THAT(unexamined(fake), IsEmpty());
    EXPECT_EQ(paths.at(0), "f.ini");
    return paths.size() == 2 ? paths[1] : "";
}

TEST(nAuditPlugins, AreTheDescriptionAndTheLibraryAsTheServiceFindsIt) {
    EXPECT_EQ(libraryOf(""), "");
    EXPECT_EQ(libraryOf("C:\\p\\x"), "C:\\p\\x.dll");
    EXPECT_EQ(libraryOf("\\p\\x.dll"), "C:\\p\\x.dll");
    EXPECT_EQ(libraryOf("c:x.dll"), "C:\\windows\\system32\\x.dll");
    EXPECT_EQ(libraryOf("\\\\server\\share\\x.dll"), "\\\\server\\share\\x.dll");
    EXPECT_EQ(libraryOf("\\\\?\\D:\\x.dll"), "D:\\x.dll");
    EXPECT_EQ(libraryOf("\\??\\D:\\x.dll"), "D:\\x.dll");
    EXPECT_EQ(libraryOf("\\\\?\\UNC\\s\\x.dll"), "\\\\?\\UNC\\s\\x.dll");
}

TEST(nAuditPlugins, AreNotAllExaminedIfTheLibraryIsSearchedFor) {
    tAuditedMachine fake;
    EXPECT_THAT(targetsOf("bin\\x.dll", fake), ElementsAre("f.ini"));
    EXPECT_THAT(unexamined(fake), ElementsAre("f.ini (A): the loader searches for bin\\x.dll in several folders"));
}

/// Returns the fixes of the findings about one object with this list.
std::vector<std::string> fixesOf(const std::string& path, tKind kind, const nAccess::tList& list) {
    tAuditedMachine fake;
    fake.exist({path});
    fake.machine.targets = {{path, kind, "exposed-setting"}};
    fake.lists[path] = list;
    std::vector<std::string> fixes;
    for (const auto& finding : nAudit::findings(fake.machine)) fixes.push_back(finding.fix);
    return fixes;
}

nAccess::tEntry inherited(nAccess::tEntry entry) {
    entry.inherited = true;
    return entry;
}

TEST(nAuditFix, OfAnInheritedEntryFirstMakesItTheObjectsOwn) {
    const nAccess::tList list{"S-1-5-18", "", false, {inherited(allow("S-1-1-0", "Everyone", 2))}};
    EXPECT_THAT(fixesOf("C:\\x", tKind::file, list),
                ElementsAre("icacls 'C:\\x' /inheritance:d; icacls 'C:\\x' /remove:g '*S-1-1-0'"));
    EXPECT_THAT(
        fixesOf("HKLM\\a b", tKind::key, list),
        ElementsAre("$acl = Get-Acl 'Registry::HKEY_LOCAL_MACHINE\\a b'; $acl.SetAccessRuleProtection($true, $true); "
                    "$acl.PurgeAccessRules([Security.Principal.SecurityIdentifier]'S-1-1-0'); "
                    "Set-Acl 'Registry::HKEY_LOCAL_MACHINE\\a b' $acl"));
}

TEST(nAuditFix, OfAnOwnerMakesTheAdministratorsOwners) {
    const nAccess::tList list{"S-1-5-21-1", "Someone", false, {}};
    EXPECT_THAT(fixesOf("C:\\x", tKind::passage, list), ElementsAre("icacls 'C:\\x' /setowner '*S-1-5-32-544'"));
    EXPECT_THAT(fixesOf("HKLM\\x", tKind::key, list),
                ElementsAre("$acl = Get-Acl 'Registry::HKEY_LOCAL_MACHINE\\x'; "
                            "$acl.SetOwner([Security.Principal.SecurityIdentifier]'S-1-5-32-544'); "
                            "Set-Acl 'Registry::HKEY_LOCAL_MACHINE\\x' $acl"));
}

TEST(nAuditFix, WithoutAListTakesThatOfTheFolderAbove) {
    EXPECT_THAT(fixesOf("C:\\x", tKind::file, {"S-1-5-18", "", true, {}}), ElementsAre("icacls 'C:\\x' /reset"));
}

TEST(nAuditFix, OfAServiceIsTheListOfANewOne) {
    EXPECT_THAT(fixesOf("x", tKind::service, {"S-1-5-18", "", false, {allow("S-1-1-0", "Everyone", 2)}}),
                ElementsAre("sc.exe sdset x 'D:(A;;CCLCSWRPWPDTLOCRRC;;;SY)(A;;CCDCLCSWRPWPDTLOCRSDRCWDWO;;;BA)"
                            "(A;;CCLCSWLOCRRC;;;IU)(A;;CCLCSWLOCRRC;;;SU)'"));
}

TEST(nAuditFindings, DoNotExistOnAMachineThatOnlyAdministratorsCanChange) {
    tAuditedMachine fake;
    fake.exist({"C:\\", "C:\\x", "HKLM\\x", "x"});
    fake.machine.targets = {{"C:\\x", tKind::file, "exposed-code"},
                            {"HKLM\\x", tKind::key, "exposed-setting"},
                            {"x", tKind::service, "exposed-setting"}};
    EXPECT_THAT(nAudit::findings(fake.machine), IsEmpty());
}

}  // namespace
