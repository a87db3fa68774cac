// What is written into a record: raising, appending, and the growth of the report.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

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
using zuerr::StatusRecord;

constexpr zuerr::RaiseSite site{".\\source\\tService", 217};

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

TEST(RaiseInto, KeepsTheCodeAloneWhenTheManagerSaysYesAndGivesNothing) {
    StatusRecord record;
    record.reallocJson = [](StatusRecord& /*self*/, std::uint32_t /*capacity*/) { return true; };
    RaiseInto(record, -52008, "zukesterr_osFault", site, "zuZiptraRemoteService");
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

TEST(RaiseInto, KeepsTheCodeOfAReadyReportWhenTheManagerSaysYesAndGivesNothing) {
    StatusRecord record;
    record.reallocJson = [](StatusRecord& /*self*/, std::uint32_t /*capacity*/) { return true; };
    RaiseInto(record, -52008, {zuerr::osFault, {".\\source\\tService", 217}});
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

TEST(Append, WritesNothingIntoABufferWithoutRoomForTheMarker) {
    std::string buffer("{}\0\0\0\0\0\0\0\0\0\0J", 13);
    StatusRecord record;
    record.reallocJson = [](StatusRecord& /*self*/, std::uint32_t /*capacity*/) { return true; };
    record.json = buffer.data();
    record.capacity = 3;  // what lies behind is somebody else's
    Append(record).AddInt("a", 1);
    EXPECT_EQ(buffer, std::string("{}\0\0\0\0\0\0\0\0\0\0J", 13));
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
