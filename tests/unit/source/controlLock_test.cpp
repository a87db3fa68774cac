// The lock between the control handler and the service main, as a model small enough to try every interleaving.
//
// Each step is one access to what the threads share, so no order that the machine could produce is missing: all
// accesses of the product's lock are full-barrier atomics. Every request has a thread of its own here, although the
// dispatcher has but one: what holds for more threads holds for fewer.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <iostream>
#include <string>

namespace {

/// What is left out of the protocol, to see that its absence is noticed.
enum class tBreak {
    none,
    handlerIgnoresTheLock,
    handlerReleasesBeforeItSignals,
    handlerNeverReleases,
    serviceMainTakesNoLock,
    serviceMainGivesTheLockBack,
};

/// Whether the run waits for a stop, or may also return by itself (there is no plug-in directory).
enum class tRun { waits, mayGiveUp };

struct tMachine {
    bool locked = false;
    bool stopEvent = false;
    bool objectLives = true;
    bool checkpoint2 = false;
    int atMain = 0;
    std::array<int, 3> atHandler{};
};

class tModel {
public:
    tModel(int requests, tRun run, tBreak broken) : requests_(requests), run_(run), broken_(broken) {}

    /// Tries every order in which the steps can be taken.
    void explore() { explore(tMachine{}); }

    std::uint64_t interleavings = 0;
    std::uint64_t faulty = 0;
    std::string fault;  ///< the first one

private:
    static constexpr int over = 4;

    void explore(const tMachine& machine) {
        bool stuck = true;
        if (mainCanStep(machine)) {
            stuck = false;
            tMachine next = machine;
            follow(next, stepMain(next));
        }
        for (int request = 0; request < requests_; ++request) {
            if (machine.atHandler.at(static_cast<std::size_t>(request)) == over) continue;
            stuck = false;
            tMachine next = machine;
            follow(next, stepHandler(next, next.atHandler.at(static_cast<std::size_t>(request))));
        }
        if (stuck) finish(machine.atMain == over ? nullptr : "a stop was lost");
    }

    /// The broken order ends at its first fault.
    void follow(const tMachine& next, const char* wrong) {
        if (wrong == nullptr) {
            explore(next);
        } else {
            finish(wrong);
        }
    }

    void finish(const char* wrong) {
        ++interleavings;
        if (wrong == nullptr) return;
        ++faulty;
        if (fault.empty()) fault = wrong;
    }

    /// A spin that finds the lock taken changes nothing, so it is no step.
    [[nodiscard]] bool mainCanStep(const tMachine& machine) const {
        if (machine.atMain == 0) return run_ == tRun::mayGiveUp || machine.stopEvent;
        if (machine.atMain == 1) return broken_ == tBreak::serviceMainTakesNoLock || !machine.locked;
        return machine.atMain != over;
    }

    const char* stepMain(tMachine& machine) const {
        switch (machine.atMain++) {
            case 0:  // the run returns
                break;
            case 1:
                if (broken_ != tBreak::serviceMainTakesNoLock) machine.locked = true;
                break;
            case 2:
                machine.checkpoint2 = true;
                if (broken_ == tBreak::serviceMainGivesTheLockBack) machine.locked = false;
                break;
            default: machine.objectLives = false;
        }
        return nullptr;
    }

    const char* stepHandler(tMachine& machine, int& at) const {
        switch (at++) {
            case 0:
                if (machine.locked && broken_ != tBreak::handlerIgnoresTheLock) at = over;
                machine.locked = true;
                break;
            case 1:
                if (machine.checkpoint2) return "checkpoint 1 was reported after checkpoint 2";
                break;
            case 2:
                if (broken_ != tBreak::handlerReleasesBeforeItSignals) return signal(machine);
                machine.locked = false;
                break;
            default:
                if (broken_ == tBreak::handlerReleasesBeforeItSignals) return signal(machine);
                if (broken_ != tBreak::handlerNeverReleases) machine.locked = false;
        }
        return nullptr;
    }

    static const char* signal(tMachine& machine) {
        machine.stopEvent = true;
        return machine.objectLives ? nullptr : "the service was used after its end";
    }

    int requests_;
    tRun run_;
    tBreak broken_;
};

tModel explored(int requests, tRun run, tBreak broken) {
    tModel model(requests, run, broken);
    model.explore();
    return model;
}

const char* name(tRun run) { return run == tRun::waits ? "a run that waits" : "a run that may give up"; }

TEST(ControlLock, HoldsInEveryInterleavingOfUpToThreeRequestsWithTheServiceMain) {
    for (const tRun run : {tRun::waits, tRun::mayGiveUp}) {
        for (int requests = 1; requests <= 3; ++requests) {
            const tModel model = explored(requests, run, tBreak::none);
            EXPECT_EQ(model.faulty, 0u) << model.fault << ": " << name(run) << ", requests: " << requests;
            EXPECT_GT(model.interleavings, 0u);
            std::cout << "FIGURE interleavings of the control lock, " << requests << " requests, " << name(run) << ": "
                      << model.interleavings << '\n';
        }
    }
}

/// The first fault that one or two requests meet.
std::string faultOf(tBreak broken) {
    for (const tRun run : {tRun::waits, tRun::mayGiveUp}) {
        for (int requests = 1; requests <= 2; ++requests) {
            const tModel model = explored(requests, run, broken);
            if (model.faulty == 0) continue;
            std::cout << "FIGURE interleavings of a broken control lock in which " << model.fault << ", of "
                      << model.interleavings << ": " << model.faulty << '\n';
            return model.fault;
        }
    }
    return "none";
}

// One request, counted by hand. Waiting: the run returns before or after the release. Giving up: the service main takes
// the lock first, and the request is dropped at one of 3 moments; or the handler does, and the run returns at one of 5.
TEST(ControlLock, TheModelTriesAsManyInterleavingsAsThereAre) {
    EXPECT_EQ(explored(1, tRun::waits, tBreak::none).interleavings, 2u);
    EXPECT_EQ(explored(1, tRun::mayGiveUp, tBreak::none).interleavings, 8u);
}

TEST(ControlLock, ARequestThatIgnoresItIsNoticed) {
    EXPECT_EQ(faultOf(tBreak::handlerIgnoresTheLock), "checkpoint 1 was reported after checkpoint 2");
}

TEST(ControlLock, AReleaseBeforeTheSignalIsNoticed) {
    EXPECT_EQ(faultOf(tBreak::handlerReleasesBeforeItSignals), "the service was used after its end");
}

TEST(ControlLock, AMissingReleaseIsNoticed) { EXPECT_EQ(faultOf(tBreak::handlerNeverReleases), "a stop was lost"); }

TEST(ControlLock, AServiceMainThatTakesNoLockIsNoticed) {
    EXPECT_EQ(faultOf(tBreak::serviceMainTakesNoLock), "checkpoint 1 was reported after checkpoint 2");
}

TEST(ControlLock, AServiceMainThatGivesTheLockBackIsNoticed) {
    EXPECT_EQ(faultOf(tBreak::serviceMainGivesTheLockBack), "checkpoint 1 was reported after checkpoint 2");
}

}  // namespace
