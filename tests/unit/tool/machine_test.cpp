#include "tool/pe/machine.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/folder.h"
#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"

namespace nPe {
namespace {

TEST(nPeMachine, ReadsEachLibraryOnce) {
    const support::tFolder folder;
    support::tPeFile file;
    file.exports = named({"Start"});
    const std::string path = folder.write("a.dll", file.bytes());
    const auto readLibrary = cachedLibraries();
    const auto& library = readLibrary(path);
    ASSERT_TRUE(std::holds_alternative<tLibrary>(library));
    std::filesystem::remove(folder.path() / "a.dll");
    EXPECT_EQ(&readLibrary(path), &library);
    const auto copy = readLibrary;
    EXPECT_EQ(&copy(path), &library);
    EXPECT_TRUE(std::holds_alternative<tUnreadable>(cachedLibraries()(path)));
}

TEST(nPeMachine, KeepsItsLibrariesWhereTheyAre) {
    const support::tFolder folder;
    const std::string path = folder.write("a.dll", support::tPeFile().bytes());
    const auto readLibrary = cachedLibraries();
    const auto& library = readLibrary(path);
    for (int i = 0; i < 1000; ++i) static_cast<void>(readLibrary(folder.utf8(std::to_string(i))));
    EXPECT_EQ(&readLibrary(path), &library);
}

}  // namespace
}  // namespace nPe
