#include "tool/check/prediction.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tPrediction;
using support::idsOf;
using support::plainLibrary;
using support::tPluginFolder;
using support::usualLibrary;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

TEST(prediction, OfAnEmptyDirectoryIsEmpty) {
    const tPluginFolder folder;
    const tPrediction prediction = folder.predict();
    EXPECT_EQ(prediction.directory, folder.path());
    EXPECT_EQ(prediction.allowedMask, 0xFFFFFFFFU);
    EXPECT_THAT(prediction.messages, IsEmpty());
    EXPECT_THAT(prediction.plugins, IsEmpty());
    EXPECT_THAT(prediction.findings, IsEmpty());
}

TEST(prediction, HasThePluginsInStartOrderWithTheirCodes) {
    tPluginFolder folder;
    const std::string plain = folder.addLibrary("plain.dll", plainLibrary().bytes());
    const std::string usual = folder.addLibrary("usual.dll", usualLibrary({"Start"}));
    folder.add("a.ini", "[Service]\nName=A\nDependencies=C\nPath=" + plain + "\n");
    folder.add("b.ini", "[Service]\nName=B\nPath=" + usual + "\nInitialize=Start\n");
    folder.add("c.ini", "[Service]\nName=C\nPath=" + plain + "\n");
    folder.add("d.ini", "[Service]\nName=D\nPath=" + folder.library("none.dll") + "\n");
    folder.add("e.ini", "[Service]\nName=E\nPath=" + plain + "\nRequires=2\n");
    folder.add("f.ini", "[Service]\nName=F\nPath=" + plain + "\nDependencies=D\n");
    folder.add("g.ini", "[Service]\nName=G\nPath=" + plain + "\nDependencies=B\n");
    const tPrediction prediction = folder.predict(1);
    EXPECT_THAT(tPluginFolder::codes(prediction),
                ElementsAre("C 0", "A 0", "B -", "D -52005", "E -52002", "F -52006", "G -"));
    EXPECT_EQ(prediction.allowedMask, 1U);
    const nCheck::tPredictedPlugin& a = prediction.plugins[1];
    EXPECT_EQ(a.file, folder.path("a.ini"));
    EXPECT_EQ(a.description.path, plain);
    EXPECT_THAT(a.description.dependencies, ElementsAre("C"));
}

TEST(prediction, KnowsThatAPluginFailsEvenIfItsCodeIsOpen) {
    tPluginFolder folder;
    const std::string usual = folder.addLibrary("usual.dll", usualLibrary({"Start"}));
    folder.add("a.ini", "[Service]\nName=A\nPath=" + usual + "\nInitialize=Start\n");
    folder.add("b.ini", "[Service]\nName=B\nDependencies=A\nPath=" + usual + "\nInitialize=Other\n");
    const tPrediction prediction = folder.predict();
    EXPECT_THAT(tPluginFolder::codes(prediction), ElementsAre("A -", "B -"));
    EXPECT_TRUE(prediction.plugins[0].mayStart);
    EXPECT_FALSE(prediction.plugins[1].mayStart) << "-52005, or -52006 if A fails";
}

TEST(prediction, HasAMessageForEachRejectedFileInTheirOrder) {
    tPluginFolder folder;
    const std::string b = folder.add("b.ini", "\n\n");
    const std::string a = folder.add("a.ini", "\xFF\xFE");
    folder.add("c.ini", "[Service]\nName=C\n");
    const tPrediction prediction = folder.predict();
    EXPECT_THAT(prediction.messages, ElementsAre("Failed to parse service description file: " + a,
                                                 "Failed to parse service description file: " + b));
    EXPECT_THAT(tPluginFolder::codes(prediction), ElementsAre("C -52005"));
}

TEST(prediction, HasTheFindingsInTheOrderOfFilesAndLines) {
    tPluginFolder folder;
    folder.add("a.ini", "[Service]\nRequires=0\nName=A\nDependencies=A\n");
    folder.add("b.INI", "");
    folder.add("c.ini", "[Service]\n\nName=A\n");
    EXPECT_THAT(idsOf(folder.predict().findings),
                ElementsAre("unseen-file", "2 requires-zero", "4 self-dependency", "missing-path", "2 blank-line"));
}

TEST(prediction, HasAFindingForEveryPluginThatWillNotStart) {
    tPluginFolder folder;
    folder.add("a.ini", "[Service]\nName=A\nPath=" + folder.library("none.dll") + "\n");
    folder.add("b.ini", "[Service]\nName=B\nDependencies=A\nPath=" + folder.addLibrary("b.dll", usualLibrary()) + "\n");
    folder.add("c.ini", "[Service]\nName=C\nDependencies=B\nRequires=2\nPath=" + folder.library("b.dll") + "\n");
    const tPrediction prediction = folder.predict(1);
    for (const nCheck::tPredictedPlugin& plugin : prediction.plugins) {
        EXPECT_LT(plugin.code.value(), 0);
        EXPECT_THAT(prediction.findings, Contains(testing::Field(&tFinding::plugin, plugin.description.name)));
    }
}

TEST(prediction, ReportsProgressForEachPlugin) {
    tPluginFolder folder;
    folder.add("a.ini", "[Service]\nName=A\n");
    folder.add("b.ini", "[Service]\nName=B\n");
    nCheck::tRequest request = folder.request();
    std::vector<std::size_t> totals;
    request.onPlugin = [&totals](std::size_t total) { totals.push_back(total); };
    static_cast<void>(predict(request));
    EXPECT_THAT(totals, ElementsAre(2, 2));
}

TEST(prediction, CannotBeMadeForAPlaceThatDoesNotExist) {
    nCheck::tRequest request;
    request.places = {"no such place"};
    EXPECT_THROW(static_cast<void>(predict(request)), nCheck::tCannotLook);
}

TEST(prediction, TakesSingleFilesAsTheDirectorysContents) {
    tPluginFolder folder;
    nCheck::tRequest request = folder.request();
    request.places = {folder.add("b.ini", "[Service]\nName=B\nDependencies=A\n"),
                      folder.add("a.ini", "[Service]\nName=A\n")};
    folder.add("c.ini", "[Service]\nName=C\n");
    EXPECT_THAT(tPluginFolder::codes(predict(request)), ElementsAre("A -52005", "B -52006"));
}

TEST(prediction, FollowsTheHostsOrderAlsoWhereThatIsNoOrder) {
    tPluginFolder folder;
    const std::string path = "Path=" + folder.addLibrary("a.dll", plainLibrary().bytes()) + "\n";
    folder.add("1.ini", "[Service]\nName=B\n" + path);
    folder.add("2.ini", "[Service]\nName=D\nDependencies=B\n" + path);
    folder.add("3.ini", "[Service]\nName=C\n" + path);
    folder.add("4.ini", "[Service]\nName=A\nDependencies=D\n" + path);
    const tPrediction prediction = folder.predict();
    EXPECT_THAT(tPluginFolder::codes(prediction), ElementsAre("A -52006", "B 0", "C 0", "D 0"));
    EXPECT_THAT(idsOf(prediction.findings), Contains("3 chain-order"));
}

TEST(prediction, IsTheSameForTenThousandPluginsAsForAFew) {
    tPluginFolder folder;
    const std::string path = "Path=" + folder.addLibrary("a.dll", plainLibrary().bytes()) + "\n";
    constexpr int count = 10'000;
    for (int i = 0; i < count; ++i) {
        const std::string dependencies = i == 0 ? "" : "Dependencies=P" + std::to_string(100'000 + i - 1) + "\n";
        folder.add(std::to_string(i) + ".ini",
                   "[Service]\nName=P" + std::to_string(100'000 + i) + "\n" + dependencies + path);
    }
    const tPrediction prediction = folder.predict();
    ASSERT_EQ(prediction.plugins.size(), static_cast<std::size_t>(count));
    for (const nCheck::tPredictedPlugin& plugin : prediction.plugins) EXPECT_EQ(plugin.code, 0);
}

}  // namespace
