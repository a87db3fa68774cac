#include "err/Allocator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "tests/support/allocations.h"

namespace {

using testing::StrEq;
using zuerr::Reallocate;
using zuerr::StatusRecord;
using zuerr::WideBuffer;

constexpr const char* outOfMemoryReport =
    R"({"error_constant":"-52000","file":"zubrx/err/Allocator","line":31,"component":"zuZiptraRemoteService"})";

/// Returns a block with the text "abc".
char* newBlock() {
    StatusRecord status;
    return std::strcpy(static_cast<char*>(Reallocate(nullptr, 4, status)), "abc");
}

std::u16string content(const WideBuffer& buffer) { return {buffer.begin(), buffer.end()}; }

TEST(AllocatorReallocate, AllocatesGrowsAndFreesABlock) {
    StatusRecord status;
    char* const block = static_cast<char*>(Reallocate(newBlock(), 100'000, status));
    EXPECT_THAT(block, StrEq("abc"));
    EXPECT_EQ(Reallocate(block, 0, status), nullptr);
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(status.json, nullptr);
}

TEST(AllocatorReallocate, RaisesMinus52000AndKeepsTheBlockWhenMemoryRunsOut) {
    for (const std::int32_t warning : {0, 7}) {
        StatusRecord status;
        status.code = warning;
        char* const block = newBlock();
        void* grown = block;
        allocations::refused(100'000, [&] { grown = Reallocate(block, 100'000, status); });
        EXPECT_EQ(grown, nullptr);
        EXPECT_EQ(status.code, -52000);
        EXPECT_THAT(status.json, StrEq(outOfMemoryReport));
        EXPECT_THAT(block, StrEq("abc"));
        std::free(block);
    }
}

TEST(AllocatorReallocate, KeepsTheCodeWhenThereIsNoMemoryForTheReportEither) {
    StatusRecord status;
    // The second request is the report's.
    EXPECT_EQ(allocations::refused(0, [&] { Reallocate(nullptr, 4, status); }), 2);
    EXPECT_EQ(status.code, -52000);
    EXPECT_EQ(status.json, nullptr);
}

TEST(AllocatorReallocate, DoesNothingIfTheRecordContainsAnError) {
    StatusRecord status;
    status.code = -1;
    char* const block = newBlock();
    EXPECT_EQ(Reallocate(block, 8, status), nullptr);
    EXPECT_EQ(Reallocate(block, 0, status), nullptr);
    EXPECT_THAT(block, StrEq("abc"));
    EXPECT_EQ(status.code, -1);
    std::free(block);
}

TEST(WideBuffer, StartsEmptyAndBecomesEmptyAgain) {
    StatusRecord status;
    WideBuffer buffer;
    for (const std::size_t size : {0U, 3U}) {
        ASSERT_TRUE(buffer.resize(size, status));
        ASSERT_TRUE(buffer.resize(0, status));
        EXPECT_EQ(buffer.size(), 0U);
        EXPECT_EQ(buffer.data(), nullptr);
        EXPECT_EQ(buffer.begin(), buffer.end());
    }
}

TEST(WideBuffer, KeepsItsContentWhenItGrowsAndFillsNewUnitsWithZero) {
    StatusRecord status;
    WideBuffer buffer;
    ASSERT_TRUE(buffer.resize(2, status));
    EXPECT_EQ(content(buffer), std::u16string(2, 0));
    buffer.data()[0] = u'\xABCD';
    buffer.data()[1] = u'\xFFFF';
    ASSERT_TRUE(buffer.resize(4, status));
    EXPECT_EQ(content(buffer), (std::u16string{u'\xABCD', u'\xFFFF', 0, 0}));
    ASSERT_TRUE(buffer.resize(1, status));
    EXPECT_EQ(content(buffer), u"\xABCD");
    ASSERT_TRUE(buffer.resize(3, status));
    EXPECT_EQ(content(buffer), (std::u16string{u'\xABCD', 0, 0}));
    EXPECT_EQ(buffer.size(), 3U);
    EXPECT_EQ(status.code, 0);
}

TEST(WideBuffer, KeepsItsContentWhenMemoryRunsOut) {
    StatusRecord status;
    WideBuffer buffer;
    ASSERT_TRUE(buffer.resize(2, status));
    buffer.data()[0] = u'a';
    bool resized = true;
    allocations::refused(100'000, [&] { resized = buffer.resize(100'000, status); });
    EXPECT_FALSE(resized);
    EXPECT_EQ(content(buffer), (std::u16string{u'a', 0}));
    EXPECT_THAT(status.json, StrEq(outOfMemoryReport));
}

TEST(WideBuffer, RejectsACountWhoseByteSizeOverflows) {
    StatusRecord status;
    WideBuffer buffer;
    // In bytes this wraps around to 2. (The request is refused here already, because a sanitizer would end the
    // program.)
    EXPECT_EQ(allocations::refused(1'000'000, [&] { buffer.resize(SIZE_MAX / 2 + 2, status); }), 1);
    EXPECT_EQ(status.code, -52000);
    EXPECT_EQ(buffer.size(), 0U);
}

TEST(WideBuffer, IsNotResizedForARecordThatContainsAnError) {
    StatusRecord status;
    WideBuffer buffer;
    ASSERT_TRUE(buffer.resize(2, status));
    status.code = -1;
    EXPECT_FALSE(buffer.resize(5, status));
    EXPECT_FALSE(buffer.resize(0, status));
    EXPECT_EQ(content(buffer), std::u16string(2, 0));
}

}  // namespace
