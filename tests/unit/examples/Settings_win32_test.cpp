#include <gtest/gtest.h>

#include "tests/unit/examples/exampleFolder.h"

namespace {

using support::tExample;
using support::tExampleFolder;

class SettingsExample : public testing::Test {
protected:
    int start(const std::string& file) {
        folder.write("Settings.txt", file);
        return settings.initialize();
    }
    [[nodiscard]] std::string value(const char* name) const {
        return settings.entry<const char* (*)(const char*, const char*)>("Value")(name, "otherwise");
    }

    tExampleFolder folder;
    tExample settings{folder, "Settings"};
};

TEST_F(SettingsExample, ReturnsTheValuesOfTheFileNextToItsLibrary) {
    EXPECT_EQ(start("# a comment\nName=Värde\nOther=two words\n"), 0);
    EXPECT_EQ(value("Name"), "Värde");
    EXPECT_EQ(value("Other"), "two words");
}

TEST_F(SettingsExample, ReturnsAWarningAndDefaultValuesWithoutAFile) {
    EXPECT_EQ(settings.initialize(), 1);
    EXPECT_EQ(value("Name"), "otherwise");
}

TEST_F(SettingsExample, FailsWhenTheFileCannotBeOpened) {
    create_directory(folder.path() / "Settings.txt");
    EXPECT_EQ(settings.initialize(), -2);
    EXPECT_EQ(value("Name"), "otherwise");
}

TEST_F(SettingsExample, AcceptsAFileOfOneMebibyteAndRefusesALongerOne) {
    const std::string largest = "Name=value\n" + std::string((1 << 20) - 11, '#');
    EXPECT_EQ(start(largest), 0);
    EXPECT_EQ(value("Name"), "value");
    settings.cleanup();
    EXPECT_EQ(start(largest + "#"), -2);
    EXPECT_EQ(value("Name"), "otherwise");
}

TEST_F(SettingsExample, AcceptsLineEndsOfEveryKindAndNoneAfterTheLastLine) {
    EXPECT_EQ(start("A=1\r\nB=2\rC=3\n\nD=4"), 0);
    EXPECT_EQ(value("A") + value("B") + value("C") + value("D"), "1234");
}

TEST_F(SettingsExample, SkipsAByteOrderMark) {
    EXPECT_EQ(start("\xEF\xBB\xBF"
                    "Name=value\nOther=\xEF\xBB\xBF\n"),
              0);
    EXPECT_EQ(value("Name"), "value");
    EXPECT_EQ(value("Other"), "\xEF\xBB\xBF");
    settings.cleanup();
    EXPECT_EQ(start("\xEF\xBB\xBF"), 0);
    EXPECT_EQ(value(""), "otherwise");
}

TEST_F(SettingsExample, AcceptsAnEmptyFile) {
    EXPECT_EQ(start(""), 0);
    EXPECT_EQ(value("Name"), "otherwise");
}

TEST_F(SettingsExample, ComparesWholeNamesAndReturnsTheFirstOfTwo) {
    EXPECT_EQ(start("NameLonger=1\nName=2\nName=3\n"), 0);
    EXPECT_EQ(value("Name"), "2");
    EXPECT_EQ(value("Nam"), "otherwise");
    EXPECT_EQ(value("name"), "otherwise");
}

TEST_F(SettingsExample, ForgetsTheValuesInCleanup) {
    EXPECT_EQ(start("Name=value\n"), 0);
    settings.cleanup();
    EXPECT_EQ(value("Name"), "otherwise");
}

TEST_F(SettingsExample, ReturnsItsFolderInUtf8) {
    EXPECT_EQ(settings.initialize(), 1);
    const std::u8string expected = folder.path().u8string();
    EXPECT_EQ(settings.entry<const char* (*)()>("Folder")(), std::string(expected.begin(), expected.end()));
}

}  // namespace
