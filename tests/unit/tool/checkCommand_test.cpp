#include "tool/check/checkCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/unit/tool/checkHelpers.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tPluginFolder;
using support::tToolRun;
using testing::HasSubstr;
using testing::IsEmpty;

class checkCommand : public testing::Test {
protected:
    checkCommand() { folder_.addLibrary("a.dll", support::usualLibrary({"Start"})); }

    tPluginFolder& folder() { return folder_; }
    void addGood() {
        folder_.add("good.ini", "[Service]\nName=Good\nPath=" + folder_.library("a.dll") + "\nInitialize=Start\n");
    }
    void addWarning() {
        folder_.add("warning.ini",
                    "[Service]\nName=W\nColour=1\nPath=" + folder_.library("a.dll") + "\nInitialize=Start\n");
    }
    [[nodiscard]] tToolRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"check", "--map", "C:\\Libraries=" + folder_.folder().utf8("libraries"),
                                             "--allowed", "0xffffffff"});
        arguments.push_back(folder_.path());
        return tToolRun(arguments);
    }

private:
    tPluginFolder folder_;
};

TEST_F(checkCommand, Returns0IfThereIsNothingToReport) {
    addGood();
    const tToolRun result = run({});
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_THAT(result.out, HasSubstr("1 plug-in, of which 0 will not start; 0 errors, 0 warnings, 0 notes"));
    EXPECT_THAT(result.error, IsEmpty());
}

TEST_F(checkCommand, Returns1IfThereAreErrors) {
    folder().add("a.ini", "\n\n");
    EXPECT_EQ(run({}).exitCode, 1);
    EXPECT_EQ(run({"--json"}).exitCode, 1);
}

TEST_F(checkCommand, LetsWarningsCountOnlyIfItIsStrict) {
    addWarning();
    EXPECT_EQ(run({}).exitCode, 0);
    EXPECT_EQ(run({"--strict"}).exitCode, 1);
    EXPECT_THAT(run({}).out, HasSubstr("warning.ini:3: warning:"));
}

TEST_F(checkCommand, AssumesPluginsThatAreDescribedElsewhere) {
    folder().add("a.ini", "[Service]\nName=A\nDependencies=Far, Away\nPath=" + folder().library("a.dll") +
                              "\nInitialize=Start\n");
    EXPECT_EQ(run({"--assume", "Far", "--assume", "Away"}).exitCode, 0);
    const tToolRun result = run({"--assume", "Far"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.out, HasSubstr("no description has the name \"Away\""));
}

TEST_F(checkCommand, PrintsNothingIfItIsQuietAndThereIsNothingToReport) {
    addGood();
    EXPECT_THAT(run({"--quiet"}).out, IsEmpty());
    EXPECT_THAT(run({"--quiet", "--json"}).out, HasSubstr("\"schema\""));
    const std::string rejected = folder().add("rejected.ini", "\n");
    EXPECT_EQ(run({"--quiet"}).out, run({}).out);
    std::filesystem::remove(rejected);
    addWarning();
    EXPECT_EQ(run({"--quiet"}).out, run({}).out);
}

TEST_F(checkCommand, EndsWithTheNoteIfThereIsSomethingToReport) {
    const std::vector<std::string> arguments{"--quiet", "--note", "from\n a.cpp"};
    addGood();
    EXPECT_THAT(run(arguments).out, IsEmpty());
    EXPECT_EQ(run({"--note", "from a.cpp"}).out, run({}).out);
    const std::string rejected = folder().add("rejected.ini", "\n");
    EXPECT_EQ(run(arguments).out, run({}).out + "from\xEF\xBF\xBD a.cpp\n");
    EXPECT_EQ(run({"--json", "--note", "from a.cpp"}).out, run({"--json"}).out);
    std::filesystem::remove(rejected);
    addWarning();
    EXPECT_EQ(run(arguments).out, run({}).out + "from\xEF\xBF\xBD a.cpp\n");
}

TEST_F(checkCommand, Returns2WithASentenceIfItCannotLook) {
    const tToolRun result({"check", "no such place"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.error, "ziptra: There is no file or directory \"no such place\"\n");
}

TEST_F(checkCommand, PrintsOneJsonDocumentIfAskedTo) {
    addGood();
    const auto json = nlohmann::json::parse(run({"--json"}).out);
    EXPECT_EQ(json["schema"], 1);
    EXPECT_EQ(json["plugins"][0]["name"], "Good");
    EXPECT_EQ(json["plugins"][0]["code"], nullptr);
}

TEST_F(checkCommand, SimulatesAMachineWithTheAllowedMask) {
    addGood();
    const std::string path = folder().path();
    const auto allowed = [&path](const std::string& mask) {
        return nlohmann::json::parse(tToolRun({"check", "--json", "--allowed", mask, path}).out)["allowed"];
    };
    EXPECT_EQ(allowed("2"), 2);
    EXPECT_EQ(allowed("0xFFFFFFFD"), 0xFFFFFFFD);
    EXPECT_EQ(allowed("0"), 0);
}

/// Where the host runs, nothing is mapped.
TEST_F(checkCommand, TakesSeveralMappingsAndPlaces) {
    addGood();
    const std::string other = folder().folder().write("more/b.ini", "[Service]\nName=B\nPath=D:\\x\\a.dll\n");
    const tToolRun result = run({"--map", "D:\\x=" + folder().folder().utf8("libraries"), "--json", other});
    EXPECT_EQ(nlohmann::json::parse(result.out)["plugins"].size(), 2U);
    EXPECT_EQ(result.exitCode, nThisMachine::runsHost() ? 1 : 0) << result.out;
}

TEST_F(checkCommand, HasAHelpWithAnExample) {
    const tToolRun result({"check", "--help"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, HasSubstr("Example: ziptra check "));
    EXPECT_THAT(result.out, HasSubstr("Exit code: 0 "));
}

}  // namespace
