// The trace of listing and reading descriptions in a diagnostic build.
#include "source/nPluginData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stdpath/path.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"
#include "tests/unit/trace/diagnostic/traced.h"

namespace {

using support::caughtReport;
using testing::EndsWith;

TEST(nPluginDataTrace, NamesTheFileAndTheLineThatIsMalformed) {
    const support::tFolder folder;
    const std::string file = folder.write("a.ini", "[Service]\nnonsense\n");
    tPluginDescription record;
    const auto read = [&] { caughtReport([&] { nPluginData::readDescription(file, record); }); };
    EXPECT_THAT(traced(nTrace::descriptions, read), EndsWith("] Parse error " + file + ":2"));
}

TEST(nPluginDataTrace, SaysThatThereIsNoPluginDirectory) {
    const support::tFolder folder;
    const boost::filesystem::path missing = nStdPath::pathFromUtf8(folder.utf8("missing"));
    std::vector<std::string> files;
    const auto list = [&] { caughtReport([&] { nPluginData::listDescriptionFiles(missing, ".ini", files); }); };
    EXPECT_THAT(traced(nTrace::descriptions, list), EndsWith("] Directory does not exist."));
}

}  // namespace
