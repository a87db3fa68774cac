#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "source/tPluginManager.h"
#include "tests/support/caughtReports.h"
#include "tests/support/fakeClock.h"
#include "tests/support/fakePlugins.h"

namespace support {

/// A manager whose plug-ins and clock the test scripts.
class tManagerTest : public testing::Test {
protected:
    static tPluginDescription describe(const std::string& path, std::vector<std::string> dependencies = {}) {
        return tFakePlugins::description(path, std::move(dependencies));
    }

    void start(const std::vector<tPluginDescription>& descriptions) { manager_.startAll(descriptions, 0xFFFFFFFF); }
    void stopAndCleanUp() {
        manager_.stopAll();
        manager_.cleanupAll();
    }

    [[nodiscard]] std::vector<std::int32_t> codes(std::int32_t tPluginEntry::*code) const {
        std::vector<std::int32_t> codes;
        for (const tPluginEntry& entry : manager_.entries()) codes.push_back(entry.*code);
        return codes;
    }
    [[nodiscard]] std::vector<std::int32_t> initCodes() const { return codes(&tPluginEntry::initCode); }
    [[nodiscard]] std::vector<std::int32_t> stopCodes() const { return codes(&tPluginEntry::stopCode); }
    [[nodiscard]] std::vector<std::int32_t> cleanupCodes() const { return codes(&tPluginEntry::cleanupCode); }

    tFakePlugins plugins_;
    tFakeClock clock_;
    tCaughtReports reports_;
    tPluginManager manager_;
};

}  // namespace support
