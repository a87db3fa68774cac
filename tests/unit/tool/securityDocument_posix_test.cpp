// The access lists that docs/security.md shows are those that the tool sets and restores.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/unit/tool/auditedMachine.h"
#include "tests/unit/tool/sources.h"
#include "tool/install/settings.h"

namespace {

using testing::ElementsAre;

/// Returns the access lists in the section with this title, or in the whole page.
std::vector<std::string> listsIn(const std::string& title) {
    std::string text = support::read(support::sources() / "docs" / "security.md");
    if (!title.empty()) {
        const std::size_t start = text.find("\n## " + title + "\n");
        if (start == std::string::npos) return {"no section " + title};
        text = text.substr(start, text.find("\n## ", start + 1) - start);
    }
    const std::regex list(R"(`((?:O:[A-Z]+)?D:[^`]*)`)");
    std::vector<std::string> lists;
    for (std::sregex_iterator found(text.begin(), text.end(), list), end; found != end; ++found) {
        lists.push_back((*found)[1]);
    }
    return lists;
}

/// Returns the list in the line that restores the service's.
std::string serviceAccess() {
    support::tAuditedMachine fake;
    fake.exist({"x"});
    fake.machine.targets = {{"x", nAccess::tKind::service, "exposed-setting"}};
    fake.lists["x"] = {"S-1-5-18", "", false, {support::allow("S-1-1-0", "Everyone", 2)}};
    const std::string fix = nAudit::findings(fake.machine).at(0).fix;
    const std::size_t start = fix.find('\'') + 1;
    return fix.substr(start, fix.rfind('\'') - start);
}

TEST(securityDocument, ShowsTheAccessListOfFolders) {
    const std::string list(nInstall::folderAccess);
    EXPECT_THAT(listsIn("The executable's folder"), ElementsAre(list));
    EXPECT_THAT(listsIn("The plug-in directory"), ElementsAre(list));
    EXPECT_THAT(listsIn("The shared directory and its registry key"), ElementsAre(list));
    EXPECT_THAT(listsIn("The status folder"), ElementsAre(list));
}

TEST(securityDocument, ShowsTheAccessListOfDumps) {
    EXPECT_THAT(listsIn("Crash dumps"), ElementsAre(std::string(nInstall::dumpsAccess)));
}

TEST(securityDocument, ShowsTheAccessListOfTheService) {
    EXPECT_THAT(listsIn("The service object"), ElementsAre(serviceAccess()));
}

// One entry, for everyone (WD), to query (0x400), as the tests of nProcessAccess on Windows require.
TEST(securityDocument, ShowsTheAccessListOfTheProcess) {
    EXPECT_THAT(listsIn("The service's process"), ElementsAre("D:(A;;0x400;;;WD)"));
}

TEST(securityDocument, ShowsNoOtherAccessLists) { EXPECT_EQ(listsIn("").size(), 7U); }

}  // namespace
