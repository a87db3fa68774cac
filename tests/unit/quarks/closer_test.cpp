#include "quarks/closer.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

std::vector<const void*> closed;

/// Returns a result, like the system's functions.
int closeNumber(int* number) {
    closed.push_back(number);
    return -1;
}

using tNumber = std::unique_ptr<int, tCloser<closeNumber>>;

TEST(tCloser, ClosesTheHandleOnceWhenItsOwnerIsDestroyed) {
    closed.clear();
    int number = 0;
    { const tNumber first(&number); }
    EXPECT_EQ(closed, std::vector<const void*>{&number});
}

TEST(tCloser, IsNotCalledForAnEmptyOwner) {
    closed.clear();
    { const tNumber none; }
    EXPECT_TRUE(closed.empty());
}

TEST(tCloser, AddsNothingToTheSizeOfAPointer) { EXPECT_EQ(sizeof(tNumber), sizeof(int*)); }

}  // namespace
