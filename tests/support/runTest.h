#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/serviceWorld.h"

namespace support {

inline constexpr const char* noFramework = "Cannot init system framework\n";

/// A started service on a machine of its own, for tests of its run.
class tRunTest : public testing::Test {
protected:
    tRunTest() { startService(); }

    /// Runs with the stop event set beforehand, so that stop and clean-up follow the start at once.
    static void runWithoutWaiting() {
        signalServiceStop();
        runService();
    }

    /// Returns "name code" of each plug-in in start order.
    static std::vector<std::string> outcome() {
        std::vector<std::string> outcome;
        for (const tPluginEntry& entry : gService->pluginManager.entries()) {
            outcome.push_back(entry.description.name + " " + std::to_string(entry.initCode));
        }
        return outcome;
    }

    /// Returns the message about a description file that cannot be read.
    static std::string rejection(const std::string& path) {
        return "Failed to parse service description file: " + path + "\n";
    }

    tServiceWorld world;
};

}  // namespace support
