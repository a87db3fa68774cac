#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>
#include <ziptra/plugin.hpp>

#include "tests/unit/sdk/systemCalls.h"

using testing::ElementsAre;
using ziptra::Failure;
using ziptra::StopRequest;
using ziptra::Worker;

/// What a plug-in does, if it is set.
static std::function<void()> inConstructor;
static std::function<void()> inStop;
static std::function<void()> inDestructor;

class Working {
public:
    Working() { act(inConstructor); }
    Working(const Working&) = delete;
    Working& operator=(const Working&) = delete;
    ~Working() { act(inDestructor); }
    static void stop() { act(inStop); }

private:
    static void act(const std::function<void()>& action) {
        if (action) action();
    }
};
ZIPTRA_PLUGIN(Working)

namespace {

constexpr std::chrono::hours forever{24 * 365};

void waitForStop(const StopRequest& stop) { (void)stop.wait(forever); }

class worker : public testing::Test {
protected:
    void SetUp() override {
        systemCalls::resetAll();
        inConstructor = inStop = inDestructor = nullptr;
    }
    void TearDown() override { EXPECT_EQ(systemCalls::openHandles(), 0); }
};

TEST_F(worker, RunsItsFunctionOnAThreadOfItsOwn) {
    std::promise<DWORD> thread;
    Worker own;
    own.start([&](const StopRequest&) { thread.set_value(GetCurrentThreadId()); });
    EXPECT_NE(thread.get_future().get(), GetCurrentThreadId());
}

TEST_F(worker, OwnsAFunctionThatCanOnlyBeMoved) {
    std::promise<int> answer;
    Worker own;
    own.start([&answer, value = std::make_unique<int>(42)](const StopRequest&) { answer.set_value(*value); });
    EXPECT_EQ(answer.get_future().get(), 42);
}

TEST_F(worker, AcceptsAPlainFunction) {
    Worker own;
    own.start(waitForStop);
}

TEST_F(worker, IsAskedToStopAndWaitedForByItsDestructor) {
    std::atomic<bool> ended = false;
    {
        Worker own;
        own.start([&](const StopRequest& stop) { ended = stop.wait(forever); });
    }
    EXPECT_TRUE(ended);
}

TEST_F(worker, NeedNotBeStarted) {
    const Worker never;
    EXPECT_EQ(WorkingInitialize(), 0);
    WorkingStop();
    WorkingCleanup();
}

TEST_F(worker, IsNotAskedToStopBeforeStop) {
    std::promise<bool> requested;
    std::promise<void> seen;
    Worker own;
    EXPECT_EQ(WorkingInitialize(), 0);
    own.start([&](const StopRequest& stop) {
        requested.set_value(stop.requested() || stop.wait(std::chrono::milliseconds(0)));
        (void)stop.wait(forever);
        seen.set_value();
    });
    EXPECT_FALSE(requested.get_future().get());
    WorkingStop();
    seen.get_future().get();  // before Cleanup
    WorkingCleanup();
}

TEST_F(worker, HasBeenAskedWhenTheStopOfTheClassIsCalled) {
    std::promise<bool> asked;
    Worker own;
    inConstructor = [&] { own.start([&](const StopRequest& stop) { asked.set_value(stop.wait(forever)); }); };
    inStop = [&] { EXPECT_TRUE(asked.get_future().get()); };
    EXPECT_EQ(WorkingInitialize(), 0);
    WorkingStop();
    WorkingCleanup();
}

TEST_F(worker, HasEndedWhenTheObjectIsDestroyed) {
    std::atomic<bool> ended = false;
    Worker own;
    inConstructor = [&] {
        own.start([&](const StopRequest& stop) {
            (void)stop.wait(forever);
            Sleep(20);
            ended = true;
        });
    };
    inDestructor = [&] { EXPECT_TRUE(ended); };
    EXPECT_EQ(WorkingInitialize(), 0);
    WorkingStop();
    WorkingCleanup();
    EXPECT_TRUE(ended);
}

TEST_F(worker, IsWaitedForInCleanupEvenIfItIsNeverDestroyed) {
    std::atomic<bool> ended = false;
    std::unique_ptr<Worker> forgotten = std::make_unique<Worker>();
    EXPECT_EQ(WorkingInitialize(), 0);
    forgotten->start([&](const StopRequest& stop) { ended = stop.wait(forever); });
    WorkingStop();
    WorkingCleanup();
    EXPECT_TRUE(ended);
}

TEST_F(worker, IsAskedInCleanupIfThereWasNoStop) {
    Worker own;
    EXPECT_EQ(WorkingInitialize(), 0);
    own.start(waitForStop);
    WorkingCleanup();
}

TEST_F(worker, HasEndedWhenInitializeFails) {
    std::atomic<bool> ended = false;
    Worker own;
    inConstructor = [&] {
        own.start([&](const StopRequest& stop) { ended = stop.wait(forever); });
        throw Failure(-5, "afterwards");
    };
    EXPECT_EQ(WorkingInitialize(), -5);
    EXPECT_TRUE(ended);
}

TEST_F(worker, IsWaitedForIfTheDestructorOfTheClassStartsIt) {
    std::atomic<bool> ended = false;
    Worker own;
    inDestructor = [&] { own.start([&](const StopRequest& stop) { ended = stop.wait(forever); }); };
    EXPECT_EQ(WorkingInitialize(), 0);
    WorkingStop();
    WorkingCleanup();
    EXPECT_TRUE(ended);
}

TEST_F(worker, IsAskedToStopFromTheBeginningAfterStop) {
    std::promise<bool> requested;
    Worker own;
    Worker starter;
    EXPECT_EQ(WorkingInitialize(), 0);
    starter.start([&](const StopRequest& stop) {
        (void)stop.wait(forever);
        own.start([&](const StopRequest& late) { requested.set_value(late.wait(forever)); });
    });
    WorkingStop();
    WorkingCleanup();
    EXPECT_TRUE(requested.get_future().get());
}

TEST_F(worker, CanBeUsedInTheNextLife) {
    for (int life = 0; life < 3; ++life) {
        Worker own;
        std::promise<bool> requested;
        EXPECT_EQ(WorkingInitialize(), 0);
        own.start([&](const StopRequest& stop) {
            requested.set_value(stop.requested());
            (void)stop.wait(forever);
        });
        EXPECT_FALSE(requested.get_future().get()) << life;
        WorkingStop();
        WorkingCleanup();
    }
}

TEST_F(worker, CanBeDestroyedByAnotherWhileCleanupWaits) {
    constexpr int count = 20;
    std::vector<std::unique_ptr<Worker>> workers;
    std::atomic<int> ended = 0;
    EXPECT_EQ(WorkingInitialize(), 0);
    for (int i = 0; i < count; ++i) {
        workers.push_back(std::make_unique<Worker>());
        workers.back()->start([&](const StopRequest& stop) {
            Worker inner;
            inner.start([&](const StopRequest& innerStop) {
                (void)innerStop.wait(forever);
                ++ended;
            });
            (void)stop.wait(forever);
        });
    }
    WorkingStop();
    WorkingCleanup();
    EXPECT_EQ(ended, count);
}

TEST_F(worker, EndsQuietlyIfItsFunctionThrows) {
    for (const std::function<void()>& thrower :
         std::initializer_list<std::function<void()>>{[] { throw 42; }, [] { throw std::runtime_error("no file"); }}) {
        Worker own;
        EXPECT_EQ(WorkingInitialize(), 0);
        own.start([&](const StopRequest&) { thrower(); });
        WorkingStop();
        WorkingCleanup();
    }
    EXPECT_THAT(systemCalls::debuggerTexts(), ElementsAre("exception of unknown type", "no file"));
}

TEST_F(worker, CanBeStartedOnlyOnce) {
    Worker own;
    own.start(waitForStop);
    EXPECT_THROW(own.start(waitForStop), Failure);
}

TEST_F(worker, ThrowsAFailureIfWindowsRefusesTheThread) {
    systemCalls::refuseThreads = true;
    Worker own;
    EXPECT_THROW(own.start(waitForStop), Failure);
    inConstructor = [&] { own.start(waitForStop); };
    EXPECT_EQ(WorkingInitialize(), -1);
    systemCalls::refuseThreads = false;
    own.start(waitForStop);  // the refused attempt does not count
}

TEST_F(worker, ThrowsAFailureIfWindowsRefusesTheEvent) {
    systemCalls::refuseEvents = true;
    Worker own;
    EXPECT_THROW(own.start(waitForStop), Failure);
}

class stopRequest : public testing::Test {
protected:
    stopRequest() { systemCalls::resetAll(); }
};

TEST_F(stopRequest, LimitsTheTimeToWhatWindowsAccepts) {
    const HANDLE event = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    const StopRequest stop(event);
    const auto waited = [&](auto time) {
        EXPECT_TRUE(stop.wait(time));
        return systemCalls::lastWaitMs();
    };
    EXPECT_EQ(waited(std::chrono::seconds(2)), 2000U);
    EXPECT_EQ(waited(std::chrono::milliseconds(-1)), 0U);
    EXPECT_EQ(waited(std::chrono::milliseconds(0xFFFFFFFE)), 0xFFFFFFFE);
    EXPECT_EQ(waited(std::chrono::milliseconds::max()), INFINITE);
    EXPECT_EQ(waited(std::chrono::hours::max()), INFINITE);
    EXPECT_EQ(waited(std::chrono::hours::min()), 0U);
    EXPECT_EQ(waited(std::chrono::microseconds(1)), 1U) << "a wait of 0 ms in a loop would keep a processor busy";
    CloseHandle(event);
}

TEST_F(stopRequest, IsAnEventThatCanBeWaitedForTogetherWithOthers) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const StopRequest stop(event);
    EXPECT_EQ(stop.event(), event);
    EXPECT_FALSE(stop.requested());
    SetEvent(event);
    EXPECT_TRUE(stop.requested());
    CloseHandle(event);
}

}  // namespace
