#include "quarks/synchronization.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(Event, SetBeforeTheWaitMakesTheWaitReturnAtOnce) {
    tEvent event;
    event.set();
    event.wait();
}

TEST(Event, OnceSetLetsEveryLaterWaitThrough) {
    tEvent event;
    event.set();
    for (int i = 0; i < 3; ++i) event.wait();
}

TEST(Event, MayBeSetAgainAndAgain) {
    tEvent event;
    event.set();
    event.set();
    event.wait();
}

TEST(Event, HoldsTheWaiterUntilAnotherThreadSetsIt) {
    tEvent event;
    std::atomic<bool> set = false;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        set = true;
        event.set();
    });
    event.wait();
    EXPECT_TRUE(set);
    other.join();
}

TEST(Event, LetsAllWaitingThreadsThrough) {
    tEvent event;
    std::thread first([&] { event.wait(); });
    std::thread second([&] { event.wait(); });
    event.set();
    first.join();
    second.join();
}

TEST(Event, IsOfItsOwnSoThatSettingOneLeavesAnotherUnset) {
    tEvent one;
    tEvent other;
    one.set();
    std::atomic<bool> set = false;
    std::thread setter([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        set = true;
        other.set();
    });
    other.wait();
    EXPECT_TRUE(set);
    setter.join();
}

}  // namespace
