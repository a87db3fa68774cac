#include "tool/check/similarNames.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using nSimilarNames::areSimilar;
using nSimilarNames::closest;

TEST(nSimilarNames, AreTwoThatDifferByOneSlip) {
    EXPECT_TRUE(areSimilar("Nmae", "Name")) << "two characters are swapped";
    EXPECT_TRUE(areSimilar("Nam", "Name")) << "one is missing";
    EXPECT_TRUE(areSimilar("Naame", "Name")) << "one is too many";
    EXPECT_TRUE(areSimilar("Nane", "Name")) << "one is wrong";
    EXPECT_FALSE(areSimilar("Nnae", "Name"));
    EXPECT_FALSE(areSimilar("Nm", "Name"));
}

TEST(nSimilarNames, MayDifferByTwoSlipsIfOneIsLong) {
    EXPECT_TRUE(areSimilar("Intialise", "Initialize"));
    EXPECT_TRUE(areSimilar("Clenap", "Cleanup"));
    EXPECT_FALSE(areSimilar("Inishalise", "Initialize"));
    EXPECT_TRUE(areSimilar("abcd", "abcdef")) << "six characters are enough";
    EXPECT_FALSE(areSimilar("abc", "abcde")) << "five are not";
}

TEST(nSimilarNames, MayBeSeveralWithAnotherSeparatorThanAComma) {
    for (const char* const text : {"A;B", "A|B", "A\uFF0CB", "A\u3001B", "A\uFF1BB"}) {
        EXPECT_TRUE(nSimilarNames::hasOtherSeparator(text)) << text;
    }
    for (const char* const text : {"", "A,B", "A B", "A/B"}) EXPECT_FALSE(nSimilarNames::hasOtherSeparator(text));
}

TEST(nSimilarNames, IgnoreCase) {
    EXPECT_TRUE(areSimilar("NMAE", "name"));
    EXPECT_FALSE(areSimilar("NAME", "name")) << "equal names are not similar";
}

TEST(nSimilarNames, AreNeitherShortNorLong) {
    EXPECT_FALSE(areSimilar("A", "B"));
    EXPECT_FALSE(areSimilar("", "A"));
    EXPECT_TRUE(areSimilar("A1", "A2"));
    const std::string longest(64, 'a');
    EXPECT_TRUE(areSimilar(longest, longest.substr(1)));
    EXPECT_FALSE(areSimilar(longest + "a", longest));
}

constexpr std::array<std::string_view, 3> known{"Name", "Dependencies", "Stop"};

TEST(nSimilarNames, TakeAnAbbreviationOrAnotherFormForTheWholeWord) {
    EXPECT_EQ(closest("Dep", known), "Dependencies");
    EXPECT_EQ(closest("Depends", known), "Dependencies");
    EXPECT_EQ(closest("dependson", known), "Dependencies");
    EXPECT_EQ(closest("Nmae", known), "Name");
    EXPECT_EQ(closest("De", known), std::nullopt) << "too short";
    EXPECT_EQ(closest("Deposit", known), std::nullopt) << "only three letters in common";
    EXPECT_EQ(closest("Stopwatch", known), std::nullopt);
    EXPECT_EQ(closest("Colour", known), std::nullopt);
}

TEST(nSimilarNames, FindTheNameThatDiffersOnlyInCase) {
    const nSimilarNames::tNames names({"Settings", "Transport"});
    EXPECT_EQ(names.differingInCase("SETTINGS"), "Settings");
    EXPECT_EQ(names.differingInCase("Setting"), std::nullopt);
}

TEST(nSimilarNames, FindASimilarNameAmongMany) {
    nSimilarNames::tNames names({"Scheduler", "Settings", "Transport"});
    EXPECT_EQ(names.similarTo("Setings"), "Settings");
    EXPECT_EQ(names.similarTo("Deployment"), std::nullopt);
}

TEST(nSimilarNames, StopSearchingAfterManySearches) {
    std::vector<std::string> texts;
    for (int i = 0; i < 1000; ++i) texts.push_back("unlike" + std::to_string(i * 1000));
    texts.emplace_back("Settings");
    nSimilarNames::tNames names({texts.begin(), texts.end()});
    EXPECT_EQ(names.similarTo("Setings"), "Settings");
    for (int i = 0; i < 1000; ++i) static_cast<void>(names.similarTo("Setings"));
    EXPECT_EQ(names.similarTo("Setings"), std::nullopt);
}

}  // namespace
