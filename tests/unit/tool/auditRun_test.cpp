#include "tool/audit/auditRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/support/folder.h"
#include "tests/unit/tool/auditedMachine.h"

namespace {

using nAccess::tKind;
using nAudit::tOptions;
using support::allow;

constexpr const char* status = R"(C:\ProgramData\Corvell)";
constexpr const char* plugins = R"(C:\Program Files\Common Files\Corvell\ZiptraRemoteService\plugins)";
constexpr const char* settings = R"(HKLM\SOFTWARE\Corvell\Common\Installer)";

class nAuditRun : public testing::Test {
protected:
    nAuditRun() {
        fake.exist({status, plugins, settings});
        fake.machine.ownFolders = {plugins, status};
        fake.machine.targets = {{settings, tKind::key, "exposed-setting"},
                                {plugins, tKind::folder, "exposed-description"},
                                {status, tKind::folder, "exposed-status"}};
    }

    int run(const tOptions& options) {
        out.str("");
        tContext context{out, out};
        nAudit::run(options, fake.machine, context);
        return context.exitCode;
    }

    void expose(const char* path) { fake.lists[path].entries = {allow("S-1-5-32-545", "BUILTIN\\Users", 6)}; }

    support::tAuditedMachine fake;
    std::ostringstream out;
};

TEST_F(nAuditRun, SaysThatThereIsNothingToFind) {
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(out.str(), "Only administrators can change what the service trusts\n");
    EXPECT_EQ(run({.fix = true}), 0);
    EXPECT_EQ(out.str(), "Only administrators can change what the service trusts\n");
}

TEST_F(nAuditRun, ShowsEachFindingWithTheLineThatFixesItAsTheDocumentDoes) {
    expose(status);
    expose(plugins);
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(
        out.str(),
        "C:\\Program Files\\Common Files\\Corvell\\ZiptraRemoteService\\plugins: error: BUILTIN\\Users can create "
        "files, create folders [exposed-description]\n"
        "    fix: icacls 'C:\\Program Files\\Common Files\\Corvell\\ZiptraRemoteService\\plugins' /remove:g "
        "'*S-1-5-32-545'\n"
        "C:\\ProgramData\\Corvell: warning: BUILTIN\\Users can create files, create folders [exposed-status]\n"
        "    fix: icacls 'C:\\ProgramData\\Corvell' /remove:g '*S-1-5-32-545'\n");
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / "tool.md") && folder.has_relative_path()) folder = folder.parent_path();
    std::string document = support::read(folder / "docs" / "tool.md");
    std::erase(document, '\r');
    EXPECT_NE(document.find("```\n> ziptra audit\n" + out.str() + "```\n"), std::string::npos);
}

TEST_F(nAuditRun, CountsWarningsOnlyIfStrict) {
    expose(status);
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(run({.strict = true}), 1);
}

TEST_F(nAuditRun, SetsTheListsOfItsOwnFoldersAndShowsTheOtherFindings) {
    expose(status);
    expose(settings);
    EXPECT_EQ(run({.fix = true}), 1);
    EXPECT_THAT(out.str(),
                testing::StartsWith("Set the access list of C:\\ProgramData\\Corvell\n"
                                    "HKLM\\SOFTWARE\\Corvell\\Common\\Installer: error: BUILTIN\\Users can set "
                                    "values, create keys [exposed-setting]\n    fix: $acl = "));
    EXPECT_THAT(out.str(), testing::Not(testing::HasSubstr("exposed-status")));
}

TEST_F(nAuditRun, SaysWhichListCouldNotBeSet) {
    expose(status);
    fake.fixError = 5;
    EXPECT_THROW(
        {
            try {
                run({.fix = true});
            } catch (const std::runtime_error& reason) {
                EXPECT_STREQ(reason.what(), "The access list of C:\\ProgramData\\Corvell could not be set: Reason (5)");
                throw;
            }
        },
        std::runtime_error);
}

TEST_F(nAuditRun, PrintsADocumentForScripts) {
    expose(status);
    fake.lists[settings].ownerSid = "S-1-5-21-1";
    fake.lists[settings].ownerName = "Someone";
    EXPECT_EQ(run({.fix = true, .json = true}), 1);
    EXPECT_EQ(out.str(), R"({
  "schema": 1,
  "fixed": [
    "Set the access list of C:\\ProgramData\\Corvell"
  ],
  "findings": [
    {
      "id": "exposed-setting",
      "severity": "error",
      "file": "HKLM\\SOFTWARE\\Corvell\\Common\\Installer",
      "line": null,
      "plugin": null,
      "message": "Someone owns this and can change the access list",
      "remedy": "Run the command that the finding shows.",
      "principal": "Someone",
      "sid": "S-1-5-21-1",
      "right": "change the access list",
      "fix": "$acl = Get-Acl 'Registry::HKEY_LOCAL_MACHINE\\SOFTWARE\\Corvell\\Common\\Installer'; $acl.SetOwner([Security.Principal.SecurityIdentifier]'S-1-5-32-544'); Set-Acl 'Registry::HKEY_LOCAL_MACHINE\\SOFTWARE\\Corvell\\Common\\Installer' $acl"
    }
  ]
}
)");
}

}  // namespace
