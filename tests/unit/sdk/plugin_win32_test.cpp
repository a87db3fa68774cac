#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <ziptra/plugin.hpp>

#include "tests/unit/sdk/systemCalls.h"

using testing::ElementsAre;

/// What the plug-ins did, in order.
static std::string trace;

/// What a plug-in does in its constructor and so on, if it is set.
struct tActions {
    std::function<void()> construct;
    std::function<void()> start;
    std::function<void()> stop;
    std::function<void()> destroy;
    std::int32_t result = 0;
};
static tActions actions;

static void act(const char* name, const std::function<void()>& action) {
    trace += name;
    if (action) action();
}

class Empty {};
ZIPTRA_PLUGIN(Empty)

class Simple {
public:
    Simple() { act("construct ", actions.construct); }
    Simple(const Simple&) = delete;
    Simple& operator=(const Simple&) = delete;
    ~Simple() noexcept(false) { act("destroy ", actions.destroy); }
    static void start() { act("start ", actions.start); }
    static void stop() { act("stop ", actions.stop); }
};
ZIPTRA_PLUGIN(Simple)

class WithResult final {
public:
    static constexpr std::int32_t unexpected = -7;
    WithResult() { act("construct ", actions.construct); }
    WithResult(const WithResult&) = delete;
    WithResult& operator=(const WithResult&) = delete;
    ~WithResult() { act("destroy ", {}); }
    [[nodiscard]] static std::int32_t start() {
        act("start ", actions.start);
        return actions.result;
    }
};
ZIPTRA_PLUGIN(WithResult)

namespace inside {
class InNamespace {
public:
    InNamespace() { trace += "construct "; }
};
ZIPTRA_PLUGIN(InNamespace)
}  // namespace inside

namespace {

class plugin : public testing::Test {
protected:
    plugin() {
        systemCalls::resetAll();
        trace.clear();
        actions = {};
    }
};

TEST_F(plugin, MayBeAClassWithoutAnyMember) {
    EXPECT_EQ(EmptyInitialize(), 0);
    EmptyStop();
    EmptyCleanup();
}

TEST_F(plugin, IsConstructedAndStartedInInitializeAndDestroyedInCleanup) {
    EXPECT_EQ(SimpleInitialize(), 0);
    EXPECT_EQ(trace, "construct start ");
    SimpleStop();
    EXPECT_EQ(trace, "construct start stop ");
    SimpleCleanup();
    EXPECT_EQ(trace, "construct start stop destroy ");
}

TEST_F(plugin, CanBeStartedAgainAfterCleanup) {
    for (int life = 0; life < 2; ++life) {
        EXPECT_EQ(SimpleInitialize(), 0);
        SimpleStop();
        SimpleCleanup();
    }
    EXPECT_EQ(trace, "construct start stop destroy construct start stop destroy ");
}

TEST_F(plugin, MayBeInANamespace) {
    EXPECT_EQ(inside::InNamespaceInitialize(), 0);
    EXPECT_EQ(trace, "construct ");
    inside::InNamespaceCleanup();
}

TEST_F(plugin, IsNeitherStoppedNorDestroyedWithoutInitialize) {
    SimpleStop();
    SimpleCleanup();
    EXPECT_EQ(trace, "");
}

TEST_F(plugin, ReturnsAWarningFromStart) {
    actions.result = 5;
    EXPECT_EQ(WithResultInitialize(), 5);
    WithResultCleanup();
    EXPECT_EQ(trace, "construct start destroy ");
}

TEST_F(plugin, IsDestroyedAtOnceIfStartReturnsAFailure) {
    actions.result = -5;
    EXPECT_EQ(WithResultInitialize(), -5);
    EXPECT_EQ(trace, "construct start destroy ");
    WithResultCleanup();
    EXPECT_EQ(trace, "construct start destroy ");
}

TEST_F(plugin, FailsWithTheCodeOfAFailureThrownByTheConstructor) {
    actions.construct = [] { throw ziptra::Failure(-17, "no network"); };
    EXPECT_EQ(SimpleInitialize(), -17);
    EXPECT_EQ(trace, "construct ");
}

TEST_F(plugin, FailsWithTheCodeOfAFailureThrownByStartAndIsDestroyed) {
    actions.start = [] { throw ziptra::Failure(-17, "no network"); };
    EXPECT_EQ(SimpleInitialize(), -17);
    EXPECT_EQ(trace, "construct start destroy ");
}

TEST_F(plugin, FailsWithMinus1ForAnyOtherException) {
    for (const std::function<void()>& thrower : std::initializer_list<std::function<void()>>{
             [] { throw 42; }, [] { throw std::runtime_error("x"); }, [] { throw std::bad_alloc(); },
             [] { throw ziptra::Failure("no code"); }, [] { throw ziptra::Failure(3, "no failure"); }}) {
        actions.construct = thrower;
        EXPECT_EQ(SimpleInitialize(), -1);
    }
}

TEST_F(plugin, FailsWithTheCodeThatItsClassChoosesForOtherExceptions) {
    actions.start = [] { throw 42; };
    EXPECT_EQ(WithResultInitialize(), -7);
    actions.start = [] { throw ziptra::Failure("no code"); };
    EXPECT_EQ(WithResultInitialize(), -7);
    actions.start = [] { throw ziptra::Failure(-17, "no network"); };
    EXPECT_EQ(WithResultInitialize(), -17);
}

TEST_F(plugin, SendsTheTextOfAnExceptionToTheDebugger) {
    actions.start = [] { throw ziptra::Failure(-17, "no network"); };
    SimpleInitialize();
    actions.start = [] { throw std::runtime_error("no file"); };
    SimpleInitialize();
    actions.start = [] { throw 42; };
    SimpleInitialize();
    EXPECT_THAT(systemCalls::debuggerTexts(), ElementsAre("no network", "no file", "exception of unknown type"));
}

TEST_F(plugin, DropsWhatLeavesStopAndTheDestructor) {
    actions.stop = [] { throw 42; };
    actions.destroy = [] { throw std::runtime_error("x"); };
    EXPECT_EQ(SimpleInitialize(), 0);
    SimpleStop();
    SimpleCleanup();
    SimpleCleanup();
    EXPECT_EQ(trace, "construct start stop destroy ");
}

TEST_F(plugin, DropsWhatLeavesTheDestructorAfterAFailedStart) {
    actions.start = [] { throw ziptra::Failure(-17, "no network"); };
    actions.destroy = [] { throw 42; };
    EXPECT_EQ(SimpleInitialize(), -17);
}

TEST_F(plugin, WithoutAWorkerCreatesNeitherThreadNorEvent) {
    systemCalls::refuseThreads = systemCalls::refuseEvents = true;
    EXPECT_EQ(SimpleInitialize(), 0);
    SimpleStop();
    SimpleCleanup();
}

TEST(Failure, HasItsCodeAndText) {
    const ziptra::Failure failure(-17, "no network");
    EXPECT_EQ(failure.code(), -17);
    EXPECT_STREQ(failure.what(), "no network");
    EXPECT_EQ(ziptra::Failure("no network").code(), 0);
}

}  // namespace
