#include "tests/support/serviceWorld.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "tests/support/plugins.h"

namespace support {
namespace {

constexpr const char* statusName = "zuZiptraRemoteService.status";

std::filesystem::path freshFolder() {
    std::random_device random;
    return std::filesystem::temp_directory_path() / ("service-test-" + std::to_string(random()));
}

/// Returns the next line without a carriage return, and with "T ms" for any duration such as "1250 ms".
std::string plainLine(std::istream& file) {
    std::string line;
    std::getline(file, line);
    std::erase(line, '\r');
    if (!line.ends_with(" ms")) return line;
    return line.substr(0, line.rfind(' ', line.size() - 4)) + " T ms";
}

}  // namespace

tServiceWorld::tServiceWorld() : root_(freshFolder()) {
    plugins = root_ / "shared" / "ZiptraRemoteService" / "plugins";
    statusFolder = root_ / "data" / "Corvell";
    std::filesystem::create_directories(plugins);
    std::filesystem::create_directories(statusFolder);
    places.sharedDirectory = (root_ / "shared").string();
    places.appDataFolder = (root_ / "data").string();
}

tServiceWorld::~tServiceWorld() {
    stopService();
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

std::string tServiceWorld::describe(const std::string& fileName, const std::string& text) const {
    std::string path = (plugins / fileName).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

std::string tServiceWorld::calling(const std::string& name, const std::string& moreKeys) {
    return "[Service]\nName=" + name + "\nPath=" + pluginPath("calling") +
           "\nInitialize=Begin\nStop=Halt\nCleanup=End\n" + moreKeys;
}

std::string tServiceWorld::status() const {
    std::ifstream file(statusFolder / statusName, std::ios::binary);
    if (!file) return "no status file";
    EXPECT_EQ(plainLine(file), "ZU-Ziptra Remote Configuration and Deployment status");
    EXPECT_EQ(plainLine(file).substr(0, 9), "Updated: ");
    std::string text;
    for (std::string line = plainLine(file); file; line = plainLine(file)) text += line + "\n";
    return text;
}

void tServiceWorld::removeStatus() const { std::filesystem::remove(statusFolder / statusName); }

}  // namespace support
