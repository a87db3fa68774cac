#include "tool/new/newName.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using nNew::problemWith;
using testing::HasSubstr;
using testing::StartsWith;

/// Expects a sentence with this reason and this proposal, which is without a problem itself.
void expectProblem(const std::string& name, const std::string& reason, const std::string& proposal) {
    EXPECT_EQ(problemWith(name), "A plug-in cannot have the name '" + name + "': " + reason + "; try " + proposal);
    EXPECT_EQ(problemWith(proposal), "");
}

TEST(nNewName, MayBeAnyIdentifier) {
    for (const char* const name : {"Heartbeat", "heartbeat", "H", "Heart_beat", "Heartbeat2", "H_", "HEARTBEAT"}) {
        EXPECT_EQ(problemWith(name), "") << name;
    }
}

TEST(nNewName, IsNotEmpty) { EXPECT_EQ(problemWith(""), "The name is empty; try Heartbeat"); }

TEST(nNewName, ContainsOnlyLettersOfTheAlphabetDigitsAndUnderscores) {
    const std::string reason = "it may contain only the letters A to Z, digits and underscores";
    expectProblem("my-plugin", reason, "MyPlugin");
    expectProblem("my plugin.2", reason, "MyPlugin2");
    expectProblem("../up", reason, "Up");
    expectProblem("C:\\x", reason, "CX");
    expectProblem("Größe", reason, "GrE");
    expectProblem("插件", reason, "Heartbeat");
    expectProblem("a'b\"c$d;e@f[g`h{", reason, "ABCDEFGH");
}

TEST(nNewName, BeginsWithALetter) {
    expectProblem("2nd", "it must begin with a letter", "Plugin2nd");
    expectProblem("_x", "it must begin with a letter", "X");
    expectProblem("_", "it must begin with a letter", "Heartbeat");
}

TEST(nNewName, HasNoTwoUnderscoresInARow) {
    expectProblem("heart__beat", "C++ reserves names with two underscores in a row", "HeartBeat");
}

TEST(nNewName, HasAtMostFortyEightCharacters) {
    const std::string longest(48, 'A');
    EXPECT_EQ(problemWith(longest), "");
    expectProblem(longest + "A", "it may have at most 48 characters", longest);
}

TEST(nNewName, IsNotAWordOfALanguage) {
    const std::string reason = "the word has a meaning of its own in C, C++ or Rust";
    for (const char* const word :
         {"class", "int", "not_eq", "co_await", "restrict", "fn", "crate", "self", "yield", "clock"}) {
        EXPECT_THAT(problemWith(word), HasSubstr(reason)) << word;
    }
    expectProblem("class", reason, "Class");
    expectProblem("Self", reason, "SelfPlugin");
    expectProblem("std", reason, "Std");
    expectProblem("WIN32", reason, "WIN32Plugin");
    EXPECT_EQ(problemWith("Int"), "");
}

TEST(nNewName, IsNotATargetOfCMakeWhateverItsCase) {
    for (const char* const name : {"test", "Test", "ALL", "install", "clean", "help", "package", "ZERO_CHECK"}) {
        EXPECT_THAT(problemWith(name), HasSubstr("': CMake uses the name itself; try ")) << name;
    }
    expectProblem("Test", "CMake uses the name itself", "TestPlugin");
    expectProblem("run_tests", "CMake uses the name itself", "RunTests");
}

TEST(nNewName, IsNotADeviceOfWindowsWhateverItsCase) {
    for (const char* const name : {"con", "PRN", "aux", "Nul", "com0", "COM9", "lpt1"}) {
        EXPECT_THAT(problemWith(name), HasSubstr("': Windows reserves it for a device; try ")) << name;
    }
    expectProblem("nul", "Windows reserves it for a device", "NulPlugin");
    for (const char* const name : {"Com", "com10", "Lpta", "Console"}) EXPECT_EQ(problemWith(name), "") << name;
}

TEST(nNewName, IsNotThatOfALibraryOfWindows) {
    expectProblem("Version", "a library of Windows has this name", "VersionPlugin");
    expectProblem("KERNEL32", "a library of Windows has this name", "KERNEL32Plugin");
}

TEST(nNewName, IsNotABeginningOfFunctionsOfWindows) {
    expectProblem("Co", "Windows has functions of this name", "CoPlugin");
    expectProblem("WSA", "Windows has functions of this name", "WSAPlugin");
    EXPECT_EQ(problemWith("Cooling"), "");
}

TEST(nNewName, IsShortenedInTheSentenceAndShownWithoutControls) {
    EXPECT_LT(problemWith(std::string(100'000, 'a')).size(), 300U);
    EXPECT_THAT(problemWith("a\x1b[2J"), StartsWith("A plug-in cannot have the name 'a\xEF\xBF\xBD[2J': "));
    EXPECT_THAT(problemWith("\xFF"), StartsWith("A plug-in cannot have the name '\xEF\xBF\xBD': "));
}

}  // namespace
