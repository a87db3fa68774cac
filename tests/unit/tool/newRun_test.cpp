#include "tool/new/newRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A disk in memory, on which calls can fail.
class nNewRun : public testing::Test {
protected:
    nNew::tSystem system() {
        nNew::tSystem system;
        system.createFolder = [this](const std::string& path) { return create(path, "folder"); };
        system.createFile = [this](const std::string& path, std::string_view text) {
            return create(path, std::string(text));
        };
        system.remove = [this](const std::string& path) { return path != stuck && disk.erase(path) == 1; };
        system.exists = [this](const std::string& path) { return disk.contains(path); };
        system.programFolder = "/sdk/bin";
        return system;
    }

    int run(const nNew::tRequest& request, bool json = false) {
        out.str("");
        tContext context{out, out};
        nNew::run(request, json, system(), context);
        return context.exitCode;
    }

    /// Returns the sentence with which it fails.
    std::string failure(const nNew::tRequest& request) {
        try {
            run(request);
        } catch (const std::runtime_error& exception) {
            EXPECT_EQ(out.str(), "");
            return exception.what();
        }
        return "no failure";
    }

    std::map<std::string, std::string> disk;
    std::string failing;
    std::string stuck;
    std::ostringstream out;

private:
    std::string create(const std::string& path, const std::string& content) {
        if (path.ends_with(failing) && !failing.empty()) return "The disk is full";
        return disk.emplace(path, content).second ? "" : "It exists";
    }
};

TEST_F(nNewRun, CreatesAFolderOfThePluginsNameWithItsFiles) {
    EXPECT_EQ(run({"Pulse"}), 0);
    EXPECT_EQ(disk.size(), 6U);
    EXPECT_EQ(disk.at("Pulse"), "folder");
    EXPECT_THAT(disk.begin()->first, "Pulse");
    int sources = 0;
    for (const auto& [path, content] : disk) {
        EXPECT_THAT(path, StartsWith("Pulse"));
        if (path.ends_with("Pulse.cpp")) sources += content.find("class Pulse {") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(sources, 1);
}

TEST_F(nNewRun, PrintsTheFilesAndTheCommandsThatAreNext) {
    disk["/sdk/lib/cmake/ZiptraRemoteService/ZiptraRemoteServiceConfig.cmake"] = "";
    EXPECT_EQ(run({"Pulse", "c"}), 0);
    EXPECT_EQ(out.str(),
              "Created in Pulse:\n"
              "  .gitignore\n"
              "  CMakeLists.txt\n"
              "  CMakePresets.json\n"
              "  Pulse.c\n"
              "  README.md\n"
              "\n"
              "Next, configure, build, test and run it:\n"
              "  cd Pulse\n"
              "  cmake --preset cross -D ZiptraRemoteService_ROOT=/sdk\n"
              "  cmake --build --preset cross\n"
              "  ctest --preset cross\n"
              "  wine /sdk/bin/ziptra.exe run build/cross/plugins/Pulse.ini\n");
}

TEST_F(nNewRun, SaysThatAnSdkIsNeeded) {
    run({"Pulse"});
    EXPECT_THAT(out.str(), HasSubstr("\n  cmake --preset cross\n"));
    EXPECT_THAT(out.str(), EndsWith("CMake needs one whose folder bin is in PATH.\n"));
}

TEST_F(nNewRun, PrintsADocument) {
    EXPECT_EQ(run({"Pulse", "rust"}, true), 0);
    const auto document = nlohmann::json::parse(out.str());
    EXPECT_EQ(document, nlohmann::json::parse(R"({
        "schema": 1, "name": "Pulse", "language": "rust", "folder": "Pulse",
        "files": [".gitignore", "CMakeLists.txt", "CMakePresets.json", "Pulse.rs", "README.md"],
        "next": ["cd Pulse", "cmake --preset cross", "cmake --build --preset cross", "ctest --preset cross",
                 "wine \"$(command -v ziptra.exe)\" run build/cross/plugins/Pulse.ini"]})"));
}

TEST_F(nNewRun, CreatesTheFolderInTheDirectoryThatIsNamed) {
    run({"Pulse", "c++", "some where"});
    EXPECT_THAT(disk.begin()->first, testing::AnyOf("some where/Pulse", "some where\\Pulse"));
}

TEST_F(nNewRun, RefusesABadNameBeforeItCreatesAnything) {
    EXPECT_THAT(failure({"my-plugin"}), EndsWith("; try MyPlugin"));
    EXPECT_THAT(disk, IsEmpty());
}

TEST_F(nNewRun, LeavesWhatExistsAlone) {
    disk["Pulse"] = "mine";
    EXPECT_EQ(failure({"Pulse"}), "'Pulse' exists already; choose another name or --directory");
    EXPECT_EQ(disk, (std::map<std::string, std::string>{{"Pulse", "mine"}}));
}

TEST_F(nNewRun, SaysWhyTheFolderCannotBeCreated) {
    failing = "Pulse";
    EXPECT_EQ(failure({"Pulse"}), "Cannot create 'Pulse': The disk is full");
    EXPECT_THAT(disk, IsEmpty());
}

TEST_F(nNewRun, RemovesWhatItHasCreatedIfAFileFails) {
    for (const char* const file : {".gitignore", "CMakeLists.txt", "CMakePresets.json", "Pulse.cpp", "README.md"}) {
        failing = file;
        const std::string sentence = failure({"Pulse"});
        EXPECT_THAT(sentence, StartsWith("Cannot create 'Pulse"));
        EXPECT_THAT(sentence, EndsWith(std::string(file) + "': The disk is full"));
        EXPECT_THAT(disk, IsEmpty());
    }
}

TEST_F(nNewRun, SaysThatSomethingIsLeft) {
    failing = "README.md";
    stuck = "Pulse";
    EXPECT_THAT(failure({"Pulse"}), EndsWith("README.md': The disk is full; 'Pulse' could not be removed"));
    EXPECT_EQ(disk.size(), 1U);
}

}  // namespace
