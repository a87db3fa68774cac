// The record's code and buffer. For its report see StatusRecordReport_test.cpp.
#include "err/StatusRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/support/allocations.h"
#include "tests/support/statusRecord.h"

namespace {

using report::wellLaidOut;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::StrEq;
using zuerr::Clear;
using zuerr::Copy;
using zuerr::RaiseInto;
using zuerr::SetCode;
using zuerr::StatusRecord;

static_assert(std::is_nothrow_invocable_v<StatusRecord::ReallocJson, StatusRecord&, std::uint32_t>);

constexpr zuerr::RaiseReport anyReport{"constant", {".\\source\\tService", 217}, nullptr};

class StatusRecordTest : public tStatusRecordTest {
protected:
    /// Returns a buffer of this size, too small for an empty report.
    static void giveBuffer(StatusRecord& record, std::uint32_t capacity) {
        record.json = static_cast<char*>(std::calloc(capacity, 1));
        record.json[capacity - 1] = zuerr::jsonSentinel;
        record.capacity = capacity;
    }
};

TEST_F(StatusRecordTest, IsInitiallySuccessWithoutAReport) {
    const StatusRecord record;
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.capacity, 0U);
    EXPECT_EQ(record.json, nullptr);
    EXPECT_EQ(record.reallocJson, &StatusRecord::reallocJsonDefault);
}

TEST_F(StatusRecordTest, HasFailedOnlyWithANegativeCode) {
    for (const std::int32_t code : {-1, 0, 1}) {
        StatusRecord record;
        record.code = code;
        EXPECT_EQ(record.failed(), code < 0);
    }
}

TEST_F(StatusRecordTest, ContainsSuccessAndNoBufferOnceCleared) {
    StatusRecord record;
    RaiseInto(record, -52008, anyReport);
    Clear(record);
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.capacity, 0U);
    EXPECT_EQ(record.json, nullptr);
}

TEST_F(StatusRecordTest, FreesItsBufferThroughItsManagerWhenClearedAndWhenDestroyed) {
    {
        StatusRecord record;
        record.reallocJson = remember;
        Clear(record);
        EXPECT_THAT(requests, ElementsAre(0));
    }
    EXPECT_THAT(requests, ElementsAre(0, 0));
}

// SetCode

TEST_F(StatusRecordTest, StoresACodeThatOutranksTheCurrentOne) {
    // The current code, the new one, and whether it is stored.
    const std::tuple<std::int32_t, std::int32_t, bool> rows[] = {
        {0, 0, false},  {0, 1, true},   {0, -1, true},  {5, 0, false},     {5, 6, false},          {1, -1, true},
        {-1, 0, false}, {-1, 1, false}, {-1, 5, false}, {5, -52005, true}, {-52008, -52026, false}};
    for (const auto& [present, code, taken] : rows) {
        StatusRecord record;
        record.code = present;
        EXPECT_EQ(SetCode(record, code), taken) << present << ", " << code;
        EXPECT_EQ(record.code, taken ? code : present);
        EXPECT_EQ(record.json, nullptr);
    }
}

TEST_F(StatusRecordTest, ResetsItsReportIfTheCodeIsStored) {
    StatusRecord record;
    RaiseInto(record, 5, anyReport);
    EXPECT_TRUE(SetCode(record, -52005));
    EXPECT_THAT(record.json, StrEq("{}"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordTest, KeepsItsReportIfTheCodeIsNotStored) {
    StatusRecord record;
    RaiseInto(record, -52008, anyReport);
    const std::string before = record.json;
    EXPECT_FALSE(SetCode(record, -52005));
    EXPECT_EQ(record.json, before);
}

TEST_F(StatusRecordTest, RequestsThreeBytesIfItsBufferIsTooSmallForAnEmptyReport) {
    StatusRecord record;
    record.reallocJson = remember;
    giveBuffer(record, 2);
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_THAT(requests, ElementsAre(3));
    EXPECT_THAT(record.json, StrEq("{}"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordTest, NeedsOnlyThreeBytesForAnEmptyReport) {
    for (const std::uint32_t capacity : {2U, 3U}) {
        StatusRecord record;
        record.reallocJson = exact;
        giveBuffer(record, capacity);
        EXPECT_TRUE(SetCode(record, -1));
        EXPECT_EQ(record.capacity, 3U);
        EXPECT_THAT(record.json, StrEq("{}"));
    }
    StatusRecord large;
    large.reallocJson = remember;
    giveBuffer(large, 3);
    EXPECT_TRUE(SetCode(large, -1));
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(StatusRecordTest, KeepsItsOldTextIfThreeBytesAreRefused) {
    StatusRecord record;
    record.reallocJson = refuse;
    giveBuffer(record, 2);
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(""));
}

// The default buffer manager

TEST_F(StatusRecordTest, GrowsByDefaultTo512BytesOrTheNextPowerOfTwo) {
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {{1, 512},     {4, 512},         {512, 512},
                                                             {513, 1024},  {1022, 1024},     {1024, 1024},
                                                             {1025, 2048}, {65'536, 65'536}, {65'537, 131'072}};
    for (const auto& [request, capacity] : sizes) {
        StatusRecord record;
        EXPECT_TRUE(record.reallocJson(record, request));
        EXPECT_EQ(record.capacity, capacity);
        EXPECT_THAT(record.json, StrEq("{}"));
        EXPECT_TRUE(wellLaidOut(record));
    }
}

TEST_F(StatusRecordTest, KeepsItsTextWhenItGrows) {
    StatusRecord record;
    RaiseInto(record, -1, anyReport);
    const std::string before = record.json;
    EXPECT_TRUE(record.reallocJson(record, 513));
    EXPECT_EQ(record.json, before);
    EXPECT_EQ(record.capacity, 1024U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordTest, KeepsABufferThatIsLargeEnough) {
    StatusRecord record;
    EXPECT_TRUE(record.reallocJson(record, 600));
    const char* const before = record.json;
    EXPECT_TRUE(record.reallocJson(record, 1));
    EXPECT_TRUE(record.reallocJson(record, 1024));
    EXPECT_EQ(record.json, before);
    EXPECT_EQ(record.capacity, 1024U);
}

TEST_F(StatusRecordTest, FreesItsBufferForARequestOfZeroBytes) {
    StatusRecord record;
    for (const std::uint32_t size : {0U, 1U}) {
        EXPECT_TRUE(record.reallocJson(record, size));
        EXPECT_TRUE(record.reallocJson(record, 0));
        EXPECT_EQ(record.json, nullptr);
        EXPECT_EQ(record.capacity, 0U);
    }
}

TEST_F(StatusRecordTest, RefusesTwoGigabytesWithoutAllocating) {
    StatusRecord record;
    EXPECT_TRUE(record.reallocJson(record, 1));
    bool grown = true;
    EXPECT_EQ(allocations::refused(0, [&] { grown = record.reallocJson(record, 0x80000000); }), 0);
    EXPECT_FALSE(grown);
    EXPECT_EQ(allocations::refused(0, [&] { grown = record.reallocJson(record, 0x7FFFFFFF); }), 1);
    EXPECT_FALSE(grown);
}

TEST_F(StatusRecordTest, KeepsItsBufferWhenMemoryRunsOut) {
    StatusRecord record;
    EXPECT_TRUE(record.reallocJson(record, 1));
    const char* const before = record.json;
    bool grown = true;
    allocations::refused(0, [&] { grown = record.reallocJson(record, 513); });
    EXPECT_FALSE(grown);
    EXPECT_EQ(record.json, before);
    EXPECT_EQ(record.capacity, 512U);
    EXPECT_THAT(record.json, StrEq("{}"));
}

// Copy

TEST_F(StatusRecordTest, MovesItsBufferToACopyWithTheSameManager) {
    StatusRecord source;
    RaiseInto(source, -52008, anyReport);
    const char* const buffer = source.json;
    StatusRecord destination;
    EXPECT_TRUE(destination.reallocJson(destination, 1));
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.code, -52008);
    EXPECT_EQ(destination.json, buffer);
    EXPECT_EQ(destination.capacity, 512U);
    EXPECT_EQ(source.code, -52008);
    EXPECT_EQ(source.json, nullptr);
    EXPECT_EQ(source.capacity, 0U);
}

TEST_F(StatusRecordTest, LosesItsReportToACopyOfARecordWithoutOne) {
    StatusRecord source;
    source.reallocJson = remember;
    source.code = -1;
    StatusRecord destination;
    destination.reallocJson = remember;
    RaiseInto(destination, 5, anyReport);
    requests.clear();
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.code, -1);
    EXPECT_EQ(destination.json, nullptr);
    EXPECT_THAT(requests, ElementsAre(0)) << "the old report is freed";
}

TEST_F(StatusRecordTest, IsNotChangedByACopyWhoseCodeIsNotStored) {
    const std::pair<std::int32_t, std::int32_t> codes[] = {{-52026, -52008}, {0, 0}};
    for (const auto& [present, code] : codes) {
        StatusRecord source;
        RaiseInto(source, code, anyReport);
        StatusRecord destination;
        RaiseInto(destination, present, {"first", {"a", 1}});
        const std::string before = destination.json;
        EXPECT_FALSE(Copy(destination, source));
        EXPECT_EQ(destination.code, present);
        EXPECT_EQ(destination.json, before);
        EXPECT_NE(source.json, nullptr);
    }
}

TEST_F(StatusRecordTest, IsNotChangedByACopyToItself) {
    StatusRecord record;
    RaiseInto(record, 5, anyReport);
    EXPECT_FALSE(Copy(record, record));
    EXPECT_THAT(record.json, StartsWith(R"({"error_constant":"constant")"));
}

TEST_F(StatusRecordTest, CopiesItsTextToARecordWithAnotherManager) {
    StatusRecord source;
    RaiseInto(source, -52008, anyReport);
    StatusRecord destination;
    destination.reallocJson = remember;
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_THAT(requests, ElementsAre(std::strlen(source.json) + 2));
    EXPECT_EQ(destination.code, -52008);
    EXPECT_NE(destination.json, source.json);
    EXPECT_THAT(destination.json, StrEq(source.json));
    EXPECT_TRUE(wellLaidOut(destination));
}

TEST_F(StatusRecordTest, CopiesAnEmptyReportToARecordWithAnotherManagerIfItHasNone) {
    StatusRecord source;
    source.code = -1;
    StatusRecord destination;
    destination.reallocJson = exact;
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.capacity, 4U);
    EXPECT_THAT(destination.json, StrEq("{}"));
    EXPECT_TRUE(wellLaidOut(destination));
}

TEST_F(StatusRecordTest, CopiesOnlyItsCodeIfTheOtherManagerRefusesTheText) {
    StatusRecord source;
    RaiseInto(source, -52008, anyReport);
    StatusRecord destination;
    destination.reallocJson = refuse;
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.code, -52008);
    EXPECT_EQ(destination.json, nullptr);
}

}  // namespace
