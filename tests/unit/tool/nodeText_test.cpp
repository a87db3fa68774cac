#include "tool/graph/nodeText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/graphs.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::graphOfAllKinds;
using support::plugin;
using testing::ElementsAre;

TEST(nGraphNodeText, SaysWhyEachPluginFails) {
    EXPECT_THAT(stateTexts(graphOfAllKinds()),
                ElementsAre("fails -52005: library", "fails -52006: circle 1", "fails -52006: circle 1",
                            "fails -52006: too early", "starts", "fails -52006: unknown name", "starts",
                            "fails -52006: named twice", "can start", "fails -52006: dependency", "not described"));
}

TEST(nGraphNodeText, SaysWhichCodesAreTheHosts) {
    EXPECT_THAT(stateTexts(graphOf({plugin("A", {}, -52000), plugin("B", {}, -52002), plugin("C", {}, -52003),
                                    plugin("D", {}, -7), plugin("E", {}, 5), plugin("F", {}, -52006)})),
                ElementsAre("fails -52000: memory", "fails -52002: not allowed", "fails -52003: exception", "fails -7",
                            "starts", "fails -52006: own result"));
}

TEST(nGraphNodeText, BlamesTheLibraryForACertainFailureWithAnOpenCode) {
    nGraph::tNode broken = plugin("Broken", {"Open"}, std::nullopt);
    broken.mayStart = false;
    const tGraph graph = graphOf({plugin("Open", {}, std::nullopt), broken, plugin("Victim", {"Broken"}, -52006)});
    EXPECT_THAT(stateTexts(graph), ElementsAre("can start", "fails: library", "fails -52006: dependency"));
    EXPECT_EQ(summary(graph), "3 plug-ins: 1 can start, 2 fail");
}

TEST(nGraphNodeText, SaysThatAPluginDependsOnItself) {
    EXPECT_THAT(stateTexts(graphOf({plugin("A", {"A"}, -52006)})), ElementsAre("fails -52006: itself"));
}

TEST(nGraphNodeText, PrefersTheReasonThatHasToBeRemovedFirst) {
    const auto texts = stateTexts(
        graphOf({plugin("A", {"A", "Late", "Gone"}, -52006), plugin("B", {"Gone", "Late"}, -52006),
                 plugin("C", {"D", "Gone"}, -52006), plugin("D", {"C", "Gone"}, -52006),
                 plugin("E", {"Late", "B"}, -52006), plugin("F", {"B", "Late", "Late"}, -52006), plugin("Late")}));
    EXPECT_THAT(texts, ElementsAre("fails -52006: itself", "fails -52006: unknown name", "fails -52006: circle 2",
                                   "fails -52006: circle 2", "fails -52006: too early", "fails -52006: too early",
                                   "starts", "not described"));
}

TEST(nGraphNodeText, SumsUpWhatIsWrong) {
    EXPECT_EQ(summary(graphOfAllKinds()),
              "10 plug-ins: 3 can start, 7 fail; 1 circle; 1 dependency without a description");
    EXPECT_EQ(summary(graphOf({plugin("A")})), "1 plug-in");
    EXPECT_EQ(summary(graphOf({})), "0 plug-ins");
    EXPECT_EQ(summary(graphOf({plugin("A", {"A"}, -1), plugin("B", {"B", "X", "Y"}, -1)})),
              "2 plug-ins: 0 can start, 2 fail; 2 circles; 2 dependencies without a description");
    EXPECT_EQ(summary(graphOf({plugin("A", {}, -1)})), "1 plug-in: 0 can start, 1 fails");
}

TEST(nGraphNodeText, CountsTheDescriptionsThatTheHostRejects) {
    tGraph graph = graphOf({plugin("A")});
    graph.messages = {"Cannot init system framework", "Failed to parse service description file: C:\\a.ini"};
    EXPECT_EQ(summary(graph), "1 plug-in; 1 description rejected");
    graph.messages.emplace_back("Failed to parse service description file: C:\\b.ini");
    EXPECT_EQ(summary(graph), "1 plug-in; 2 descriptions rejected");
}

TEST(nGraphNodeText, NamesEachKindOfLink) {
    const std::vector<tLinkKind> kinds{tLinkKind::fulfilled, tLinkKind::repeated, tLinkKind::failed,
                                       tLinkKind::late,      tLinkKind::circular, tLinkKind::missing};
    std::vector<std::string> names;
    std::vector<std::string> texts;
    for (const tLinkKind kind : kinds) {
        names.emplace_back(kindName(kind));
        texts.emplace_back(kindText(kind));
    }
    EXPECT_THAT(names, ElementsAre("fulfilled", "repeated", "failed", "late", "circular", "missing"));
    EXPECT_THAT(texts,
                ElementsAre("starts first", "named twice", "fails", "starts too late", "in a circle", "not described"));
}

}  // namespace
}  // namespace nGraph
