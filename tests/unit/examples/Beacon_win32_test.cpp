#include <gtest/gtest.h>
#include <shlobj.h>

#include <charconv>
#include <ctime>
#include <memory>

#include "tests/unit/examples/exampleFolder.h"

namespace {

namespace fs = std::filesystem;
using support::eventually;
using support::tExample;
using support::tExampleFolder;

fs::path statusFolder() {
    wchar_t folder[MAX_PATH];
    SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, 0, folder);
    return fs::path(folder) / "Corvell";
}

class BeaconExample : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(status.parent_path()); }
    void TearDown() override {
        beacon.reset();
        fs::remove_all(status.parent_path());
    }

    /// Returns the number that follows "name=" in the heartbeat.
    [[nodiscard]] std::time_t number(const std::string& name) const {
        const std::string text = support::read(heartbeat);
        const std::size_t at = text.find(name + "=");
        if (at == std::string::npos) return -1;
        std::time_t result = -1;
        std::from_chars(text.data() + at + name.size() + 1, text.data() + text.size(), result);
        return result;
    }

    const fs::path status = statusFolder() / "zuZiptraRemoteService.status";
    const fs::path heartbeat = statusFolder() / "zuZiptraRemoteService.heartbeat";
    tExampleFolder folder;
    std::unique_ptr<tExample> beacon = std::make_unique<tExample>(folder, "Beacon");
};

TEST_F(BeaconExample, SaysThatTheServiceIsAliveBeforeInitializeReturns) {
    const std::time_t before = std::time(nullptr);
    EXPECT_EQ(beacon->initialize(), 0);
    EXPECT_GE(number("alive"), before);
    EXPECT_LE(number("alive"), std::time(nullptr));
    EXPECT_EQ(number("status"), 0) << "there is no status file";
}

TEST_F(BeaconExample, SaysWhenTheStatusWasWritten) {
    std::ofstream(status) << "Updated";
    const std::time_t written = std::time(nullptr);
    EXPECT_EQ(beacon->initialize(), 0);
    EXPECT_NEAR(static_cast<double>(number("status")), static_cast<double>(written), 2);
}

TEST_F(BeaconExample, BeatsUntilTheStopAndThenRemovesTheFile) {
    EXPECT_EQ(beacon->initialize(), 0);
    const std::time_t first = number("alive");
    EXPECT_TRUE(eventually([&] { return number("alive") > first; }));
    beacon->stop();
    beacon->cleanup();
    EXPECT_FALSE(exists(heartbeat));
    beacon.reset();
    EXPECT_EQ(GetModuleHandleW(L"Beacon.dll"), nullptr);
}

TEST_F(BeaconExample, WarnsIfTheFileCannotBeWrittenYetAndTriesAgain) {
    fs::create_directory(heartbeat);
    EXPECT_EQ(beacon->initialize(), 1);
    fs::remove(heartbeat);
    EXPECT_TRUE(eventually([&] { return number("alive") > 0; }));
}

}  // namespace
