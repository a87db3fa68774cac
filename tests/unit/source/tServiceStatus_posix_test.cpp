#include <gtest/gtest.h>

#include <fstream>
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

    [[nodiscard]] std::string failureOf(std::size_t size) const {
        return support::caughtReport([&] { WriteStatusFile(folder.utf8(), "s", std::string(size, 'x')); });
    }
    [[nodiscard]] std::string status() const {
        std::ifstream file(folder.path() / "s");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    support::tFolder folder;
};

TEST_F(tServiceStatusFullDisk, IsDetectedWhileALongTextIsWrittenAndKeepsTheOldFile) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_EQ(failureOf(1'000'000), support::writeFailed);
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(status(), "old");
}

TEST_F(tServiceStatusFullDisk, IsDetectedWhenAShortTextIsClosedAndKeepsTheOldFile) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_EQ(failureOf(10), support::writeFailed);
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(status(), "old");
}

}  // namespace
