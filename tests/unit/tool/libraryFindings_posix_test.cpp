#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/libraryFindings.h"

namespace {

TEST(libraryFindingsHere, DoNotWaitForTheOtherEndOfAPipe) {
    const support::tFolder folder;
    ASSERT_EQ(mkfifo(folder.utf8("pipe.dll").c_str(), 0600), 0);
    const tPluginDescription description = support::described("A");
    const nCheck::tKeyLines lines;
    nCheck::tFileFindings findings("a.ini");
    EXPECT_EQ(nCheck::examineUnreadable(folder.utf8("pipe.dll"), {"it is not a file"}, {description, lines, findings}),
              nCheck::tLoadVerdict::fails);
    EXPECT_THAT(support::idsOf(findings.take("A")), testing::ElementsAre("not-a-library"));
}

}  // namespace
