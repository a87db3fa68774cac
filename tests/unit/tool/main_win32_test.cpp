#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/tool/toolProcess_win32.h"

namespace {

using support::tToolProcess;

TEST(mainWin32, ReceivesItsArgumentsAsUtf8AndReturnsTheExitCode) {
    const tToolProcess version(L"--version");
    EXPECT_EQ(version.exitCode(), 0U);
    EXPECT_EQ(version.out().substr(0, 7), "ziptra ");
    const tToolProcess unknown(L"\"\u63D2\u4EF6 \U0001F642 \u00E4\"");
    EXPECT_EQ(unknown.exitCode(), 2U);
    EXPECT_EQ(
        unknown.error(),
        "ziptra: There is no command '\xE6\x8F\x92\xE4\xBB\xB6 \xF0\x9F\x99\x82 \xC3\xA4'; see 'ziptra --help'\n");
}

}  // namespace
