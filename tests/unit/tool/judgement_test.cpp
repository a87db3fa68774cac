#include "tool/run/judgement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/lifeEvents.h"

namespace {

using nRun::judge;
using nRun::passed;
using nRun::tCannotRun;
using nRun::tEnding;
using nRun::tOutcome;
using nRun::tPlugin;
using nRun::tPluginLife;
using nRun::tResult;
using support::livingPlugin;
using support::tLifeEvents;
using testing::IsEmpty;
using tKind = tLifeEvents::tKind;
using tPhase = tLifeEvents::tPhase;

const tEnding finished{0, 10'000};

/// Returns what becomes of the only plug-in, "A", in its last life.
tPluginLife judged(const tLifeEvents& log, const tEnding& ending = finished) {
    return judge({livingPlugin("A")}, 9, log.events, ending).lives.back().at(0);
}

/// "OUTCOME: DETAIL"
std::string text(const tPluginLife& life) { return std::string(outcomeName(life.outcome)) + ": " + life.detail; }

/// The same after these codes of Initialize, Stop and Cleanup.
std::string afterCodes(std::int32_t initialize, std::int32_t stop = 0, std::int32_t cleanup = 0) {
    tLifeEvents log(1);
    log.call(0, tPhase::initialize, initialize)
        .call(0, tPhase::stop, stop)
        .call(0, tPhase::cleanup, cleanup)
        .finished();
    return text(judged(log));
}

/// The same after the process has ended in, or after, this phase.
std::string afterEnd(tKind kind, std::int32_t code = 0, const std::string& place = {}) {
    tLifeEvents log(1);
    log.begin(0, tPhase::initialize).add(kind, code, place);
    return text(judged(log, {3, 10'000}));
}

TEST(nRunJudgement, ShowsCallsWithTheirTimesAndCodes) {
    tLifeEvents log(1);
    log.call(0, tPhase::initialize, 0, 12).call(0, tPhase::stop, 0, 3).call(0, tPhase::cleanup).finished();
    const tPluginLife life = judged(log);
    ASSERT_EQ(life.calls.size(), 3U);
    EXPECT_EQ(life.calls[0].entry, "AInitialize");
    EXPECT_EQ(life.calls[0].timeMs, 12U);
    EXPECT_EQ(life.calls[1].entry, "AStop");
    EXPECT_EQ(life.calls[2].phase, tPhase::cleanup);
    EXPECT_EQ(life.outcome, tOutcome::ok);
    EXPECT_THAT(life.detail, IsEmpty());
}

TEST(nRunJudgement, ShowsNoCallsOfEntriesThatThePlugInLacksUnlessTheyFail) {
    tPlugin plugin = livingPlugin("A");
    plugin.description.initialize = plugin.description.stop = plugin.description.cleanup = "";
    tLifeEvents log(1);
    log.call(0, tPhase::initialize).call(0, tPhase::cleanup, -52005).finished();
    const tPluginLife life = judge({plugin}, 9, log.events, finished).lives.at(0).at(0);
    ASSERT_EQ(life.calls.size(), 1U);
    EXPECT_EQ(life.calls[0].entry, "Cleanup");
    EXPECT_EQ(text(life), "failed: the library could not be unloaded; the service would stop nevertheless");
}

TEST(nRunJudgement, SaysWhatCodesMeanForTheService) {
    EXPECT_EQ(afterCodes(1), "ok: AInitialize returned the warning 1");
    EXPECT_EQ(afterCodes(0), "ok: ");
    EXPECT_EQ(afterCodes(-7), "failed: AInitialize returned -7; the service would run without it");
    EXPECT_EQ(afterCodes(-52000), "failed: AInitialize ran out of memory; the service would run without it");
    EXPECT_EQ(afterCodes(-52003),
              "failed: AInitialize threw an exception derived from std::exception; the service would run without it");
    EXPECT_EQ(afterCodes(0, -52003),
              "failed: AStop threw an exception derived from std::exception; the service would stop nevertheless");
    EXPECT_EQ(afterCodes(0, 0, -52026),
              "failed: ACleanup threw an exception with the code -52026; the service would stop nevertheless");
    EXPECT_EQ(afterCodes(2, 0, -52000),
              "failed: AInitialize returned the warning 2; ACleanup ran out of memory; the service would stop "
              "nevertheless");
}

TEST(nRunJudgement, SaysWhyTheHostDidNotStartAPlugIn) {
    EXPECT_EQ(afterCodes(-52002),
              "notStarted: the machine allows none of the features that it requires (1); the service would run without "
              "it");
    EXPECT_EQ(afterCodes(-52005),
              "notStarted: its library cannot be loaded or unloaded, or lacks an entry: 'ziptra check' may say why; "
              "the service would "
              "run without it");
}

/// Returns what becomes of the last of some plug-ins whose starts have these codes.
std::string afterStarts(const std::vector<tPlugin>& plugins, const std::vector<std::int32_t>& codes) {
    tLifeEvents log(plugins.size());
    for (std::size_t i = 0; i < codes.size(); ++i) log.call(i, tPhase::initialize, codes[i]);
    return text(judge(plugins, 9, log.finished().events, finished).lives.at(0).back());
}

TEST(nRunJudgement, NamesTheDependencyThatHasNotStarted) {
    const tPlugin a = livingPlugin("A");
    EXPECT_EQ(afterStarts({a, livingPlugin("B", {"A"})}, {-7, -52006}),
              "notStarted: it depends on A, which has not started; the service would run without it");
    EXPECT_EQ(afterStarts({a, livingPlugin("B", {"A", "X"})}, {0, -52006}),
              "notStarted: it depends on X, which no readable description in its directory has as its name; the "
              "service would run without it");
    EXPECT_EQ(
        afterStarts({a, livingPlugin("B", {"A", "A"})}, {0, -52006}),
        "notStarted: a plug-in on which it depends comes later in the start order, or is named twice; the service "
        "would run without it");
}

TEST(nRunJudgement, FindsWhatIsLeftBehind) {
    tLifeEvents log(1);
    log.calls(0).left(0, 0, "1 thread").left(0, 0, "2 handles").finished();
    EXPECT_EQ(text(judged(log)),
              "leaked: left behind after Cleanup: 1 thread, 2 handles; the service would keep that until it ends");
    tLifeEvents failing(1);
    failing.call(0, tPhase::initialize, -7).left(0, 0, "1 thread").finished();
    EXPECT_EQ(text(judged(failing)),
              "failed: AInitialize returned -7; the service would run without it; left behind after Cleanup: 1 thread; "
              "the service would keep that until it ends");
}

TEST(nRunJudgement, QuotesWhatWasSaidWithoutCountingIt) {
    tLifeEvents log(1);
    log.begin(0, tPhase::initialize).said(0, tPhase::initialize, "no file").call(0, tPhase::initialize);
    log.said(0, tPhase::initialize, "no \"use\"", false).call(0, tPhase::stop).call(0, tPhase::cleanup).finished();
    const tPluginLife life = judged(log);
    ASSERT_EQ(life.said.size(), 2U);
    EXPECT_EQ(sentenceOf(life.said[0]), "AInitialize said: \"no file\"");
    EXPECT_EQ(sentenceOf(life.said[1]), "a thread said after AInitialize was called: \"no \"use\"\"");
    EXPECT_EQ(text(life), "ok: ");
}

TEST(nRunJudgement, QuotesWhatWasSaidInTheCallThatEndedTheProcess) {
    tLifeEvents log(1);
    log.begin(0, tPhase::stop).said(0, tPhase::stop, "I give up").add(tKind::aborted);
    const tPluginLife life = judged(log, {3, 10'000});
    ASSERT_EQ(life.said.size(), 1U);
    EXPECT_EQ(sentenceOf(life.said[0]), "AStop said: \"I give up\"");
    EXPECT_EQ(text(life), "crashed: a call of abort in AStop; this would have ended the service");
}

TEST(nRunJudgement, SaysHowTheProcessEnded) {
    EXPECT_EQ(afterEnd(tKind::faulted, static_cast<std::int32_t>(0xC0000005), "a.dll+0x10"),
              "crashed: an access violation (0xC0000005) at a.dll+0x10 in AInitialize; this would have ended the "
              "service");
    EXPECT_EQ(afterEnd(tKind::faulted, 1),
              "crashed: an exception (0x00000001) in AInitialize; this would have ended the service");
    EXPECT_EQ(afterEnd(tKind::aborted), "crashed: a call of abort in AInitialize; this would have ended the service");
    EXPECT_EQ(
        afterEnd(tKind::threw),
        "crashed: an exception not derived from std::exception in AInitialize; this would have ended the service");
    EXPECT_EQ(afterEnd(tKind::endedThread),
              "exited: the host's thread was ended in AInitialize; the service could no longer be stopped");
    EXPECT_EQ(
        afterEnd(tKind::keptLibrary),
        "failed: AInitialize failed, and the library could not be unloaded; this would have ended the service's run");
}

TEST(nRunJudgement, TakesTheExitCodeIfTheProcessCouldNotSayHowItEnded) {
    tLifeEvents log(1);
    log.begin(0, tPhase::initialize);
    EXPECT_EQ(text(judged(log, {5, 10'000})),
              "exited: the process ended with the exit code 5 in AInitialize; this would have ended the service");
    EXPECT_EQ(
        text(judged(log, {3, 10'000})),
        "exited: the process exited with code 3, as abort does, in AInitialize; this would have ended the service");
    EXPECT_EQ(
        text(judged(log, {0xBFFFFFFF, 10'000})),
        "exited: the process ended with the exit code -1073741825 in AInitialize; this would have ended the service");
    EXPECT_EQ(text(judged(log, {0xC00000FD, 10'000})),
              "crashed: a stack overflow (0xC00000FD) in AInitialize; this would have ended the service");
    log.call(0, tPhase::cleanup).over();
    EXPECT_EQ(text(judged(log, {0, 10'000})),
              "exited: the process ended with the exit code 0 after ACleanup had returned; this would have ended the "
              "service");
}

TEST(nRunJudgement, TakesASmallNegativeExitCodeForAnExitAndNoException) {
    tLifeEvents log(1);
    log.begin(0, tPhase::initialize);
    EXPECT_EQ(text(judged(log, {0xFFFFFFFF, 10'000})),
              "exited: the process ended with the exit code -1 in AInitialize; this would have ended the service");
    EXPECT_EQ(text(judged(log, {0xF0000000, 10'000})),
              "exited: the process ended with the exit code -268435456 in AInitialize; this would have ended the "
              "service");
    EXPECT_EQ(text(judged(log, {0xEFFFFFFF, 10'000})),
              "crashed: an exception (0xEFFFFFFF) in AInitialize; this would have ended the service");
}

TEST(nRunJudgement, SaysInWhichEntryThePlugInHangsAndWhichWindowsAreOpen) {
    tLifeEvents log(1);
    log.begin(0, tPhase::initialize);
    EXPECT_EQ(text(judged(log, {std::nullopt, 2'500})),
              "hung: no return within 2500 ms in AInitialize; this would keep the service from starting the other "
              "plug-ins, and from stopping");
    log.call(0, tPhase::initialize).begin(0, tPhase::stop);
    EXPECT_EQ(
        text(judged(log, {std::nullopt, 10'000, {"Error", ""}})),
        "hung: no return within 10.0 s in AStop, where the window \"Error\" is open, where the window \"\" is open; "
        "this would keep the service from stopping");
}

TEST(nRunJudgement, SaysThatACleanupWithoutWindowsMayWaitForAThread) {
    tLifeEvents log(1);
    log.call(0, tPhase::initialize).call(0, tPhase::stop).begin(0, tPhase::cleanup);
    EXPECT_EQ(text(judged(log, {std::nullopt, 10'000})),
              "hung: no return within 10.0 s in ACleanup, which may be waiting for a thread that does not end; this "
              "would keep the service from stopping");
    EXPECT_EQ(text(judged(log, {std::nullopt, 10'000, {"Error"}})),
              "hung: no return within 10.0 s in ACleanup, where the window \"Error\" is open; this would keep the "
              "service from stopping");
    EXPECT_EQ(text(judged(log.call(0, tPhase::cleanup), {std::nullopt, 10'000})),
              "hung: no return within 10.0 s after ACleanup had returned; this would keep the service from stopping");
}

/// Returns what became of the last one called, after an access violation in no library, on a thread of a plug-in.
std::string afterLostThread(const std::vector<tPlugin>& plugins, tLifeEvents log) {
    log.events.push_back({tKind::faulted, 0, {}, 1, static_cast<std::int32_t>(0xC0000005), "0x10"});
    std::size_t last = 0;
    for (const nRun::tEvent& event : log.events) last = event.kind == tKind::called ? event.plugin : last;
    return text(judge(plugins, 9, log.events, {3, 10'000}).lives.back()[last]);
}

TEST(nRunJudgement, NamesThePlugInsWhoseThreadsMayRunUnloadedCode) {
    const std::string before = "crashed: an access violation (0xC0000005) at 0x10";
    const std::string after = "; this would have ended the service";
    const std::vector<tPlugin> plugins{livingPlugin("A"), livingPlugin("B"), livingPlugin("C"), livingPlugin("D")};
    tLifeEvents log(4);
    log.begin(0, tPhase::initialize);
    EXPECT_EQ(afterLostThread(plugins, log), before + " in AInitialize" + after) << "nothing has been unloaded";
    log.call(0, tPhase::initialize, -7).call(1, tPhase::initialize).call(2, tPhase::initialize);
    EXPECT_EQ(afterLostThread(plugins, log),
              "crashed: an access violation (0xC0000005) at 0x10, perhaps on a thread of A, whose library has been "
              "unloaded, after CInitialize had returned" +
                  after);
    log.call(3, tPhase::initialize).call(3, tPhase::stop).call(3, tPhase::cleanup).begin(2, tPhase::cleanup);
    EXPECT_EQ(afterLostThread(plugins, log),
              before + ", perhaps on a thread of A or C or D, whose library has been unloaded, in CCleanup" + after);
    log.call(2, tPhase::cleanup).call(1, tPhase::cleanup);
    EXPECT_EQ(afterLostThread(plugins, log), before +
                                                 ", perhaps on a thread of one of the plug-ins, whose library has been "
                                                 "unloaded, after BCleanup had returned" +
                                                 after);
}

TEST(nRunJudgement, BlamesNoThreadOfAPlugInWhoseInitializeWasNotCalled) {
    const std::vector<tPlugin> plugins{livingPlugin("A"), livingPlugin("B", {"A"})};
    for (const std::int32_t code : {-52002, -52005, -52006}) {
        tLifeEvents log(2);
        log.call(0, tPhase::initialize, code).begin(1, tPhase::initialize);
        EXPECT_EQ(afterLostThread(plugins, log),
                  "crashed: an access violation (0xC0000005) at 0x10 in BInitialize; this would have ended the service")
            << code;
    }
}

TEST(nRunJudgement, DoesNotBlameTheOtherPlugInsForTheEnd) {
    const std::vector<tPlugin> plugins{livingPlugin("A"), livingPlugin("B"), livingPlugin("C"), livingPlugin("D")};
    tLifeEvents log(4);
    log.call(0, tPhase::initialize).call(1, tPhase::initialize, -7).begin(2, tPhase::initialize);
    const tResult result = judge(plugins, 9, log.events, {5, 10'000});
    ASSERT_EQ(result.lives.size(), 1U);
    EXPECT_EQ(text(result.lives[0][0]), "ok: it was not stopped and cleaned up, because the life ended in C");
    EXPECT_EQ(text(result.lives[0][1]), "failed: BInitialize returned -7; the service would run without it");
    EXPECT_EQ(result.lives[0][2].outcome, tOutcome::exited);
    EXPECT_EQ(text(result.lives[0][3]), "notStarted: the life had ended before, in C");
    EXPECT_FALSE(passed(result));
}

TEST(nRunJudgement, LeavesEarlierLivesAsTheyWere) {
    tLifeEvents log(1);
    log.calls(0).over().call(0, tPhase::initialize).begin(0, tPhase::stop).add(tKind::aborted);
    const tResult result = judge({livingPlugin("A")}, 9, log.events, {3, 10'000});
    ASSERT_EQ(result.lives.size(), 2U);
    EXPECT_EQ(text(result.lives[0][0]), "ok: ");
    EXPECT_EQ(text(result.lives[1][0]), "crashed: a call of abort in AStop; this would have ended the service");
}

TEST(nRunJudgement, LeavesOutALifeThatWasAddedUnlessTheProcessEndedInIt) {
    tLifeEvents log(1);
    log.calls(0).over().calls(0).left(0, 0, "1 handle").left(1, 0, "1 handle").over();
    EXPECT_EQ(judge({livingPlugin("A")}, 1, log.events, {3, 10'000}).lives.size(), 2U);
    const tResult result = judge({livingPlugin("A")}, 1, log.add(tKind::finished).events, finished);
    ASSERT_EQ(result.lives.size(), 1U);
    EXPECT_EQ(result.lives[0][0].outcome, tOutcome::leaked);
}

TEST(nRunJudgement, PassesIfAllPlugInsWereOkInAllLives) {
    tLifeEvents good(1);
    EXPECT_TRUE(passed(judge({livingPlugin("A")}, 9, good.calls(0).over().calls(0).finished().events, finished)));
    tLifeEvents bad(1);
    bad.calls(0).over().calls(0).left(0, 0, "1 thread").finished();
    EXPECT_FALSE(passed(judge({livingPlugin("A")}, 9, bad.events, finished)));
}

/// Returns why there is no result.
std::string refusal(const tLifeEvents& log, const tEnding& ending) {
    try {
        static_cast<void>(judge({livingPlugin("A")}, 9, log.events, ending));
        return "a result";
    } catch (const tCannotRun& failure) {
        return failure.what();
    }
}

TEST(nRunJudgement, IsImpossibleIfTheProcessDidNotComeToACall) {
    const std::string ended =
        "The plug-ins cannot be run: their process ended with the exit code 0 before it called one";
    EXPECT_EQ(refusal(tLifeEvents(1), {std::nullopt, 10'000}),
              "The plug-ins cannot be run: their process hung before it called one");
    EXPECT_EQ(refusal(tLifeEvents(1).finished(), finished), ended);
    EXPECT_EQ(refusal(tLifeEvents(2).calls(0).finished(), finished), ended) << "it has other plug-ins";
    EXPECT_THROW(static_cast<void>(judge({livingPlugin("A")}, 1, {}, finished)), tCannotRun);
}

TEST(nRunJudgement, IsImpossibleIfTheProcessGaveUpThroughNoFaultOfACall) {
    tLifeEvents log(1);
    EXPECT_EQ(refusal(tLifeEvents(1).add(tKind::gaveUp, 0, "it is ill"), {2, 10'000}),
              "The plug-ins cannot be run: their process gave up: it is ill");
    log.calls(0).over().call(0, tPhase::initialize).add(tKind::gaveUp, 0, "it is ill");
    EXPECT_EQ(refusal(log, {2, 10'000}),
              "The plug-ins cannot be run: their process gave up: it is ill, in life 2; its last call was that of "
              "AInitialize of A");
}

TEST(nRunJudgement, IsImpossibleIfTheProcessCouldNotReport) {
    EXPECT_EQ(refusal(tLifeEvents(1), {nRun::lostReportsCode, 10'000}),
              "The plug-ins cannot be run: their process could not report");
    EXPECT_EQ(refusal(tLifeEvents(1).begin(0, tPhase::stop), {nRun::lostReportsCode, 10'000}),
              "The plug-ins cannot be run: their process could not report, in life 1; its last call was that of AStop "
              "of A");
}

}  // namespace
