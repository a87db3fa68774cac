// The report in a record: raising, appending, and the growth of the buffer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "err/StatusRecord.h"
#include "tests/support/allocations.h"
#include "tests/support/report.h"
#include "tests/support/statusRecord.h"

namespace {

using report::wellLaidOut;
using testing::ElementsAre;
using testing::StrEq;
using zuerr::Append;
using zuerr::RaiseInto;
using zuerr::RaiseReport;
using zuerr::StatusRecord;

constexpr RaiseReport osFault{zuerr::osFault, {".\\source\\tService", 217}};
constexpr const char* osFaultText = R"({"error_constant":"zukesterr_osFault","file":".\\source\\tService",)"
                                    R"("line":217,"component":"zuZiptraRemoteService"})";
constexpr RaiseReport fileAndLine{nullptr, {"a", -7}, nullptr};

class StatusRecordReport : public tStatusRecordTest {};

// RaiseInto

TEST_F(StatusRecordReport, ContainsConstantFileLineAndComponentInThisOrder) {
    StatusRecord record;
    RaiseInto(record, -52008, osFault);
    EXPECT_EQ(record.code, -52008);
    EXPECT_THAT(record.json, StrEq(osFaultText));
    EXPECT_EQ(record.capacity, 512U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordReport, OmitsAConstantOrComponentThatIsNotGiven) {
    const std::pair<RaiseReport, const char*> rows[] = {
        {fileAndLine, R"({"file":"a","line":-7})"},
        {{"b", {"a", 1}, nullptr}, R"({"error_constant":"b","file":"a","line":1})"},
        {{nullptr, {"", 0}}, R"({"file":"","line":0,"component":"zuZiptraRemoteService"})"}};
    for (const auto& [raised, text] : rows) {
        StatusRecord record;
        RaiseInto(record, -1, raised);
        EXPECT_THAT(record.json, StrEq(text));
        EXPECT_EQ(raised.code, 0);
    }
}

TEST_F(StatusRecordReport, IsNotWrittenIntoARecordThatContainsAnError) {
    StatusRecord record;
    record.code = -1;
    RaiseInto(record, -2, osFault).AddInt("a", 1);
    EXPECT_EQ(record.code, -1);
    EXPECT_EQ(record.json, nullptr);
}

TEST_F(StatusRecordReport, OfAWarningIsReplacedOnlyByAnErrors) {
    StatusRecord record;
    RaiseInto(record, 5, osFault);
    RaiseInto(record, -1, fileAndLine);
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(R"({"file":"a","line":-7})"));
    EXPECT_TRUE(wellLaidOut(record));

    StatusRecord warned;
    RaiseInto(warned, 5, fileAndLine);
    RaiseInto(warned, 6, fileAndLine);
    EXPECT_EQ(warned.code, 5);
    EXPECT_THAT(warned.json, StrEq(R"({"file":"a","line":-7,"file":"a","line":-7})"));
}

TEST_F(StatusRecordReport, AcceptsFurtherMembersThroughTheRaisesChain) {
    StatusRecord record;
    RaiseInto(record, -1, fileAndLine).EnterObject("b").AddInt("c", 1).LeaveObject().AddUInt("d", 2);
    EXPECT_THAT(record.json, StrEq(R"({"file":"a","line":-7,"b":{"c":1},"d":2})"));
}

TEST_F(StatusRecordReport, Requests1022BytesIfItNeedsMoreThan512) {
    StatusRecord record;
    record.reallocJson = remember;
    const std::string file(500, 'x');
    RaiseInto(record, -52008, {zuerr::osFault, {file.c_str(), 1}});
    EXPECT_THAT(requests, ElementsAre(4, 1022));
    EXPECT_EQ(record.capacity, 1024U);
    const auto members = report::parsed(record.json);
    EXPECT_EQ(members.size(), 4U);
    EXPECT_EQ(members["file"], file);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordReport, GrowsUntilALongMemberFits) {
    StatusRecord record;
    record.reallocJson = remember;
    const std::string file(3000, '\\');
    RaiseInto(record, -1, {nullptr, {file.c_str(), 1}, nullptr});
    EXPECT_THAT(requests, ElementsAre(4, 1022, 2046, 4094, 8190));
    EXPECT_EQ(report::parsed(record.json)["file"], file);
}

TEST_F(StatusRecordReport, IsCompleteIfTheManagerGrantsExactlyTheRequestedSize) {
    StatusRecord record;
    record.reallocJson = exact;
    RaiseInto(record, -52008, osFault);
    EXPECT_THAT(record.json, StrEq(osFaultText));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordReport, EndsBeforeTheFirstMemberForWhichThereIsNoMemory) {
    StatusRecord record;
    const std::string file(500, 'x');
    EXPECT_EQ(allocations::refused(1024,
                                   [&] {
                                       RaiseInto(record, -52008, {zuerr::osFault, {file.c_str(), 1}}).AddInt("a", 1);
                                   }),
              1);
    EXPECT_EQ(record.code, -52008);
    EXPECT_THAT(record.json, StrEq(R"({"error_constant":"zukesterr_osFault"})"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordReport, IsMissingIfThereIsNoMemoryForABuffer) {
    StatusRecord record;
    EXPECT_EQ(allocations::refused(0, [&] { RaiseInto(record, -52008, osFault); }), 1);
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

// Append

TEST_F(StatusRecordReport, IsStartedByAppendIfThereIsNone) {
    StatusRecord record;
    Append(record).AddInt("a", 1);
    EXPECT_THAT(record.json, StrEq(R"({"a":1})"));
    EXPECT_EQ(record.code, 0);
}

TEST_F(StatusRecordReport, IsContinuedByAppend) {
    StatusRecord record;
    RaiseInto(record, -1, fileAndLine);
    Append(record).EnterObject("b").AddString("c", "d");
    EXPECT_THAT(record.json, StrEq(R"({"file":"a","line":-7,"b":{"c":"d"}})"));
}

TEST_F(StatusRecordReport, KeepsTheChainsPositionInANestedObjectWhenTheBufferMoves) {
    StatusRecord record;
    const std::string text(600, 'x');
    Append(record).AddInt("a", 1).EnterObject("o").AddInt("b", 2).AddString("c", text.c_str()).AddInt("d", 4);
    EXPECT_EQ(record.json, R"({"a":1,"o":{"b":2,"c":")" + text + R"(","d":4}})");
    EXPECT_EQ(record.capacity, 1024U);
    EXPECT_TRUE(wellLaidOut(record));
}

TEST_F(StatusRecordReport, StaysUnchangedIfItIsNotJson) {
    StatusRecord record;
    record.reallocJson(record, 1);
    zuerr::CopyText(record.json, record.capacity, "no JSON");
    Append(record).AddInt("a", 1);
    EXPECT_THAT(record.json, StrEq("no JSON"));
}

TEST_F(StatusRecordReport, AcceptsNoFurtherMemberIfItIsNotValidAfterGrowth) {
    // The writer copies control characters unchanged; the validator, which runs after each growth, rejects them.
    StatusRecord record;
    const std::string text(600, 'x');
    Append(record).AddString("a", "\x01").AddString("b", text.c_str()).AddInt("c", 1);
    EXPECT_THAT(record.json, StrEq("{\"a\":\"\x01\"}"));
    EXPECT_EQ(record.capacity, 1024U);
}

TEST_F(StatusRecordReport, DoublesItsBufferUpToTwoGigabytes) {
    const auto requestsAt = [](std::uint32_t capacity) {
        StatusRecord record;
        record.reallocJson(record, 4);
        zuerr::CopyText(record.json, 4, "{}");
        record.reallocJson = refuse;
        record.capacity = capacity;  // a false claim: the sentinel directly follows the text, so there is no space
        requests.clear();
        Append(record).AddInt("a", 1);
        EXPECT_THAT(record.json, StrEq("{}"));
        return requests;
    };
    EXPECT_THAT(requestsAt(4), ElementsAre(4, 6));
    EXPECT_THAT(requestsAt(512), ElementsAre(4, 1022));
    EXPECT_THAT(requestsAt(0x40000000), ElementsAre(4, 0x7FFFFFFE));
    for (const std::uint32_t capacity : {0x40000001U, 0x80000000U, 0x80000002U, 0xFFFFFFFFU}) {
        EXPECT_THAT(requestsAt(capacity), ElementsAre(4)) << capacity;
    }
}

}  // namespace
