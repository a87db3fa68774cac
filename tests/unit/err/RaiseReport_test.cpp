#include "err/RaiseReport.h"

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
using zuerr::RaiseInto;
using zuerr::RaiseReport;
using zuerr::StatusRecord;

constexpr zuerr::RaiseSite site{".\\source\\tService", 217};
constexpr RaiseReport osFault{zuerr::osFault, site};
constexpr RaiseReport everyEscape{"\b\t\n\f\r\"\\/'\x01\x7F\xC3\xA4", {"\\", 1}, "\"\""};
constexpr RaiseReport noConstant{nullptr, {"a", 1}};
constexpr RaiseReport noComponent{"b", {"a", 1}, nullptr};
constexpr RaiseReport nothingBut{nullptr, {"", 0}, nullptr};

/// The same raise with its report written when it is raised.
void raiseWritten(StatusRecord& record, std::int32_t code, const RaiseReport& report) {
    RaiseInto(record, code, report.constant(), report.site(), report.component());
}

TEST(RaiseReport, HoldsConstantFileLineAndComponentInThisOrder) {
    EXPECT_EQ(osFault.text(), R"({"error_constant":"zukesterr_osFault","file":".\\source\\tService",)"
                              R"("line":217,"component":"zuZiptraRemoteService"})");
    EXPECT_EQ(osFault.code(), -52008);
}

TEST(RaiseReport, LeavesOutAConstantOrComponentThatIsNotGiven) {
    EXPECT_EQ(noConstant.text(), R"({"file":"a","line":1,"component":"zuZiptraRemoteService"})");
    EXPECT_EQ(noComponent.text(), R"({"error_constant":"b","file":"a","line":1})");
    EXPECT_EQ(nothingBut.text(), R"({"file":"","line":0})");
    EXPECT_EQ(noConstant.code(), 0);
}

TEST(RaiseReport, HoldsEveryNumberOfDigits) {
    constexpr RaiseReport nine{nullptr, {"", 9}, nullptr};
    constexpr RaiseReport ten{nullptr, {"", 10}, nullptr};
    constexpr RaiseReport most{nullptr, {"", 2147483647}, nullptr};
    EXPECT_EQ(nine.text(), R"({"file":"","line":9})");
    EXPECT_EQ(ten.text(), R"({"file":"","line":10})");
    EXPECT_EQ(most.text(), R"({"file":"","line":2147483647})");
}

TEST(RaiseReport, IsToTheByteWhatIsWrittenWhenItIsRaised) {
    for (const RaiseReport& report : {osFault, everyEscape, noConstant, noComponent, nothingBut}) {
        StatusRecord ready;
        StatusRecord written;
        RaiseInto(ready, -1, report);
        raiseWritten(written, -1, report);
        EXPECT_THAT(ready.json, StrEq(written.json));
        EXPECT_EQ(ready.code, written.code);
        EXPECT_EQ(ready.capacity, 512U);
        EXPECT_TRUE(wellLaidOut(ready));
    }
}

TEST(RaiseReport, DoesNothingToARecordThatHoldsAnError) {
    StatusRecord record;
    record.code = -1;
    RaiseInto(record, -2, osFault);
    EXPECT_EQ(record.code, -1);
    EXPECT_EQ(record.json, nullptr);
}

TEST(RaiseReport, ReplacesAWarningAndItsReport) {
    StatusRecord record;
    RaiseInto(record, 5, osFault);
    RaiseInto(record, -1, noComponent);
    EXPECT_EQ(record.code, -1);
    EXPECT_THAT(record.json, StrEq(R"({"error_constant":"b","file":"a","line":1})"));
    EXPECT_TRUE(wellLaidOut(record));
}

TEST(RaiseReport, GoesBehindTheReportOfAWarningThatIsNotReplaced) {
    StatusRecord ready;
    StatusRecord written;
    for (const std::int32_t code : {5, 6}) {
        RaiseInto(ready, code, noComponent);
        raiseWritten(written, code, noComponent);
    }
    EXPECT_EQ(ready.code, 5);
    EXPECT_THAT(ready.json, StrEq(written.json));
}

TEST(RaiseReport, KeepsTheCodeWhenThereIsNoMemory) {
    StatusRecord record;
    EXPECT_EQ(allocations::refused(0, [&] { RaiseInto(record, -52008, osFault); }), 1);
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

/// A record with so little room that its buffer must grow, by a manager that gives what it is asked for.
class RaiseReportRoom : public StatusRecordManager {
protected:
    static void prepare(StatusRecord& record, std::uint32_t capacity) {
        record.reallocJson = exact;
        record.reallocJson(record, capacity);
        zuerr::CopyText(record.json, record.capacity, "{}");
        requests.clear();
    }
};

TEST_F(RaiseReportRoom, GrowsAsWhenItIsWritten) {
    for (std::uint32_t capacity = 4; capacity < 300; ++capacity) {
        StatusRecord ready;
        StatusRecord written;
        prepare(ready, capacity);
        prepare(written, capacity);
        RaiseInto(ready, -1, osFault);
        raiseWritten(written, -1, osFault);
        ASSERT_THAT(ready.json, StrEq(written.json)) << capacity;
        ASSERT_EQ(ready.capacity, written.capacity) << capacity;
        ASSERT_TRUE(wellLaidOut(ready)) << capacity;
    }
}

TEST_F(RaiseReportRoom, HoldsTheMembersThatFitWhenThereIsNoMore) {
    for (std::uint32_t capacity = 4; capacity < 300; ++capacity) {
        StatusRecord ready;
        StatusRecord written;
        prepare(ready, capacity);
        prepare(written, capacity);
        ready.reallocJson = written.reallocJson = [](StatusRecord& record, std::uint32_t wanted) {
            return wanted != 0 && wanted <= record.capacity;
        };
        RaiseInto(ready, -1, osFault);
        raiseWritten(written, -1, osFault);
        ASSERT_THAT(ready.json, StrEq(written.json)) << capacity;
        ready.reallocJson = written.reallocJson = StatusRecord::reallocJsonDefault;
    }
}

}  // namespace
