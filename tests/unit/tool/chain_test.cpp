#include "tool/explain/chain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/graphs.h"

namespace nExplain {
namespace {

using nGraph::tGraph;
using support::graphOf;
using support::plugin;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

tFinding finding(tSeverity severity, const std::string& file, const std::string& pluginName) {
    tFinding made{"some-rule", severity, file, 3, std::nullopt, "message", "remedy of " + file};
    if (!pluginName.empty()) made.plugin = pluginName;
    return made;
}

/// Follows the plug-in of this name, without any clues.
std::vector<tStep> follow(const tGraph& graph, const std::string& name, const tClues& clues = tClues({}, {})) {
    for (std::size_t index = 0; index < graph.nodes.size(); ++index) {
        if (graph.nodes[index].name == name) return followFailure(graph, index, clues);
    }
    return {};
}

std::vector<std::string> namesOf(const std::vector<tStep>& steps) {
    std::vector<std::string> names;
    for (const tStep& step : steps) names.push_back(std::string(step.depth, '>') + step.plugin);
    return names;
}

TEST(nExplainChain, FollowsFailedDependenciesDownToTheCause) {
    const tGraph graph =
        graphOf({plugin("A", {}, -7), plugin("B", {"A"}, -52006), plugin("Fine"), plugin("C", {"B", "Fine"}, -52006)});
    const auto steps = follow(graph, "C");
    EXPECT_THAT(namesOf(steps), ElementsAre("C", ">B", ">>A"));
    EXPECT_EQ(steps[0].code, -52006);
    EXPECT_EQ(steps[0].text, "depends on what has not started: B");
    EXPECT_THAT(steps[0].remedy, IsEmpty()) << "the cause is further down";
    EXPECT_THAT(steps[1].remedy, IsEmpty());
    EXPECT_THAT(steps[2].text, HasSubstr("Initialize returned this negative code"));
    EXPECT_THAT(steps[2].remedy, HasSubstr("documentation"));
}

TEST(nExplainChain, FollowsEachDependencyAtItsPlaceInTheTree) {
    const tGraph graph = graphOf({plugin("A", {}, -1), plugin("B", {}, -1), plugin("M", {"A"}, -52006),
                                  plugin("N", {"B"}, -52006), plugin("Z", {"M", "N"}, -52006)});
    EXPECT_THAT(namesOf(follow(graph, "Z")), ElementsAre("Z", ">M", ">>A", ">N", ">>B"));
}

TEST(nExplainChain, NamesEachPluginOnce) {
    const tGraph graph = graphOf({plugin("A", {}, -1), plugin("B", {"A"}, -52006), plugin("C", {"A"}, -52006),
                                  plugin("D", {"A", "B", "C"}, -52006)});
    EXPECT_THAT(follow(graph, "D"), SizeIs(4));
}

TEST(nExplainChain, ListsTheMembersOfACircleInsteadOfFollowingIt) {
    const tGraph graph = graphOf({plugin("A", {"C"}, -52006), plugin("B", {"A"}, -52006), plugin("C", {"B"}, -52006)});
    const auto steps = follow(graph, "B");
    ASSERT_THAT(steps, SizeIs(1));
    EXPECT_EQ(steps[0].text, "is part of a circle of dependencies: A, B, C");
    EXPECT_EQ(steps[0].remedy, "remove one dependency of the circle, for example A from the `Dependencies` of B");
}

TEST(nExplainChain, ShortensTheListOfALargeCircle) {
    std::vector<nGraph::tNode> plugins;
    for (int i = 0; i < 20; ++i) {
        plugins.push_back(plugin("P" + std::to_string(i), {"P" + std::to_string((i + 1) % 20)}, -52006));
    }
    const auto steps = follow(graphOf(std::move(plugins)), "P3");
    EXPECT_THAT(steps[0].text, testing::EndsWith("P10, P11, …"));
}

TEST(nExplainChain, SaysThatADependencyComesTooLate) {
    const auto steps = follow(graphOf({plugin("A", {"Z"}, -52006), plugin("Z")}), "A");
    ASSERT_THAT(steps, SizeIs(1));
    EXPECT_EQ(steps[0].text, "is started before Z, on which it depends");
    EXPECT_THAT(steps[0].remedy, HasSubstr("everything on which Z depends"));
}

TEST(nExplainChain, SaysThatADependencyIsNamedTwice) {
    const auto steps = follow(graphOf({plugin("A"), plugin("B", {"A", "A"}, -52006)}), "B");
    EXPECT_EQ(steps[0].text, "names a dependency twice: A");
    EXPECT_EQ(steps[0].remedy, "remove the second A from the `Dependencies` of B");
}

TEST(nExplainChain, NamesEveryReasonAndTheRemedyOfTheFirst) {
    const auto steps = follow(
        graphOf({plugin("A", {"Gone", "Z"}, -52006), plugin("B", {"A", "C", "C"}, -52006), plugin("C"), plugin("Z")}),
        "A");
    EXPECT_EQ(steps[0].text, "is started before Z, on which it depends; depends on a name that no plug-in has: Gone");
    EXPECT_THAT(steps[0].remedy, HasSubstr("everything on which Z depends"));
    EXPECT_THAT(namesOf(steps), ElementsAre("A", ">Gone"));
}

TEST(nExplainChain, KnowsThatAPluginMayReturnTheHostsCode) {
    const auto steps = follow(graphOf({plugin("A"), plugin("B", {"A"}, -52006)}), "B");
    EXPECT_EQ(steps[0].text, "has all that it depends on, so its own Initialize returned the host's code");
    EXPECT_THAT(steps[0].remedy, HasSubstr("plug-in's maker"));
}

TEST(nExplainChain, BlamesTheLibraryForACertainFailureWithAnOpenCode) {
    nGraph::tNode broken = plugin("B", {"A"}, std::nullopt);
    broken.path = "b.dll";
    broken.mayStart = false;
    const auto steps = follow(graphOf({plugin("A", {}, std::nullopt), broken, plugin("C", {"B"}, -52006)}), "C");
    EXPECT_THAT(namesOf(steps), ElementsAre("C", ">B"));
    EXPECT_EQ(steps[1].text, "has a library that cannot be loaded or lacks an entry point: \"b.dll\"");
    EXPECT_EQ(steps[1].code, std::nullopt);
}

TEST(nExplainChain, SuggestsTheNameThatMayBeMeant) {
    const tGraph graph =
        graphOf({plugin("A", {"settings", "Transprot", "Xyz"}, -52006), plugin("Settings"), plugin("Transport")});
    const auto steps = follow(graph, "A");
    ASSERT_THAT(namesOf(steps), ElementsAre("A", ">Transprot", ">Xyz", ">settings"));
    EXPECT_EQ(steps[1].text, "is the name of no plug-in; there is Transport");
    EXPECT_EQ(steps[1].remedy, "write Transport instead of Transprot in the `Dependencies` of A");
    EXPECT_EQ(steps[2].text, "is the name of no plug-in");
    EXPECT_EQ(steps[2].remedy, "install the plug-in Xyz, or correct the name in the `Dependencies` of A");
    EXPECT_EQ(steps[3].text, "is the name of no plug-in; there is Settings (the case of letters counts)");
    EXPECT_EQ(steps[1].code, std::nullopt);
    EXPECT_EQ(follow(graph, "Xyz")[0].remedy, "install the plug-in Xyz, or correct the name in `Dependencies`");
}

TEST(nExplainChain, SaysHowToSeparateSeveralNames) {
    const auto steps = follow(graphOf({plugin("A", {"Transport;Settings"}, -52006)}), "A");
    ASSERT_THAT(steps, SizeIs(2));
    EXPECT_EQ(steps[1].text, "is the name of no plug-in, but perhaps several names");
    EXPECT_EQ(steps[1].remedy, "separate the names by commas in the `Dependencies` of A");
}

TEST(nExplainChain, PrefersANameThatDiffersOnlyInCaseToSeveralNames) {
    const auto steps = follow(graphOf({plugin("A", {"foo|bar"}, -52006), plugin("Foo|Bar")}), "A");
    ASSERT_THAT(steps, SizeIs(2));
    EXPECT_EQ(steps[1].remedy, "write Foo|Bar instead of foo|bar in the `Dependencies` of A");
}

TEST(nExplainChain, DoesNotRepeatALongNameInEachStep) {
    const std::string longName(100'000, 'n');
    std::vector<std::string> dependencies;
    for (int i = 0; i < 1000; ++i) dependencies.push_back("D" + std::to_string(i));
    std::size_t size = 0;
    for (const tStep& step : follow(graphOf({plugin(longName, dependencies, -52006)}), longName)) {
        size += step.plugin.size() + step.text.size() + step.remedy.size();
    }
    EXPECT_LT(size, 1'000'000U) << "a hundred megabytes, if each repeats it";
}

TEST(nExplainChain, ShortensTheNamesInALongCircle) {
    std::vector<nGraph::tNode> plugins;
    for (char name = 'a'; name < 'm'; ++name) {
        const char next = name == 'l' ? 'a' : static_cast<char>(name + 1);
        plugins.push_back(plugin(std::string(1000, name), {std::string(1000, next)}, -52006));
    }
    const tStep step = follow(graphOf(plugins), plugins[0].name).at(0);
    EXPECT_LT(step.text.size() + step.remedy.size(), 2000U);
    EXPECT_THAT(step.text, HasSubstr(", " + std::string(99, 'b') + "…, "));
}

TEST(nExplainChain, FindsTheRejectedDescriptionOfAMissingPlugin) {
    const std::vector<tFinding> findings{finding(tSeverity::error, "plugins/Transport.ini", "")};
    const tClues clues(findings, {"Failed to parse service description file: C:\\plugins\\transport.INI"});
    const auto steps = follow(graphOf({plugin("A", {"Transport"}, -52006)}), "A", clues);
    ASSERT_THAT(steps, SizeIs(2));
    EXPECT_EQ(steps[1].text, "has a description that the host rejects: C:\\plugins\\transport.INI");
    EXPECT_EQ(steps[1].remedy, "plugins/Transport.ini:3: remedy of plugins/Transport.ini");
    EXPECT_THAT(steps[1].findings, SizeIs(1));
    const tClues alone({}, {"Failed to parse service description file: C:\\plugins\\transport.INI"});
    EXPECT_EQ(follow(graphOf({plugin("A", {"Transport"}, -52006)}), "A", alone)[1].remedy,
              "correct C:\\plugins\\transport.INI");
}

TEST(nExplainChain, FindsTheRejectedDescriptionByTheNameInIt) {
    const std::vector<tFinding> findings{finding(tSeverity::error, "/plugins/10-net.ini", "Transport")};
    const tClues clues(findings, {"Failed to parse service description file: /plugins/10-net.ini"});
    EXPECT_EQ(clues.rejectedFile("Transport"), "/plugins/10-net.ini");
    EXPECT_EQ(clues.rejectedFile("transport"), "/plugins/10-net.ini") << "a rejected file starts nothing in any case";
    EXPECT_EQ(clues.rejectedFile("10-net"), "/plugins/10-net.ini");
    EXPECT_EQ(clues.rejectedFile("Other"), std::nullopt);
}

TEST(nExplainChain, DoesNotTakeOtherMessagesOrFilesForRejectedDescriptions) {
    const std::vector<tFinding> findings{finding(tSeverity::error, "A.ini", "A")};
    const tClues clues(findings, {"Cannot init system framework", "B.ini"});
    EXPECT_EQ(clues.rejectedFile("A"), std::nullopt);
    EXPECT_EQ(clues.rejectedFile("B"), std::nullopt);
}

TEST(nExplainChain, ListsTheFindingsOfAPluginErrorsFirst) {
    const std::vector<tFinding> findings{
        finding(tSeverity::note, "1.ini", "A"), finding(tSeverity::warning, "2.ini", "A"),
        finding(tSeverity::error, "3.ini", "A"), finding(tSeverity::error, "4.ini", "B")};
    const auto ofA = tClues(findings, {}).findingsOf("A");
    ASSERT_THAT(ofA, SizeIs(3));
    EXPECT_EQ(ofA[0].file, "3.ini");
    EXPECT_EQ(ofA[1].file, "2.ini");
    EXPECT_EQ(ofA[2].file, "1.ini");
    EXPECT_THAT(tClues(findings, {}).findingsOf("C"), IsEmpty());
}

/// Returns the remedy for a plug-in that fails with the code and has this finding.
std::string remedyWith(std::int32_t code, tFinding found) {
    found.plugin = "A";
    const std::vector<tFinding> findings{found};
    return follow(graphOf({plugin("A", {}, code)}), "A", tClues(findings, {}))[0].remedy;
}

TEST(nExplainChain, PrefersTheRemedyOfAnErrorThatExplainsTheCode) {
    tFinding found = finding(tSeverity::error, "a.ini", "A");
    found.id = "missing-library";
    EXPECT_EQ(remedyWith(-52005, found), "a.ini:3: remedy of a.ini");
    found.line.reset();
    EXPECT_EQ(remedyWith(-52005, found), "a.ini: remedy of a.ini");
    EXPECT_THAT(remedyWith(-52002, found), HasSubstr("`Requires`")) << "the library is not the cause";
    EXPECT_THAT(remedyWith(-7, found), HasSubstr("documentation"));
    found.severity = tSeverity::warning;
    EXPECT_THAT(remedyWith(-52005, found), HasSubstr("check `Path`"));
    found.severity = tSeverity::error;
    found.id = "no-such-rule";
    EXPECT_THAT(remedyWith(-52005, found), HasSubstr("check `Path`"));
}

TEST(nExplainChain, LeavesTheRemedyToTheCause) {
    tFinding found = finding(tSeverity::error, "b.ini", "B");
    found.id = "unknown-dependency";
    const std::vector<tFinding> findings{found};
    const auto steps = follow(graphOf({plugin("A", {}, -7), plugin("B", {"A"}, -52006)}), "B", tClues(findings, {}));
    EXPECT_THAT(steps[0].remedy, IsEmpty());
    EXPECT_THAT(steps[0].findings, SizeIs(1));
}

TEST(nExplainChain, SaysWhichFeaturesAreNotAllowed) {
    nGraph::tNode node = plugin("A", {}, -52002);
    node.requiresMask = 2;
    tGraph graph = nGraph::build({node}, 0xFFFFFFFD);
    EXPECT_EQ(follow(graph, "A")[0].text,
              "requires one of the features 0x2, of which the machine allows none: 0xfffffffd");
    EXPECT_THAT(follow(graph, "A")[0].remedy, HasSubstr("allow remote deployment"));
    graph.nodes[0].requiresMask = 4;
    EXPECT_THAT(follow(graph, "A")[0].remedy, HasSubstr("correct `Requires`"));
    graph.nodes[0].requiresMask = 0;
    EXPECT_EQ(follow(graph, "A")[0].text, "requires no feature: `Requires` is 0 or no number");
    EXPECT_THAT(follow(graph, "A")[0].remedy, HasSubstr("other than 0"));
}

TEST(nExplainChain, NamesTheLibraryThatCannotBeLoaded) {
    nGraph::tNode node = plugin("A", {}, -52005);
    node.path = "C:\\a.dll";
    const auto steps = follow(graphOf({node}), "A");
    EXPECT_THAT(steps[0].text, HasSubstr("\"C:\\a.dll\""));
    EXPECT_THAT(steps[0].remedy, HasSubstr("64-bit"));
}

TEST(nExplainChain, ExplainsTheOtherCodes) {
    EXPECT_THAT(follow(graphOf({plugin("A", {}, -52003)}), "A")[0].text, HasSubstr("failed: an exception derived"));
    EXPECT_THAT(follow(graphOf({plugin("A", {}, -52000)}), "A")[0].text, HasSubstr("memory ran out"));
    EXPECT_THAT(follow(graphOf({plugin("A", {}, -52001)}), "A")[0].text, HasSubstr("failed: Reserved for the host"));
    EXPECT_THAT(follow(graphOf({plugin("A", {}, -52001)}), "A")[0].remedy, HasSubstr("documentation"));
    EXPECT_THAT(follow(graphOf({plugin("A", {}, -1073741819)}), "A")[0].text, HasSubstr("(an access violation)"));
}

TEST(nExplainChain, SaysOfAPluginThatDoesNotFailWhatDecides) {
    EXPECT_EQ(follow(graphOf({plugin("A")}), "A")[0].text, "starts");
    EXPECT_EQ(follow(graphOf({plugin("A", {}, 4)}), "A")[0].text, "starts, with a warning of its own");
    EXPECT_THAT(follow(graphOf({plugin("A", {}, std::nullopt)}), "A")[0].text, HasSubstr("its own Initialize"));
    EXPECT_THAT(follow(graphOf({plugin("A")}), "A")[0].remedy, IsEmpty());
}

TEST(nExplainChain, FollowsTenThousandPluginsAndUnknownNames) {
    std::vector<nGraph::tNode> plugins{plugin("P0", {}, -52005)};
    for (int i = 1; i < 10'000; ++i) {
        plugins.push_back(
            plugin("P" + std::to_string(i), {"P" + std::to_string(i - 1), "U" + std::to_string(i)}, -52006));
    }
    EXPECT_THAT(follow(graphOf(std::move(plugins)), "P9999"), SizeIs(10'000 + 9'999));
}

}  // namespace
}  // namespace nExplain
