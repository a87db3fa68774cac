#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;
using testing::StartsWith;

TEST(nRunCommand, NeedsADescription) {
    const tToolRun result({"run"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.error, "ziptra: DESCRIPTION is required; see 'ziptra run --help'\n");
}

TEST(nRunCommand, AcceptsOnlyNumbersThatMakeSense) {
    for (const char* const times : {"0", "-1", "1.5", "x", "", "100001", "99999999999999999999"}) {
        const tToolRun result({"run", "a.ini", "--times", times});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.error, HasSubstr("is no number from 1 to 100000")) << times;
    }
    for (const char* const limit : {"0", "0.09", "-1", "1.2.3", "1.0001", ".", ".5", "86401", "1e3", "", "ten"}) {
        const tToolRun result({"run", "a.ini", "--limit", limit});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.error, HasSubstr("is no number of seconds from 0.1 to 86400")) << limit;
    }
}

TEST(nRunCommand, CannotLookWithoutTheDescription) {
    const support::tFolder folder;
    for (const char* const limit : {"0.1", "86400", "1.", "2.125"}) {
        const tToolRun result({"run", folder.utf8("missing.ini"), "--limit", limit, "--times", "3", "--allowed", "0x1",
                               "--junit", folder.utf8("report.xml"), "--json"});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.error, StartsWith("ziptra: "));
        EXPECT_THAT(result.error, testing::Not(HasSubstr("--help"))) << limit;
        EXPECT_EQ(result.out, "");
        EXPECT_FALSE(folder.has("report.xml"));
    }
}

TEST(nRunCommand, ShowsItsOptionsInItsHelp) {
    const std::string help = tToolRun({"run", "--help"}).out;
    for (const char* const option : {"\n  DESCRIPTION ... REQUIRED ", "\n  --times N ", "\n  --limit SECONDS ",
                                     "\n  --junit FILE ", "\n  --allowed MASK ", "\n  --json "}) {
        EXPECT_THAT(help, HasSubstr(option));
    }
}

TEST(nRunCommand, ShowsAnExampleInItsHelp) {
    EXPECT_THAT(tToolRun({"run", "--help"}).out, HasSubstr("ziptra run plugins\\transport.ini --times 100"));
}

}  // namespace
