#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/explainedMachine.h"
#include "tests/unit/tool/sharedDirectory_win32.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::nExplainCommandOfPlugins;
using support::tSharedDirectory;
using support::tToolRun;
using testing::HasSubstr;

TEST_F(nExplainCommandOfPlugins, SaysThatTheHostCannotOpenItsPluginDirectory) {
    const std::wstring shared = folder.path().wstring();
    const tSharedDirectory directory(&shared);
    const std::string sentence = "The host cannot open its plug-in directory, " +
                                 folder.utf8("ZiptraRemoteService/plugins") +
                                 ", so its next start will start no plug-in. Create ZiptraRemoteService\\plugins in ";
    const tToolRun withStatus(with({"Transport"}, true, false));
    EXPECT_EQ(withStatus.exitCode, 0);
    EXPECT_THAT(withStatus.out, HasSubstr(sentence));
    const tToolRun withNeither(with({"Transport"}, false, false));
    EXPECT_EQ(withNeither.exitCode, 2);
    EXPECT_EQ(withNeither.out, "");
    EXPECT_THAT(withNeither.error, HasSubstr("\nziptra: " + sentence));
}

TEST_F(nExplainCommandOfPlugins, SaysThatTheSharedDirectoryIsUnknown) {
    const tSharedDirectory directory(nullptr);
    EXPECT_THAT(
        tToolRun(with({"Transport"}, true, false)).out,
        HasSubstr("The host cannot open its plug-in directory, so its next start will start no plug-in. Create "));
}

}  // namespace
