#include "tool/run/history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/lifeEvents.h"

namespace {

using nRun::historyOf;
using nRun::tHistory;
using support::tLifeEvents;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pointee;
using tKind = tLifeEvents::tKind;
using tPhase = tLifeEvents::tPhase;

TEST(nRunHistory, DividesTheCallsIntoLives) {
    tLifeEvents log(1);
    log.calls(0).over().call(0, tPhase::initialize, 5, 7).finished();
    const tHistory history = historyOf(1, log.events);
    EXPECT_TRUE(history.ready);
    EXPECT_TRUE(history.finished);
    EXPECT_FALSE(history.running);
    ASSERT_EQ(history.lives.size(), 2U);
    EXPECT_NE(history.lives[0][0].returned[2], nullptr);
    EXPECT_EQ(history.lives[1][0].returned[2], nullptr);
    EXPECT_EQ(history.lives[1][0].returned[0]->code, 5);
    EXPECT_EQ(history.lives[1][0].returned[0]->number, 7U);
}

TEST(nRunHistory, KnowsTheLastCallAndWhetherItHasReturned) {
    tLifeEvents log(2);
    log.calls(0).begin(1, tPhase::stop);
    const tHistory history = historyOf(2, log.events);
    ASSERT_NE(history.last, nullptr);
    EXPECT_EQ(history.last->plugin, 1U);
    EXPECT_EQ(history.last->phase, tPhase::stop);
    EXPECT_TRUE(history.running);
    EXPECT_EQ(history.end, nullptr);
    EXPECT_FALSE(history.finished);
}

TEST(nRunHistory, KnowsTheFirstReasonForTheEnd) {
    tLifeEvents log(1);
    log.begin(0, tPhase::initialize).add(tKind::faulted, 1).add(tKind::aborted);
    const tHistory history = historyOf(1, log.events);
    ASSERT_NE(history.end, nullptr);
    EXPECT_EQ(history.end->kind, tKind::faulted);
}

TEST(nRunHistory, SaysWhetherHandlesWereLeftOnlyIfAllLivesWereLed) {
    tLifeEvents log(1);
    log.calls(0).over();
    EXPECT_FALSE(nRun::leftHandles(log.events));
    log.leftHandles(0, 0, "1 handle");
    EXPECT_FALSE(nRun::leftHandles(log.events)) << "the process ended early";
    log.finished();
    EXPECT_TRUE(nRun::leftHandles(log.events));
    EXPECT_FALSE(nRun::leftHandles(tLifeEvents(1).calls(0).left(0, 0, "1 thread").finished().events));
}

TEST(nRunHistory, TakesTheHandlesFromAnotherProcessThatFinished) {
    const auto first = tLifeEvents(1).calls(0).left(0, 0, "1 thread").leftHandles(0, 0, "3 handles").finished();
    const auto texts = [&](const std::vector<nRun::tEvent>& other) {
        const auto events = nRun::withHandlesOf(first.events, other);
        const tHistory history = historyOf(1, events);
        std::vector<std::string> result;
        for (const auto* const left : history.lives[0][0].left) result.push_back(left->text);
        return result;
    };
    const auto second = tLifeEvents(1).calls(0).left(0, 0, "2 threads").leftHandles(0, 0, "1 handle");
    EXPECT_THAT(texts(second.events), ElementsAre("1 thread", "3 handles")) << "it did not finish";
    EXPECT_THAT(texts(tLifeEvents(second).finished().events), ElementsAre("1 thread", "1 handle"));
    EXPECT_THAT(texts(tLifeEvents(1).calls(0).finished().events), ElementsAre("1 thread"));
}

TEST(nRunHistory, CollectsWhatWasLeftInEachLife) {
    tLifeEvents log(1);
    log.calls(0).over().calls(0).left(0, 0, "a").left(1, 0, "b").left(0, 0, "c").finished();
    const tHistory history = historyOf(1, log.events);
    const auto hasText = [](const char* text) { return Pointee(Field(&nRun::tEvent::text, text)); };
    EXPECT_THAT(history.lives[0][0].left, ElementsAre(hasText("a"), hasText("c")));
    EXPECT_THAT(history.lives[1][0].left, ElementsAre(hasText("b")));
}

TEST(nRunHistory, CollectsWhatWasSaidInEachLifeAndIsNotChangedByIt) {
    tLifeEvents log(1);
    log.said(0, tPhase::initialize, "before any life").begin(0, tPhase::initialize);
    log.said(0, tPhase::initialize, "a").said(0, tPhase::initialize, "").calls(0).over().said(0, tPhase::cleanup, "b");
    log.begin(0, tPhase::initialize).said(0, tPhase::initialize, "c");
    const tHistory history = historyOf(1, log.events);
    const auto hasText = [](const char* text) { return Pointee(Field(&nRun::tEvent::text, text)); };
    ASSERT_EQ(history.lives.size(), 2U);
    EXPECT_THAT(history.lives[0][0].said, ElementsAre(hasText("a"), hasText("b")));
    EXPECT_THAT(history.lives[1][0].said, ElementsAre(hasText("c")));
    EXPECT_TRUE(history.running);
    EXPECT_EQ(history.end, nullptr);
}

TEST(nRunHistory, IgnoresPlugInsAndLivesThatDoNotExist) {
    tLifeEvents log(2);
    log.events.push_back({tKind::returned, 0, tPhase::stop});
    log.call(9, tPhase::initialize).said(9, tPhase::stop, "a").left(3, 0, "a").add(tKind::finished);
    const tHistory history = historyOf(1, log.events);
    EXPECT_FALSE(history.ready) << "it has other plug-ins";
    EXPECT_THAT(history.lives, IsEmpty());
    EXPECT_EQ(history.last, nullptr);
}

}  // namespace
