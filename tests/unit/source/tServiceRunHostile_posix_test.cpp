// Runs over plug-in directories whose file names Windows does not allow.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/runTest.h"

namespace {

using tServiceRunHostile = support::tRunTest;

TEST_F(tServiceRunHostile, FileNamesMayContainQuotesAndControlCharacters) {
    world.describe("\"'\x01\t\x1B[31m\x7F.ini", world.calling("A"));
    world.describe("two\nlines.ini", world.calling("B"));
    const std::string bad = world.describe("\"bad\n\x02.ini", "nonsense");
    runWithoutWaiting();
    EXPECT_THAT(outcome(), testing::ElementsAre("A 3", "B 3"));
    EXPECT_EQ(gService->messages, rejection(bad) + support::noFramework);
}

TEST_F(tServiceRunHostile, AFileNameThatIsNotUtf8CostsItsPluginAlone) {
    const std::string bad = world.describe("\xFF\xC0\x80.ini", world.calling("Bad"));
    world.describe("a.ini", world.calling("A"));
    runWithoutWaiting();
    EXPECT_THAT(outcome(), testing::ElementsAre("A 3"));
    EXPECT_EQ(gService->messages, rejection(bad) + support::noFramework);
}

}  // namespace
