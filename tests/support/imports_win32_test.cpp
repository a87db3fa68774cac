#include "tests/support/imports_win32.h"

#include <gtest/gtest.h>

namespace {

TEST(Imports, ReachTheSystemUnlessReplaced) { EXPECT_EQ(GetCurrentProcessId(), imports::GetCurrentProcessId.real()); }

TEST(Imports, GoToTheReplacementOfTheTest) {
    imports::GetCurrentProcessId.replace([] { return 42UL; });
    EXPECT_EQ(GetCurrentProcessId(), 42U);
    imports::ImportBase::restoreAll();
    EXPECT_NE(GetCurrentProcessId(), 42U);
}

TEST(Imports, GoToTheReplacementByWayOfAJumpToo) {
    imports::fclose.replace([](FILE* file) { return file == stdin ? 42 : 43; });
    EXPECT_EQ(fclose(stdin), 42);
}

}  // namespace
