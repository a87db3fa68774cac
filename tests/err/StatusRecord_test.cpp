#include "err/StatusRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/report.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;
using testing::StrEq;
using zuerr::Append;
using zuerr::Clear;
using zuerr::Copy;
using zuerr::RaiseInto;
using zuerr::SetCode;
using zuerr::StatusRecord;

constexpr zuerr::RaiseSite site{".\\source\\tService", 217};

testing::AssertionResult wellLaidOut(const StatusRecord& record) {
    return report::wellLaidOut(record.json, record.capacity);
}

/// Buffer managers of the tests write down what they are asked for.
class StatusRecordManager : public testing::Test {
protected:
    StatusRecordManager() { requests.clear(); }

    static bool remember(StatusRecord& record, std::uint32_t capacity) {
        requests.push_back(capacity);
        return StatusRecord::reallocJsonDefault(record, capacity);
    }

    /// Releases, but gives nothing.
    static bool refuse(StatusRecord& record, std::uint32_t capacity) {
        requests.push_back(capacity);
        return capacity <= record.capacity && StatusRecord::reallocJsonDefault(record, capacity);
    }

    /// Gives what the default manager gives first and no more, but never says no.
    static bool pretend(StatusRecord& record, std::uint32_t capacity) {
        if (capacity <= 512) return StatusRecord::reallocJsonDefault(record, capacity);
        return true;
    }

    /// Gives exactly what it is asked for.
    static bool exact(StatusRecord& record, std::uint32_t capacity) {
        if (capacity == 0) return StatusRecord::reallocJsonDefault(record, 0);
        if (capacity <= record.capacity) return true;
        char* const buffer = static_cast<char*>(std::malloc(capacity));
        zuerr::CopyText(buffer, capacity, record.json == nullptr ? "{}" : record.json);
        std::free(record.json);
        record.json = buffer;
        record.capacity = capacity;
        return true;
    }

    inline static std::vector<std::uint32_t> requests;
};

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

TEST_F(StatusRecordManager, LeavesTheOldTextWhenThatIsRefused) {
    StatusRecord record;
    record.reallocJson = refuse;
    record.json = static_cast<char*>(std::calloc(2, 1));
    record.capacity = 2;
    EXPECT_TRUE(SetCode(record, -1));
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(""));
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

// Raising into a record

TEST(RaiseInto, WritesConstantFileLineAndComponentInThisOrder) {
    StatusRecord record;
    RaiseInto(record, -52008, "zukesterr_osFault", site, "zuZiptraRemoteService");
    EXPECT_EQ(record.code, -52008);
    EXPECT_THAT(record.json, StrEq(R"({"error_constant":"zukesterr_osFault","file":".\\source\\tService",)"
                                   R"("line":217,"component":"zuZiptraRemoteService"})"));
    EXPECT_EQ(report::parsed(record.json)["file"], ".\\source\\tService");
    EXPECT_EQ(record.capacity, 512U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(RaiseInto, LeavesOutAConstantOrComponentThatIsNotGiven) {
    StatusRecord record;
    RaiseInto(record, -1, nullptr, {"a", -7}, nullptr);
    EXPECT_THAT(record.json, StrEq(R"({"file":"a","line":-7})"));
}

TEST(RaiseInto, DoesNothingWhenTheRecordHoldsAnError) {
    StatusRecord record;
    record.code = -1;
    RaiseInto(record, -2, "constant", site, nullptr);
    EXPECT_EQ(record.code, -1);
    EXPECT_EQ(record.json, nullptr);
}

TEST(RaiseInto, ReplacesAWarningAndItsReport) {
    StatusRecord record;
    RaiseInto(record, 5, "warning", site, nullptr);
    EXPECT_EQ(record.code, 5);
    RaiseInto(record, -1, nullptr, {"a", 1}, nullptr);
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(R"({"file":"a","line":1})"));
}

TEST(RaiseInto, KeepsAPathOf300CharactersInOneBufferOf512Bytes) {
    StatusRecord record;
    const std::string file(300, 'x');
    RaiseInto(record, -52008, "zukesterr_osFault", {file.c_str(), 1}, "zuZiptraRemoteService");
    EXPECT_EQ(record.capacity, 512U);
    const auto members = report::parsed(record.json);
    EXPECT_EQ(members.size(), 4U);
    EXPECT_EQ(members["file"], file);
}

TEST_F(StatusRecordManager, IsAskedFor1022BytesWhenAReportNeedsMoreThan512) {
    StatusRecord record;
    record.reallocJson = remember;
    const std::string file(500, 'x');
    RaiseInto(record, -52008, "zukesterr_osFault", {file.c_str(), 1}, "zuZiptraRemoteService");
    EXPECT_THAT(requests, ElementsAre(4, 1022));
    EXPECT_EQ(record.capacity, 1024U);
    const auto members = report::parsed(record.json);
    EXPECT_EQ(members.size(), 4U);
    EXPECT_EQ(members["file"], file);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordManager, IsAskedAgainUntilALongMemberFits) {
    StatusRecord record;
    record.reallocJson = remember;
    const std::string file(3000, '\\');
    RaiseInto(record, -1, nullptr, {file.c_str(), 1}, nullptr);
    EXPECT_THAT(requests, ElementsAre(4, 1022, 2046, 4094, 8190));
    EXPECT_EQ(report::parsed(record.json)["file"], file);
}

TEST_F(StatusRecordManager, MayGiveNoByteMoreThanItIsAskedFor) {
    StatusRecord record;
    record.reallocJson = exact;
    RaiseInto(record, -52008, "zukesterr_osFault", site, "zuZiptraRemoteService");
    EXPECT_EQ(report::parsed(record.json).size(), 4U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(RaiseInto, LeavesOutTheMemberThatMemoryIsMissingForAndEveryLaterOne) {
    StatusRecord record;
    const std::string file(500, 'x');
    const int refusals = allocations::refused(1024, [&] {
        RaiseInto(record, -52008, "zukesterr_osFault", {file.c_str(), 1}, "zuZiptraRemoteService");
    });
    EXPECT_EQ(refusals, 1);
    EXPECT_EQ(record.code, -52008);
    EXPECT_THAT(record.json, StrEq(R"({"error_constant":"zukesterr_osFault"})"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(RaiseInto, KeepsTheCodeWhenThereIsNoMemoryForAnyReport) {
    StatusRecord record;
    allocations::refused(0, [&] { RaiseInto(record, -52008, "zukesterr_osFault", site, nullptr); });
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

// Appending and growth

TEST(Append, StartsAReportWhereThereIsNone) {
    StatusRecord record;
    Append(record).AddInt("a", 1);
    EXPECT_THAT(record.json, StrEq(R"({"a":1})"));
    EXPECT_EQ(record.code, 0);
}

TEST(Append, GoesOnBehindTheMembersThatAreThere) {
    StatusRecord record;
    RaiseInto(record, -52006, "kestStatusResourceNotFound", {"zutolq\\stdpath", 232}, nullptr);
    Append(record).EnterObject("internal_error").AddString("api", "win32").AddUInt("code", 2);
    EXPECT_THAT(record.json, StrEq(R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath",)"
                                   R"("line":232,"internal_error":{"api":"win32","code":2}})"));
}

TEST(Append, KeepsItsPlaceInANestedObjectWhenTheBufferMoves) {
    StatusRecord record;
    const std::string text(600, 'x');
    Append(record).AddInt("a", 1).EnterObject("o").AddInt("b", 2).AddString("c", text.c_str()).AddInt("d", 4);
    EXPECT_EQ(record.json, R"({"a":1,"o":{"b":2,"c":")" + text + R"(","d":4}})");
    EXPECT_EQ(record.capacity, 1024U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(Append, LeavesATextThatIsNoJsonAsItIs) {
    StatusRecord record;
    record.reallocJson(record, 1);
    zuerr::CopyText(record.json, record.capacity, "no JSON");
    Append(record).AddInt("a", 1);
    EXPECT_THAT(record.json, StrEq("no JSON"));
}

TEST(Append, DropsTheMemberWhenTheGrownTextIsNoLongerValid) {
    // The writer copies control characters unchanged; the validator, which runs after each growth, refuses them.
    StatusRecord record;
    const std::string text(600, 'x');
    Append(record).AddString("a", "\x01").AddString("b", text.c_str()).AddInt("c", 1);
    EXPECT_THAT(record.json, StrEq("{\"a\":\"\x01\"}"));
    EXPECT_EQ(record.capacity, 1024U);
}

TEST_F(StatusRecordManager, IsNotAskedForEverWhenItSaysYesAndGivesNothing) {
    StatusRecord record;
    record.reallocJson = pretend;
    const std::string text(600, 'x');
    Append(record).AddInt("a", 1).AddString("b", text.c_str()).AddInt("c", 1);
    EXPECT_THAT(record.json, StrEq(R"({"a":1})"));
}

TEST_F(StatusRecordManager, IsAskedForTwiceTheCapacityLess2UpToAgainst2Gigabytes) {
    const auto requestsAt = [](std::uint32_t capacity) {
        StatusRecord record;
        record.reallocJson(record, 4);
        zuerr::CopyText(record.json, 4, "{}");
        record.reallocJson = refuse;
        record.capacity = capacity;  // a claim: the sentinel stands right behind the text, so there is no room
        requests.clear();
        Append(record).AddInt("a", 1);
        EXPECT_THAT(record.json, StrEq("{}"));
        return requests;
    };
    EXPECT_THAT(requestsAt(512), ElementsAre(4, 1022));
    EXPECT_THAT(requestsAt(0x40000000), ElementsAre(4, 0x7FFFFFFE));
    EXPECT_THAT(requestsAt(0x40000001), ElementsAre(4));
    EXPECT_THAT(requestsAt(0x80000000), ElementsAre(4));
    EXPECT_THAT(requestsAt(0xFFFFFFFF), ElementsAre(4));
}

}  // namespace
