#include "err/StatusRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

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

constexpr zuerr::RaiseSite site{".\\source\\tService", 217};

// The record itself

TEST(StatusRecord, IsFreshWithSuccessAndNoReport) {
    const StatusRecord record;
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.capacity, 0U);
    EXPECT_EQ(record.json, nullptr);
    EXPECT_EQ(record.reallocJson, &StatusRecord::reallocJsonDefault);
    EXPECT_FALSE(record.failed());
}

TEST(StatusRecord, HasFailedOnlyWithANegativeCode) {
    StatusRecord record;
    record.code = 1;
    EXPECT_FALSE(record.failed());
    record.code = -1;
    EXPECT_TRUE(record.failed());
}

TEST(StatusRecord, ClearedHoldsSuccessAndNoBuffer) {
    StatusRecord record;
    RaiseInto(record, -52008, "zukesterr_osFault", site, nullptr);
    Clear(record);
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.capacity, 0U);
    EXPECT_EQ(record.json, nullptr);
}

TEST_F(StatusRecordManager, IsAskedForNothingWhenTheRecordIsClearedOrGoes) {
    {
        StatusRecord record;
        record.reallocJson = remember;
        Clear(record);
        EXPECT_THAT(requests, ElementsAre(0));
    }
    EXPECT_THAT(requests, ElementsAre(0, 0));
}

// SetCode

TEST(SetCode, LetsTheFirstErrorWin) {
    StatusRecord record;
    EXPECT_TRUE(SetCode(record, -52008));
    EXPECT_FALSE(SetCode(record, -52026));
    EXPECT_FALSE(SetCode(record, 5));
    EXPECT_FALSE(SetCode(record, 0));
    EXPECT_EQ(record.code, -52008);
}

TEST(SetCode, ReplacesAWarningByAnErrorOnly) {
    StatusRecord record;
    EXPECT_TRUE(SetCode(record, 5));
    EXPECT_FALSE(SetCode(record, 6));
    EXPECT_FALSE(SetCode(record, 0));
    EXPECT_EQ(record.code, 5);
    EXPECT_TRUE(SetCode(record, -52005));
    EXPECT_EQ(record.code, -52005);
}

TEST(SetCode, ReplacesTheSmallestWarningByTheSmallestError) {
    StatusRecord record;
    EXPECT_TRUE(SetCode(record, 1));
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.code, -1);
}

TEST(SetCode, RefusesSuccessOverSuccess) {
    StatusRecord record;
    EXPECT_FALSE(SetCode(record, 0));
    EXPECT_EQ(record.code, 0);
}

TEST(SetCode, ResetsTheReportWhenTheCodeIsTaken) {
    StatusRecord record;
    RaiseInto(record, 5, "warning", site, nullptr);
    EXPECT_TRUE(SetCode(record, -52005));
    EXPECT_THAT(record.json, StrEq("{}"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(SetCode, KeepsTheReportWhenTheCodeIsRefused) {
    StatusRecord record;
    RaiseInto(record, -52008, "first", site, nullptr);
    const std::string before = record.json;
    EXPECT_FALSE(SetCode(record, -52005));
    EXPECT_EQ(record.json, before);
}

TEST(SetCode, TakesTheCodeWithoutABuffer) {
    StatusRecord record;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.json, nullptr);
}

TEST_F(StatusRecordManager, IsAskedForThreeBytesWhenTheBufferIsTooSmallForAnEmptyReport) {
    StatusRecord record;
    record.reallocJson = remember;
    record.json = static_cast<char*>(std::calloc(2, 1));
    record.json[1] = zuerr::jsonSentinel;
    record.capacity = 2;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_THAT(requests, ElementsAre(3));
    EXPECT_THAT(record.json, StrEq("{}"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordManager, MayGiveNoMoreThanTheThreeBytesOfAnEmptyReport) {
    StatusRecord record;
    record.reallocJson = exact;
    record.json = static_cast<char*>(std::calloc(2, 1));
    record.capacity = 2;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.capacity, 3U);
    EXPECT_THAT(record.json, StrEq("{}"));
}

TEST_F(StatusRecordManager, IsAskedForNothingWhenTheBufferIsJustLargeEnoughForAnEmptyReport) {
    StatusRecord record;
    record.reallocJson = remember;
    record.json = static_cast<char*>(std::calloc(3, 1));
    record.capacity = 3;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_THAT(record.json, StrEq("{}"));
}

TEST_F(StatusRecordManager, LeavesTheOldTextWhenThatIsRefused) {
    StatusRecord record;
    record.reallocJson = refuse;
    record.json = static_cast<char*>(std::calloc(2, 1));
    record.capacity = 2;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(""));
}

TEST_F(StatusRecordManager, LeavesTheOldTextWhenItSaysYesAndGivesNothing) {
    std::array<char, 3> buffer{0, zuerr::jsonSentinel, '!'};
    StatusRecord record;
    record.reallocJson = [](StatusRecord& /*self*/, std::uint32_t /*capacity*/) { return true; };
    record.json = buffer.data();
    record.capacity = 2;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(""));
    EXPECT_EQ(buffer[2], '!') << "behind the buffer";
}

// The default buffer manager

TEST(DefaultManager, GivesAnEmptyReportIn512BytesAtFirst) {
    for (const std::uint32_t request : {1U, 4U, 512U}) {
        StatusRecord record;
        EXPECT_TRUE(record.reallocJson(record, request));
        EXPECT_EQ(record.capacity, 512U);
        EXPECT_THAT(record.json, StrEq("{}"));
        EXPECT_TRUE(wellLaidOut(record));
    }
}

TEST(DefaultManager, RoundsUpToAPowerOfTwo) {
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> sizes{{513, 1024},  {1022, 1024},     {1024, 1024},
                                                                     {1025, 2048}, {65'536, 65'536}, {65'537, 131'072}};
    for (const auto& [request, capacity] : sizes) {
        StatusRecord record;
        EXPECT_TRUE(record.reallocJson(record, request));
        EXPECT_EQ(record.capacity, capacity);
        EXPECT_TRUE(wellLaidOut(record));
    }
}

TEST(DefaultManager, KeepsTheTextWhenItGrows) {
    StatusRecord record;
    RaiseInto(record, -1, "constant", site, nullptr);
    const std::string before = record.json;
    EXPECT_TRUE(record.reallocJson(record, 513));
    EXPECT_EQ(record.json, before);
    EXPECT_EQ(record.capacity, 1024U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(DefaultManager, DoesNothingWhenTheBufferIsLargeEnough) {
    StatusRecord record;
    EXPECT_TRUE(record.reallocJson(record, 600));
    const char* const before = record.json;
    EXPECT_TRUE(record.reallocJson(record, 1));
    EXPECT_TRUE(record.reallocJson(record, 1024));
    EXPECT_EQ(record.json, before);
    EXPECT_EQ(record.capacity, 1024U);
}

TEST(DefaultManager, ReleasesTheBufferForARequestOfNothing) {
    StatusRecord record;
    EXPECT_TRUE(record.reallocJson(record, 0));
    EXPECT_TRUE(record.reallocJson(record, 1));
    EXPECT_TRUE(record.reallocJson(record, 0));
    EXPECT_EQ(record.json, nullptr);
    EXPECT_EQ(record.capacity, 0U);
}

TEST(DefaultManager, RefusesMoreThan2GigabytesWithoutAskingForMemory) {
    StatusRecord record;
    EXPECT_TRUE(record.reallocJson(record, 1));
    bool grown = true;
    EXPECT_EQ(allocations::refused(0, [&] { grown = record.reallocJson(record, 0x80000000); }), 0);
    EXPECT_FALSE(grown);
    EXPECT_EQ(allocations::refused(0, [&] { grown = record.reallocJson(record, 0x7FFFFFFF); }), 1);
    EXPECT_FALSE(grown);
    EXPECT_EQ(record.capacity, 512U);
}

TEST(DefaultManager, KeepsTheBufferWhenMemoryRunsOut) {
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

TEST(CopyRecord, HandsTheBufferOverBetweenRecordsOfOneManager) {
    StatusRecord source;
    RaiseInto(source, -52008, "zukesterr_osFault", site, nullptr);
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

TEST(CopyRecord, TakesOverThatThereIsNoReport) {
    StatusRecord source;
    source.code = -1;
    StatusRecord destination;
    RaiseInto(destination, 5, "warning", site, nullptr);
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.code, -1);
    EXPECT_EQ(destination.json, nullptr);
}

TEST(CopyRecord, LeavesADestinationWithAnErrorUntouched) {
    StatusRecord source;
    RaiseInto(source, -52008, "second", site, nullptr);
    StatusRecord destination;
    RaiseInto(destination, -52026, "first", site, nullptr);
    const std::string before = destination.json;
    EXPECT_FALSE(Copy(destination, source));
    EXPECT_EQ(destination.code, -52026);
    EXPECT_EQ(destination.json, before);
    EXPECT_NE(source.json, nullptr);
}

TEST(CopyRecord, RefusesSuccess) {
    StatusRecord source;
    EXPECT_TRUE(source.reallocJson(source, 1));
    StatusRecord destination;
    EXPECT_FALSE(Copy(destination, source));
    EXPECT_EQ(destination.json, nullptr);
    EXPECT_NE(source.json, nullptr);
}

TEST(CopyRecord, OfARecordToItselfChangesNothing) {
    StatusRecord record;
    RaiseInto(record, 5, "warning", site, nullptr);
    EXPECT_FALSE(Copy(record, record));
    EXPECT_THAT(record.json, StartsWith(R"({"error_constant":"warning")"));
}

TEST_F(StatusRecordManager, IsToldToReleaseTheOldReportBeforeAnotherTakesItsPlace) {
    StatusRecord source;
    source.reallocJson = remember;
    source.code = -1;
    StatusRecord destination;
    destination.reallocJson = remember;
    EXPECT_TRUE(destination.reallocJson(destination, 4));
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_THAT(requests, ElementsAre(4, 0));
}

TEST_F(StatusRecordManager, CopiesTheTextBetweenRecordsOfDifferentManagers) {
    StatusRecord source;
    RaiseInto(source, -52008, "zukesterr_osFault", site, nullptr);
    StatusRecord destination;
    destination.reallocJson = remember;
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_THAT(requests, ElementsAre(std::strlen(source.json) + 2));
    EXPECT_EQ(destination.code, -52008);
    EXPECT_NE(destination.json, source.json);
    EXPECT_THAT(destination.json, StrEq(source.json));
    EXPECT_TRUE(wellLaidOut(destination));
}

TEST_F(StatusRecordManager, CopiesAnEmptyReportFromADifferentManagersRecordWithoutOne) {
    StatusRecord source;
    source.code = -1;
    StatusRecord destination;
    destination.reallocJson = exact;
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.capacity, 4U);
    EXPECT_THAT(destination.json, StrEq("{}"));
    EXPECT_TRUE(wellLaidOut(destination));
}

TEST_F(StatusRecordManager, CopiesTheCodeAloneWhenItRefusesTheText) {
    StatusRecord source;
    RaiseInto(source, -52008, "zukesterr_osFault", site, nullptr);
    StatusRecord destination;
    destination.reallocJson = refuse;
    EXPECT_TRUE(Copy(destination, source));
    EXPECT_EQ(destination.code, -52008);
    EXPECT_EQ(destination.json, nullptr);
}

// Append

TEST_F(StatusRecordManager, IsAskedForTwiceTheRoomLessTwoUpTo2GigabytesAndNoMore) {
    const auto requestsAt = [](std::uint32_t capacity) {
        requests.clear();
        StatusRecord record;
        record.reallocJson = refuse;
        record.json = static_cast<char*>(std::malloc(4));
        zuerr::CopyText(record.json, 4, "{}");
        record.capacity = capacity;
        zuerr::Append(record).AddInt("member", 1);
        return requests;
    };
    EXPECT_THAT(requestsAt(4), ElementsAre(4, 6));
    EXPECT_THAT(requestsAt(0x40000000), ElementsAre(4, 0x7FFFFFFE));
    EXPECT_THAT(requestsAt(0x40000001), ElementsAre(4));
    EXPECT_THAT(requestsAt(0x40000002), ElementsAre(4));
}

}  // namespace
