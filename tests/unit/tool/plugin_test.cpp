#include "tool/explain/plugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace nExplain {
namespace {

using nStatus::tPhase;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A plug-in of a status file, with the code of its start. Requires: literals.
nStatus::tPlugin shown(std::string_view name, std::int32_t code, std::vector<std::string_view> dependencies = {}) {
    nStatus::tPlugin plugin;
    plugin.name = name;
    plugin.dependencies = std::move(dependencies);
    plugin.requiresMask = 1;
    if (code != 0) plugin.calls.push_back({"Init", tPhase::initialize, 5, code});
    return plugin;
}

nCheck::tPredictedPlugin predicted(const std::string& name, std::optional<std::int32_t> code,
                                   std::vector<std::string> dependencies = {}) {
    nCheck::tPredictedPlugin plugin;
    plugin.file = name + ".ini";
    plugin.description.name = name;
    plugin.description.dependencies = std::move(dependencies);
    plugin.code = code;
    plugin.mayStart = code.value_or(0) >= 0;
    return plugin;
}

/// A plug-in that fails, but with one of two codes.
nCheck::tPredictedPlugin failing(const std::string& name) {
    nCheck::tPredictedPlugin plugin = predicted(name, std::nullopt);
    plugin.mayStart = false;
    return plugin;
}

nStatus::tReport report(std::vector<nStatus::tPlugin> plugins) {
    nStatus::tReport made;
    made.plugins = std::move(plugins);
    return made;
}

nCheck::tPrediction prediction(std::vector<nCheck::tPredictedPlugin> plugins) {
    nCheck::tPrediction made;
    made.plugins = std::move(plugins);
    return made;
}

tEvidence evidence(std::optional<nStatus::tReport> status, std::optional<nCheck::tPrediction> forecast = {}) {
    tEvidence made;
    made.status = std::move(status);
    made.prediction = std::move(forecast);
    return made;
}

TEST(nExplainPlugin, FollowsAFailureThatTheStatusFileShows) {
    const auto explanation = explainPlugin("B", evidence(report({shown("A", -7), shown("B", -52006, {"A"})})));
    EXPECT_EQ(explanation.verdict, tVerdict::failed);
    EXPECT_EQ(explanation.summary, "B did not start: -52006 (0xFFFF34DA).");
    EXPECT_THAT(explanation.steps, SizeIs(2));
    EXPECT_EQ(explanation.first, "look it up in the plug-in's documentation");
    ASSERT_TRUE(explanation.calls);
    EXPECT_EQ(explanation.calls->at(0).entry, "Init");
    EXPECT_EQ(explanation.calls->at(0).code, -52006);
    EXPECT_EQ(explanation.calls->at(0).timeMs, 5U);
    EXPECT_FALSE(explanation.found);
}

TEST(nExplainPlugin, SaysThatAPluginHasStarted) {
    const auto explanation = explainPlugin("A", evidence(report({shown("A", 0)})));
    EXPECT_EQ(explanation.verdict, tVerdict::started);
    EXPECT_EQ(explanation.summary, "A has started.");
    EXPECT_THAT(explanation.steps, IsEmpty());
    EXPECT_THAT(explanation.first, IsEmpty());
    EXPECT_THAT(explanation.notes, IsEmpty());
    EXPECT_EQ(explainPlugin("A", evidence(report({shown("A", 4)}))).summary,
              "A has started, with the warning 4 of its own.");
}

TEST(nExplainPlugin, ExplainsAFailedStopAndCleanup) {
    nStatus::tPlugin plugin = shown("A", 0);
    plugin.calls.push_back({"Stop", tPhase::stop, 0, -52003});
    plugin.calls.push_back({"Cleanup", tPhase::cleanup, 0, -52000});
    const auto explanation = explainPlugin("A", evidence(report({plugin})));
    EXPECT_EQ(explanation.verdict, tVerdict::started);
    ASSERT_THAT(explanation.notes, SizeIs(2));
    EXPECT_EQ(explanation.notes[0],
              "Its Stop failed with -52003 (0xFFFF34DD): an exception derived from "
              "`std::exception` left one of the plug-in's entry points.");
    EXPECT_THAT(explanation.notes[1], HasSubstr("Its Cleanup failed with -52000"));
    EXPECT_THAT(explanation.first, HasSubstr("report it to the plug-in's maker"));
}

TEST(nExplainPlugin, NamesTheEntryThatAnExceptionLeftWithACodeOfItsOwn) {
    nStatus::tPlugin plugin = shown("A", 0);
    plugin.calls.push_back({"AHalt", tPhase::stop, 0, -77});
    const auto explanation = explainPlugin("A", evidence(report({plugin})));
    EXPECT_THAT(
        explanation.notes,
        ElementsAre("Its Stop failed with -77 (0xFFFFFFB3): an exception with this code left its entry point AHalt."));
    EXPECT_EQ(explanation.first, "look it up in the plug-in's documentation");
}

TEST(nExplainPlugin, SaysThatALibraryCannotBeUnloadedAfterCleanup) {
    nStatus::tPlugin plugin = shown("A", 0);
    plugin.calls.push_back({"Cleanup", tPhase::cleanup, 0, -52005});
    const auto explanation = explainPlugin("A", evidence(report({plugin})));
    EXPECT_THAT(explanation.notes, ElementsAre(HasSubstr("the plug-in's library cannot be unloaded")));
}

TEST(nExplainPlugin, WarnsThatAPluginWillFailAtTheNextStart) {
    const auto explanation =
        explainPlugin("A", evidence(report({shown("A", 0)}), prediction({predicted("A", -52005)})));
    EXPECT_EQ(explanation.verdict, tVerdict::started);
    EXPECT_EQ(explanation.summary, "A has started; at the next start it will fail with -52005 (0xFFFF34DB).");
    EXPECT_THAT(explanation.notes, IsEmpty());
    EXPECT_THAT(explanation.steps, SizeIs(1));
    EXPECT_THAT(explanation.first, HasSubstr("check `Path`"));
}

TEST(nExplainPlugin, WarnsOfACertainFailureEvenIfItsCodeIsOpen) {
    const auto started = explainPlugin("A", evidence(report({shown("A", 0)}), prediction({failing("A")})));
    EXPECT_EQ(started.summary, "A has started; at the next start it will fail.");
    EXPECT_THAT(started.first, HasSubstr("check `Path`"));
    const auto absent = explainPlugin("A", evidence(report({shown("B", 0)}), prediction({failing("A")})));
    EXPECT_EQ(absent.summary, "The status file does not show A; at the next start it will fail.");
    EXPECT_THAT(absent.first, HasSubstr("check `Path`"));
    const auto failed = explainPlugin("A", evidence(report({shown("A", -52005)}), prediction({failing("A")})));
    EXPECT_THAT(failed.notes, IsEmpty()) << "it may be the same code again";
    EXPECT_THAT(failed.first, HasSubstr("check `Path`"));
}

TEST(nExplainPlugin, DoesNotWarnOfAStartThatThePluginsOwnCodeDecides) {
    const auto explanation =
        explainPlugin("A", evidence(report({shown("A", 0)}), prediction({predicted("A", std::nullopt)})));
    EXPECT_THAT(explanation.notes, IsEmpty());
    EXPECT_TRUE(explanation.found);
}

TEST(nExplainPlugin, NoticesThatACauseHasBeenRemoved) {
    const auto explanation =
        explainPlugin("B", evidence(report({shown("A", -52005), shown("B", -52006, {"A"})}),
                                    prediction({predicted("A", std::nullopt), predicted("B", std::nullopt, {"A"})})));
    EXPECT_THAT(explanation.notes, ElementsAre("Nothing prevents A from starting any more: restart the service."));
    EXPECT_EQ(explanation.first, "restart the service");
}

TEST(nExplainPlugin, DoesNotBelieveInTheRemovalOfACauseWhileSomethingIsInDoubt) {
    const std::pair<const char*, tSeverity> doubts[] = {{"unmapped-path", tSeverity::note},
                                                        {"unreadable-library", tSeverity::warning},
                                                        {"forward-slashes", tSeverity::warning},
                                                        {"relative-path", tSeverity::error}};
    for (const auto& [rule, severity] : doubts) {
        nCheck::tPrediction forecast = prediction({predicted("A", std::nullopt)});
        forecast.findings.push_back({rule, severity, "A.ini", 1, "A", "in doubt", "Look."});
        const auto explanation = explainPlugin("A", evidence(report({shown("A", -52005)}), forecast));
        EXPECT_THAT(explanation.notes, IsEmpty()) << rule;
        EXPECT_NE(explanation.first, "restart the service") << rule;
    }
}

TEST(nExplainPlugin, DoesNotLetANoteCastDoubtOnTheRemovalOfACause) {
    nCheck::tPrediction forecast = prediction({predicted("A", std::nullopt)});
    forecast.findings.push_back({"byte-order-mark", tSeverity::note, "A.ini", 1, "A", "harmless", "Nothing."});
    const auto explanation = explainPlugin("A", evidence(report({shown("A", -52005)}), forecast));
    EXPECT_EQ(explanation.first, "restart the service");
}

TEST(nExplainPlugin, NoticesThatACauseHasChanged) {
    const auto explanation =
        explainPlugin("A", evidence(report({shown("A", -52005)}), prediction({predicted("A", -52002)})));
    EXPECT_THAT(explanation.notes, ElementsAre("At the next start A will fail with -52002 (0xFFFF34DE) instead."));
    EXPECT_THAT(explanation.first, HasSubstr("check `Path`"));
}

TEST(nExplainPlugin, ComparesAHundredThousandPluginsWithTheNextStart) {
    // Searching all of them for each would take minutes.
    constexpr int count = 100'000;
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.push_back("P" + std::to_string(i));
    std::vector<nStatus::tPlugin> before{shown(names[0], -52005)};
    std::vector<nCheck::tPredictedPlugin> next{predicted(names[0], -52002)};
    for (std::size_t i = 1; i < count; ++i) {
        before.push_back(shown(names[i], -52005));
        next.push_back(predicted(names[i], -52002));
        before[0].dependencies.push_back(names[i]);
    }
    std::sort(before[0].dependencies.begin(), before[0].dependencies.end());
    before[0].calls[0].code = -52006;
    std::rotate(before.begin(), before.begin() + 1, before.end());
    const auto explanation = explainPlugin("P0", evidence(report(std::move(before)), prediction(std::move(next))));
    EXPECT_THAT(explanation.steps, SizeIs(count));
    EXPECT_THAT(explanation.notes, SizeIs(count - 1));
}

TEST(nExplainPlugin, NoticesThatADescriptionIsGone) {
    const auto explanation = explainPlugin("A", evidence(report({shown("A", -52005)}), prediction({})));
    EXPECT_THAT(explanation.notes, ElementsAre("There is no description of A any more."));
}

TEST(nExplainPlugin, DoesNotCompareWhatOnlyRunningThePluginShows) {
    for (const std::int32_t code : {-7, -52000, -52003}) {
        const auto explanation =
            explainPlugin("A", evidence(report({shown("A", code)}), prediction({predicted("A", std::nullopt)})));
        EXPECT_THAT(explanation.notes, IsEmpty()) << code;
    }
}

TEST(nExplainPlugin, StaysSilentIfTheCauseIsStillThere) {
    for (const std::int32_t code : {-52002, -52005}) {
        const auto explanation =
            explainPlugin("A", evidence(report({shown("A", code)}), prediction({predicted("A", code)})));
        EXPECT_THAT(explanation.notes, IsEmpty());
    }
}

TEST(nExplainPlugin, PredictsWithoutAStatusFile) {
    const auto failing = explainPlugin("A", evidence({}, prediction({predicted("A", -52002)})));
    EXPECT_EQ(failing.verdict, tVerdict::predicted);
    EXPECT_EQ(failing.summary, "A will fail with -52002 (0xFFFF34DE).");
    EXPECT_THAT(failing.steps, SizeIs(1));
    const auto open = explainPlugin("A", evidence({}, prediction({predicted("A", std::nullopt)})));
    EXPECT_EQ(open.summary, "A will start unless its own Initialize fails.");
    EXPECT_THAT(open.first, IsEmpty());
    EXPECT_EQ(explainPlugin("A", evidence({}, prediction({predicted("A", 0)}))).summary, "A will start.");
}

TEST(nExplainPlugin, SaysThatADescriptionCameAfterTheStart) {
    const auto explanation =
        explainPlugin("A", evidence(report({shown("B", 0)}), prediction({predicted("A", 0), predicted("B", 0)})));
    EXPECT_EQ(explanation.verdict, tVerdict::absent);
    EXPECT_EQ(explanation.summary, "The status file does not show A; at the next start it will start.");
    EXPECT_THAT(explanation.notes, ElementsAre(HasSubstr("after the service had started")));
    EXPECT_EQ(explanation.first, "restart the service");
}

TEST(nExplainPlugin, SaysThatAStatusFileWithoutPluginsIsNotOfAStartThatIsComplete) {
    const auto explanation = explainPlugin("A", evidence(report({}), prediction({predicted("A", 0)})));
    EXPECT_THAT(explanation.notes, ElementsAre(HasSubstr("shows no plug-in at all")));
    EXPECT_EQ(explanation.first, "look whether the service is running");
}

TEST(nExplainPlugin, PrefersTheRemedyOfAPredictedFailureToARestart) {
    const auto explanation = explainPlugin("A", evidence(report({}), prediction({predicted("A", -52005)})));
    EXPECT_THAT(explanation.first, HasSubstr("check `Path`"));
}

TEST(nExplainPlugin, FindsTheRejectedDescription) {
    nCheck::tPrediction forecast = prediction({});
    forecast.messages = {"Failed to parse service description file: /p/transport.ini"};
    forecast.findings.push_back(
        {"blank-line", tSeverity::error, "/p/transport.ini", 4, {}, "blank line", "Remove it."});
    const auto explanation = explainPlugin("Transport", evidence({}, forecast));
    EXPECT_EQ(explanation.verdict, tVerdict::predicted);
    EXPECT_EQ(explanation.summary,
              "The host rejects /p/transport.ini, which is probably the description of Transport.");
    ASSERT_THAT(explanation.steps, SizeIs(1));
    EXPECT_EQ(explanation.steps[0].plugin, "Transport");
    EXPECT_EQ(explanation.steps[0].text, "has a description that the host rejects: /p/transport.ini");
    EXPECT_THAT(explanation.steps[0].findings, SizeIs(1));
    EXPECT_EQ(explanation.first, "/p/transport.ini:4: Remove it.");
}

TEST(nExplainPlugin, FindsTheRejectedDescriptionInTheStatusFileAlone) {
    nStatus::tReport status = report({});
    status.messages = {"Failed to parse service description file: C:\\p\\Transport.ini"};
    const auto explanation = explainPlugin("Transport", evidence(status));
    EXPECT_EQ(explanation.verdict, tVerdict::absent);
    EXPECT_EQ(explanation.first, "correct C:\\p\\Transport.ini; a blank line counts as malformed");
}

TEST(nExplainPlugin, SaysWhoDependsOnANameWithoutAPlugin) {
    const auto forecast = prediction({predicted("A", -52006, {"X"}), predicted("B", -52006, {"X"})});
    const auto explanation = explainPlugin("X", evidence({}, forecast));
    EXPECT_EQ(explanation.verdict, tVerdict::undescribed);
    EXPECT_EQ(explanation.summary, "No plug-in has the name X, but others depend on it.");
    EXPECT_THAT(explanation.notes, ElementsAre("These depend on it and fail: A, B."));
    EXPECT_THAT(explanation.first, HasSubstr("install the plug-in X"));
    const auto inStatus = explainPlugin("X", evidence(report({shown("A", -52006, {"X"})})));
    EXPECT_EQ(inStatus.verdict, tVerdict::undescribed);
}

TEST(nExplainPlugin, ShortensALongListOfDependants) {
    std::vector<nCheck::tPredictedPlugin> plugins;
    for (int i = 10; i < 30; ++i) plugins.push_back(predicted("P" + std::to_string(i), -52006, {"X"}));
    const auto explanation = explainPlugin("X", evidence({}, prediction(std::move(plugins))));
    EXPECT_THAT(explanation.notes, ElementsAre(testing::EndsWith("P20, P21, ….")));
}

TEST(nExplainPlugin, SuggestsKnownNamesForAnUnknownOne) {
    const auto explanation =
        explainPlugin("transport", evidence(report({shown("Transport", 0), shown("Settings", 0)}),
                                            prediction({predicted("Transport", 0), predicted("Transporter", 0),
                                                        predicted("Deployment", 0, {"Transprot"})})));
    EXPECT_EQ(explanation.verdict, tVerdict::unknown);
    EXPECT_EQ(explanation.summary, "Nothing is known about transport.");
    EXPECT_THAT(explanation.similar, ElementsAre("Transport", "Transporter"));
    EXPECT_THAT(explanation.notes, ElementsAre(HasSubstr("case of letters")));
    EXPECT_THAT(explanation.first, IsEmpty());
}

TEST(nExplainPlugin, AsksForOneNameAtATime) {
    for (const char* const names : {"Transport;Settings", "Transport, Settings", "Transport|Settings"}) {
        const auto explanation = explainPlugin(names, evidence(report({shown("Transport", 0)})));
        EXPECT_EQ(explanation.verdict, tVerdict::unknown);
        EXPECT_THAT(explanation.notes,
                    ElementsAre("This looks like several names: ask for one at a time.", HasSubstr("case of letters")));
    }
}

TEST(nExplainPlugin, SuggestsAtMostFiveNames) {
    std::vector<nCheck::tPredictedPlugin> plugins;
    for (int i = 10; i < 30; ++i) plugins.push_back(predicted("Plugin" + std::to_string(i), 0));
    EXPECT_THAT(explainPlugin("Plugin3x", evidence({}, prediction(std::move(plugins)))).similar, SizeIs(5));
}

TEST(nExplainPlugin, ExplainsTheFirstOfANameThatFails) {
    const auto explanation = explainPlugin("A", evidence(report({shown("A", 0), shown("A", -7), shown("A", -8)})));
    EXPECT_EQ(explanation.summary, "A did not start: -7 (0xFFFFFFF9).");
    EXPECT_THAT(explanation.notes, ElementsAre("3 plug-ins have this name."));
}

TEST(nExplainPlugin, NotesOnceThatANameIsNotUnique) {
    const auto explanation = explainPlugin(
        "A", evidence(report({shown("A", 0), shown("A", 0)}), prediction({predicted("A", 0), predicted("A", 0)})));
    EXPECT_THAT(explanation.notes, ElementsAre("2 plug-ins have this name."));
}

TEST(nExplainPlugin, PassesOnWhatLimitsTheAnswer) {
    nStatus::tReport status = report({shown("A", 0)});
    status.ambiguous = true;
    tEvidence known = evidence(status);
    known.obstacles = {"There is no plug-in directory."};
    EXPECT_THAT(explainPlugin("A", known).notes,
                ElementsAre(HasSubstr("more than one way"), "There is no plug-in directory."));
}

TEST(nExplainPlugin, KnowsNoPredictionIfTheHostCannotOpenItsPluginDirectory) {
    const auto obstaclesOf = [](const std::string& directory) {
        nCheck::tPrediction empty = prediction({});
        empty.findings.push_back({"plugins-directory", tSeverity::error, directory, {}, {}, "not opened", "Make it."});
        tEvidence known = evidence(report({shown("A", 0)}));
        usePrediction(empty, known);
        EXPECT_FALSE(known.prediction);
        return known.obstacles;
    };
    EXPECT_THAT(
        obstaclesOf("C:\\p"),
        ElementsAre(
            "The host cannot open its plug-in directory, C:\\p, so its next start will start no plug-in. Make it."));
    EXPECT_THAT(
        obstaclesOf(""),
        ElementsAre("The host cannot open its plug-in directory, so its next start will start no plug-in. Make it."));
}

TEST(nExplainPlugin, UsesThePredictionOfADirectoryWithFindings) {
    nCheck::tPrediction found = prediction({predicted("A", 0)});
    found.findings.push_back({"blank-line", tSeverity::error, "A.ini", 1, "A", "blank line", "Remove it."});
    tEvidence known;
    usePrediction(found, known);
    EXPECT_THAT(known.obstacles, IsEmpty());
    EXPECT_TRUE(known.prediction);
}

TEST(nExplainPlugin, NamesEachVerdict) {
    EXPECT_EQ(verdictName(tVerdict::started), "started");
    EXPECT_EQ(verdictName(tVerdict::failed), "failed");
    EXPECT_EQ(verdictName(tVerdict::absent), "absent");
    EXPECT_EQ(verdictName(tVerdict::predicted), "predicted");
    EXPECT_EQ(verdictName(tVerdict::undescribed), "undescribed");
    EXPECT_EQ(verdictName(tVerdict::unknown), "unknown");
}

}  // namespace
}  // namespace nExplain
