// The error model when memory runs out: the code is always set, and the report lacks only whole members.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "err/Allocator.h"
#include "err/Exception.h"
#include "tests/support/report.h"
#include "tests/support/statusRecord.h"
#include "tests/sweep/memory.h"

namespace {

using sweep::eachAllocationFails;
using sweep::tAttempt;
using zuerr::PlatformStatus;
using zuerr::StatusRecord;

constexpr zuerr::RaiseSite site{".\\source\\tService", 217};

/// Long enough for several growths of a report: each needs more than the whole buffer before it.
const std::string& longText() {
    static const std::string text(5000, '"');
    return text;
}

/// Whether every member is also in the whole report.
bool isPartOf(const nlohmann::ordered_json& part, const nlohmann::ordered_json& whole) {
    return std::all_of(part.items().begin(), part.items().end(), [&](const auto& member) {
        const auto same = whole.find(member.key());
        if (same == whole.end()) return false;
        return member.value().is_object() ? isPartOf(member.value(), *same) : member.value() == *same;
    });
}

/// Expects a well laid out report that contains only members of the undisturbed one.
void expectPartOf(const StatusRecord& record, const char* whole) {
    if (record.json == nullptr) return;
    EXPECT_TRUE(report::wellLaidOut(record));
    EXPECT_TRUE(isPartOf(report::parsed(record.json), report::parsed(whole)));
}

/// Sweeps an operation on a record and checks the record.
int sweepRecord(const char* name, std::int32_t code, void (*operation)(StatusRecord& record)) {
    StatusRecord undisturbed;
    operation(undisturbed);
    EXPECT_EQ(undisturbed.code, code);
    return eachAllocationFails(name, [&](tAttempt& attempt) {
        StatusRecord record;
        attempt.operate([&] { operation(record); });
        EXPECT_EQ(attempt.code(), 0) << "nothing is thrown";
        EXPECT_EQ(record.code, code);
        expectPartOf(record, undisturbed.json);
        if (!attempt.struck()) {
            EXPECT_STREQ(record.json, undisturbed.json);
        }
    });
}

TEST(MemoryOfErrors, RaisingIntoARecordKeepsTheCodeAndWholeMembers) {
    EXPECT_GT(
        sweepRecord("RaiseInto", -52008,
                    [](StatusRecord& record) {
                        RaiseInto(record, -52008, {longText().c_str(), {longText().c_str(), 217}, longText().c_str()});
                    }),
        4);
}

TEST(MemoryOfErrors, AppendingKeepsTheCodeAndWholeMembers) {
    EXPECT_GT(sweepRecord("Append", -7,
                          [](StatusRecord& record) {
                              SetCode(record, -7);
                              Append(record).AddString("a", longText().c_str()).AddInt("b", -1);
                              Append(record).AddUInt("c", 1).EnterObject("d").AddString("e", longText().c_str());
                              Append(record).AddString("f", longText().c_str());
                          }),
              4);
}

TEST(MemoryOfErrors, AnotherManagersReportIsCopiedWholeOrNotAtAll) {
    static constexpr auto ownManager = [](StatusRecord& record, std::uint32_t capacity) noexcept {
        return StatusRecord::reallocJsonDefault(record, capacity);
    };
    EXPECT_GT(sweepRecord("Copy", -7,
                          [](StatusRecord& record) {
                              StatusRecord source;
                              source.reallocJson = ownManager;
                              SetCode(source, -7);
                              Append(source).AddString("a", longText().c_str());
                              Copy(record, source);
                          }),
              2);
}

TEST(MemoryOfErrors, APlatformStatusIsConvertedWithItsCode) {
    EXPECT_GT(sweepRecord("Convert", -52005,
                          [](StatusRecord& record) {
                              PlatformStatus platform;
                              RaiseInto(platform, -52005, zuerr::hostComponent, {longText().c_str(), 134});
                              ConvertPlatformStatus(platform, record);
                          }),
              0);
}

TEST(MemoryOfErrors, ARaisedExceptionHasItsCode) {
    static constexpr zuerr::RaiseReport faultOfTheSystem{zuerr::osFault, site};
    const auto raises = [](tAttempt& attempt) {
        attempt.operate([] { zuerr::Raise(faultOfTheSystem); });
        EXPECT_EQ(attempt.code(), -52008);
        if (!attempt.struck()) {
            EXPECT_NE(attempt.report(), "");
        }
    };
    EXPECT_GT(eachAllocationFails("Raise", raises), 0);
}

TEST(MemoryOfErrors, AFailedRecordIsThrownWithItsCode) {
    const auto throws = [](tAttempt& attempt) {
        StatusRecord record;
        RaiseInto(record, -52006, {"constant", site, nullptr});
        attempt.operate([&] { zuerr::ThrowIfFailed(record); });
        EXPECT_EQ(attempt.code(), -52006);
        EXPECT_NE(attempt.report(), "") << "the record had it already";
        EXPECT_EQ(record.code, 0);
        EXPECT_EQ(record.json, nullptr);
    };
    eachAllocationFails("ThrowIfFailed", throws);
}

TEST(MemoryOfErrors, AFailedPlatformStatusIsThrownWithItsCode) {
    const auto throws = [](tAttempt& attempt) {
        PlatformStatus status;
        RaiseInto(status, -52005, zuerr::hostComponent, site);
        attempt.operate([&] { zuerr::ThrowIfFailed(status); });
        EXPECT_EQ(attempt.code(), -52005);
        EXPECT_EQ(status.code, 0);
    };
    EXPECT_GT(eachAllocationFails("ThrowIfFailed, platform status", throws), 0);
}

TEST(MemoryOfErrors, ABlockThatCannotGrowStaysAndTheRecordSaysMinus52000) {
    const auto grows = [](tAttempt& attempt) {
        StatusRecord status;
        zuerr::WideBuffer buffer;
        buffer.resize(4, status);
        *buffer.data() = 7;
        attempt.operate([&] { buffer.resize(100'000, status); });
        EXPECT_EQ(*buffer.data(), 7);
        EXPECT_EQ(buffer.size(), attempt.struck() ? 4U : 100'000U);
        EXPECT_EQ(status.code, attempt.struck() ? -52000 : 0);
        if (status.json != nullptr) {
            EXPECT_TRUE(report::wellLaidOut(status));
        }
        EXPECT_EQ(attempt.code(), 0);
    };
    EXPECT_GT(eachAllocationFails("Buffer", grows), 0);
}

}  // namespace
