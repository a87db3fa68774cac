#include "err/Allocator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tests/support/allocations.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::StrEq;
using zuerr::Buffer;
using zuerr::Reallocate;
using zuerr::StatusRecord;

constexpr const char* outOfMemoryReport =
    R"({"error_constant":"-52000","file":"zubrx/err/Allocator","line":31,"component":"zuZiptraRemoteService"})";

template <class T>
std::vector<T> elements(const Buffer<T>& buffer) {
    return {buffer.begin(), buffer.end()};
}

TEST(Reallocate, GrowsFromNothingKeepsTheContentAndReleases) {
    StatusRecord status;
    char* block = static_cast<char*>(Reallocate(nullptr, 4, status));
    ASSERT_NE(block, nullptr);
    std::memcpy(block, "abc", 4);
    block = static_cast<char*>(Reallocate(block, 100'000, status));
    EXPECT_THAT(block, StrEq("abc"));
    EXPECT_EQ(Reallocate(block, 0, status), nullptr);
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(status.json, nullptr);
}

TEST(Reallocate, ReportsMinus52000AtItsLine31AndKeepsTheBlockWhenMemoryRunsOut) {
    StatusRecord status;
    char* const block = static_cast<char*>(Reallocate(nullptr, 4, status));
    std::memcpy(block, "abc", 4);
    void* grown = block;
    allocations::refused(100'000, [&] { grown = Reallocate(block, 100'000, status); });
    EXPECT_EQ(grown, nullptr);
    EXPECT_EQ(status.code, -52000);
    EXPECT_THAT(status.json, StrEq(outOfMemoryReport));
    EXPECT_THAT(block, StrEq("abc"));
    std::free(block);
}

TEST(Reallocate, KeepsTheCodeWhenThereIsNoMemoryForTheReportEither) {
    StatusRecord status;
    // The second request is the report's.
    EXPECT_EQ(allocations::refused(0, [&] { Reallocate(nullptr, 4, status); }), 2);
    EXPECT_EQ(status.code, -52000);
    EXPECT_EQ(status.json, nullptr);
}

TEST(Reallocate, DoesNothingWhenTheRecordHoldsAnError) {
    StatusRecord status;
    char* const block = static_cast<char*>(Reallocate(nullptr, 4, status));
    std::memcpy(block, "abc", 4);
    status.code = -1;
    EXPECT_EQ(Reallocate(block, 8, status), nullptr);
    EXPECT_EQ(Reallocate(block, 0, status), nullptr);
    EXPECT_THAT(block, StrEq("abc"));
    EXPECT_EQ(status.code, -1);
    std::free(block);
}

TEST(Reallocate, ReplacesAWarningByItsError) {
    StatusRecord status;
    status.code = 7;
    allocations::refused(100'000, [&] { Reallocate(nullptr, 100'000, status); });
    EXPECT_EQ(status.code, -52000);
}

TEST(Buffer, StartsEmpty) {
    Buffer<int> buffer;
    EXPECT_EQ(buffer.size(), 0U);
    EXPECT_EQ(buffer.data(), nullptr);
    EXPECT_EQ(buffer.begin(), buffer.end());
}

TEST(Buffer, GrowsWithZerosAndKeepsWhatItHeld) {
    StatusRecord status;
    Buffer<std::uint16_t> buffer;
    ASSERT_TRUE(buffer.resize(2, status));
    EXPECT_THAT(elements(buffer), ElementsAre(0, 0));
    buffer.data()[0] = 0xABCD;
    buffer.data()[1] = 0xFFFF;
    ASSERT_TRUE(buffer.resize(4, status));
    EXPECT_THAT(elements(buffer), ElementsAre(0xABCD, 0xFFFF, 0, 0));
    EXPECT_EQ(buffer.size(), 4U);
    EXPECT_EQ(status.code, 0);
}

TEST(Buffer, ShrinksAndZeroesWhatComesBack) {
    StatusRecord status;
    Buffer<int> buffer;
    ASSERT_TRUE(buffer.resize(3, status));
    for (int i = 0; i < 3; ++i) buffer.data()[i] = i + 1;
    ASSERT_TRUE(buffer.resize(1, status));
    EXPECT_THAT(elements(buffer), ElementsAre(1));
    ASSERT_TRUE(buffer.resize(3, status));
    EXPECT_THAT(elements(buffer), ElementsAre(1, 0, 0));
    ASSERT_TRUE(buffer.resize(0, status));
    EXPECT_EQ(buffer.data(), nullptr);
    ASSERT_TRUE(buffer.resize(1, status));
    EXPECT_THAT(elements(buffer), ElementsAre(0));
}

TEST(Buffer, KeepsItsContentWhenMemoryRunsOut) {
    StatusRecord status;
    Buffer<int> buffer;
    ASSERT_TRUE(buffer.resize(2, status));
    buffer.data()[0] = 1;
    bool resized = true;
    allocations::refused(100'000 * sizeof(int), [&] { resized = buffer.resize(100'000, status); });
    EXPECT_FALSE(resized);
    EXPECT_THAT(elements(buffer), ElementsAre(1, 0));
    EXPECT_THAT(status.json, StrEq(outOfMemoryReport));
}

TEST(Buffer, RefusesACountWhoseBytesDoNotFitIntoANumber) {
    StatusRecord status;
    Buffer<std::uint32_t> buffer;
    // In bytes this wraps around to 4. (Refused here already, as a sanitizer ends the program at such a request.)
    EXPECT_EQ(allocations::refused(1'000'000, [&] { buffer.resize(SIZE_MAX / 4 + 2, status); }), 1);
    EXPECT_EQ(status.code, -52000);
    EXPECT_EQ(buffer.size(), 0U);
}

TEST(Buffer, DoesNotResizeForARecordThatHoldsAnError) {
    StatusRecord status;
    Buffer<int> buffer;
    ASSERT_TRUE(buffer.resize(2, status));
    status.code = -1;
    EXPECT_FALSE(buffer.resize(5, status));
    EXPECT_FALSE(buffer.resize(0, status));
    EXPECT_EQ(buffer.size(), 2U);
    EXPECT_THAT(elements(buffer), Each(0));
}

}  // namespace
