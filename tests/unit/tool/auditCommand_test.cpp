#include "tool/audit/auditCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/toolRun.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;

TEST(nAuditCommand, ShowsItsHelpWithAnExample) {
    EXPECT_THAT(tToolRun({"audit", "--help"}).out, HasSubstr("Example: ziptra audit --fix\n"));
}

TEST(nAuditCommand, HasTheseOptions) {
    const std::string help = tToolRun({"audit", "--help"}).out;
    for (const char* const line :
         {"\n  --fix                       Set the access lists of the host's folders as 'install' does\n",
          "\n  --json                      Print one JSON document\n",
          "\n  --strict                    Exit code 1 for warnings, too\n"}) {
        EXPECT_THAT(help, HasSubstr(line));
    }
}

TEST(nAuditCommand, TakesNoPlaces) {
    const tToolRun run({"audit", "C:\\"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.error, HasSubstr("; see 'ziptra audit --help'\n"));
}

}  // namespace
