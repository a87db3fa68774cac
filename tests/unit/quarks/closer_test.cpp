#include "quarks/closer.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

std::vector<const void*> closed;

/// Has a result, as the system's functions have.
int closeNumber(int* number) {
    closed.push_back(number);
    return -1;
}

using tNumber = std::unique_ptr<int, tCloser<closeNumber>>;

TEST(TCloser, ClosesTheHandleOnceWhenItsOwnerIsDestroyed) {
    closed.clear();
    int number = 0;
    { const tNumber first(&number); }
    EXPECT_EQ(closed, std::vector<const void*>{&number});
}

TEST(TCloser, IsNotCalledForAnOwnerOfNothing) {
    closed.clear();
    { const tNumber none; }
    EXPECT_TRUE(closed.empty());
}

TEST(TCloser, AddsNothingToTheSizeOfAPointer) { EXPECT_EQ(sizeof(tNumber), sizeof(int*)); }

}  // namespace
