#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/folder.h"

namespace support {

/// A machine on which Settings is broken, and Transport needs it.
class nExplainCommandOfPlugins : public testing::Test {
protected:
    void SetUp() override {
        folder.write("plugins/a.ini", "[Service]\nName=Transport\nDependencies=Settings\nPath=C:\\p\\t.dll\n");
        folder.write("plugins/b.ini", "[Service]\nName=Settings\nPath=C:\\p\\s.dll\nRequires=0\n");
        folder.write("plugins/c.ini", "[Service]\nName=-7\nPath=C:\\p\\n.dll\n");
        folder.write("status",
                     "ZU-Ziptra Remote Configuration and Deployment status\n"
                     "Updated: Sat Nov 21 05:21:09 2026\n"
                     "Allowed: 0xfffffffd\n"
                     "\n"
                     "Settings (depends on )\nLoaded From: C:\\p\\s.dll\nRequires: 0\n"
                     "Init Time: 0 ms\nInit Code: -52002\n\n"
                     "Transport (depends on Settings)\nLoaded From: C:\\p\\t.dll\nRequires: 1\n"
                     "Init Time: 0 ms\nInit Code: -52006\n\n");
    }

    [[nodiscard]] std::vector<std::string> with(std::vector<std::string> arguments, bool status, bool directory) const {
        arguments.insert(arguments.begin(), "explain");
        if (status) arguments.insert(arguments.end(), {"--status", folder.utf8("status")});
        if (directory) arguments.insert(arguments.end(), {"--directory", folder.utf8("plugins")});
        return arguments;
    }

    tFolder folder;
};

}  // namespace support
