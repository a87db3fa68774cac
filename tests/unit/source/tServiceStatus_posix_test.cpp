#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "source/tService.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"
#include "tests/support/statusFailures.h"

namespace {

std::ptrdiff_t openFiles() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

/// The device that is always full replaces the temporary file.
class tServiceStatusFullDisk : public testing::Test {
protected:
    tServiceStatusFullDisk() {
        folder.write("s", "old");
        std::filesystem::create_symlink("/dev/full", folder.path() / ".s.tmp");
    }

    support::tFolder folder;
};

TEST_F(tServiceStatusFullDisk, IsDetectedWhenALongTextIsWrittenOrAShortOneIsClosedAndKeepsTheOldFile) {
    for (const std::size_t size : {1'000'000U, 10U}) {
        const std::ptrdiff_t before = openFiles();
        EXPECT_EQ(support::caughtReport([&] { WriteStatusFile(folder.utf8(), "s", std::string(size, 'x')); }),
                  support::writeFailed);
        EXPECT_EQ(openFiles(), before);
        EXPECT_EQ(folder.read("s"), "old");
    }
}

}  // namespace
