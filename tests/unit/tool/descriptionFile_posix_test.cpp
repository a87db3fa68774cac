#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/descriptionFile.h"

namespace {

TEST(descriptionFileHere, WhoseNameIsNotUtf8CannotBeOpened) {
    const support::tFolder folder;
    nCheck::tDescriptionFile file = nCheck::readFile(folder.utf8("\xFF.ini"));
    EXPECT_FALSE(file.description);
    EXPECT_THAT(support::idsOf(file.findings.take("")), testing::ElementsAre("unreadable-file"));
}

}  // namespace
