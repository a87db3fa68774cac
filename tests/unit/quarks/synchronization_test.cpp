#include "quarks/synchronization.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(tEvent, OnceSetBlocksNoLaterWaitHoweverOftenItIsSet) {
    tEvent event;
    event.set();
    for (int i = 0; i < 3; ++i) event.wait();
    event.set();
    event.wait();
}

TEST(tEvent, BlocksTheWaiterUntilAnotherThreadSetsIt) {
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

TEST(tEvent, ReleasesAllWaitingThreads) {
    tEvent event;
    std::thread first([&] { event.wait(); });
    std::thread second([&] { event.wait(); });
    event.set();
    first.join();
    second.join();
}

TEST(tEvent, IsIndependentOfOtherEvents) {
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
