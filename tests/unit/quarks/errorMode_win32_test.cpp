#include <gtest/gtest.h>

#include "quarks/errorMode.h"
#include "tests/support/imports_win32.h"

namespace {

TEST(tErrorMode, SuppressesMessageBoxesWhileItExistsAndRestoresTheModeAfterwards) {
    DWORD testsMode = 0;
    SetThreadErrorMode(SEM_NOOPENFILEERRORBOX, &testsMode);
    {
        const tErrorMode errorMode;
        EXPECT_EQ(GetThreadErrorMode(), DWORD{SEM_FAILCRITICALERRORS});
    }
    EXPECT_EQ(GetThreadErrorMode(), DWORD{SEM_NOOPENFILEERRORBOX});
    SetThreadErrorMode(testsMode, nullptr);
}

}  // namespace
