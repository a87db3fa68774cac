#include "tool/new/newProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/text.h"

namespace {

using nNew::filesOf;
using testing::HasSubstr;
using testing::Not;

struct tLanguage {
    const char* name;
    const char* source;
};
constexpr tLanguage languages[] = {{"c", "Heartbeat.c"}, {"c++", "Heartbeat.cpp"}, {"rust", "Heartbeat.rs"}};

std::string contentOf(const char* language, const std::string& name) {
    for (const nNew::tFile& file : filesOf("Heartbeat", language)) {
        if (file.name == name) return file.content;
    }
    return "there is no " + name;
}

TEST(nNewProject, ConsistsOfTheSameFilesInEachLanguageExceptForTheSource) {
    for (const tLanguage& language : languages) {
        std::vector<std::string> names;
        for (const nNew::tFile& file : filesOf("Heartbeat", language.name)) names.push_back(file.name);
        EXPECT_THAT(names, testing::ElementsAre(".gitignore", "CMakeLists.txt", "CMakePresets.json", language.source,
                                                "README.md"));
    }
}

TEST(nNewProject, HasTheNameWhereTheTemplateHasThePlaceholder) {
    for (const tLanguage& language : languages) {
        for (const nNew::tFile& file : filesOf("Heartbeat", language.name)) {
            EXPECT_THAT(file.content, Not(HasSubstr("@"))) << file.name;
            EXPECT_THAT(file.content, testing::EndsWith("\n")) << file.name;
        }
        EXPECT_THAT(contentOf(language.name, language.source), HasSubstr("Heartbeat"));
        EXPECT_THAT(contentOf(language.name, "README.md"), testing::StartsWith("# Heartbeat\n"));
        EXPECT_THAT(contentOf(language.name, "CMakeLists.txt"),
                    HasSubstr(std::string("ziptra_add_plugin(Heartbeat SOURCES ") + language.source));
    }
}

TEST(nNewProject, ExportsTheThreeEntriesFromEachSource) {
    for (const char* const entry : {"Initialize", "Stop", "Cleanup"}) {
        EXPECT_THAT(contentOf("c", "Heartbeat.c"), HasSubstr(std::string(" Heartbeat") + entry + "(void) {"));
        EXPECT_THAT(contentOf("rust", "Heartbeat.rs"), HasSubstr(std::string("fn Heartbeat") + entry + "()"));
    }
    EXPECT_THAT(contentOf("c++", "Heartbeat.cpp"), HasSubstr("\nZIPTRA_PLUGIN(Heartbeat)\n"));
}

TEST(nNewProject, HasPresetsForCrossBuildingAndForWindows) {
    const auto presets = nlohmann::json::parse(contentOf("c++", "CMakePresets.json"));
    EXPECT_EQ(presets.at("version"), 2);
    for (const char* const kind : {"configurePresets", "buildPresets", "testPresets"}) {
        std::vector<std::string> names;
        for (const auto& preset : presets.at(kind)) {
            if (!preset.contains("hidden")) names.push_back(preset.at("name"));
        }
        EXPECT_THAT(names, testing::ElementsAre("cross", "windows")) << kind;
    }
}

}  // namespace
