#include "err/Exception.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/exceptions.h"
#include "tests/support/report.h"

namespace {

using support::caughtCode;
using support::caughtReport;
using support::whileUnwinding;
using testing::ElementsAre;
using testing::StrEq;
using zuerr::CurrentExceptionCode;
using zuerr::Exception;
using zuerr::ExceptionBase;
using zuerr::ExceptionIsPropagating;
using zuerr::PlatformStatus;
using zuerr::Raise;
using zuerr::StatusRecord;
using zuerr::ThrowIfFailed;

constexpr zuerr::RaiseReport osFault{zuerr::osFault, {".\\source\\tService", 217}};
constexpr zuerr::RaiseReport fileAndLine{nullptr, {"a", 1}, nullptr};

/// A buffer manager other than the default one.
bool ownManager(StatusRecord& record, std::uint32_t capacity) noexcept {
    return StatusRecord::reallocJsonDefault(record, capacity);
}

// The classes

TEST(Exception, IsVirtuallyBothAnExceptionBaseAndAStandardException) {
    EXPECT_TRUE((std::is_base_of_v<ExceptionBase, Exception>));
    EXPECT_TRUE((std::is_base_of_v<std::exception, Exception>));
    EXPECT_FALSE((std::is_base_of_v<std::exception, ExceptionBase>));
    // A class with both as its own virtual bases still has only one of each.
    struct Joined : Exception, virtual ExceptionBase, virtual std::exception {};
    Joined joined;
    EXPECT_EQ(static_cast<ExceptionBase*>(&joined), static_cast<ExceptionBase*>(static_cast<Exception*>(&joined)));
}

TEST(Exception, ReturnsItsReportFromWhatAndFromTheBasesAccessor) {
    Exception exception;
    EXPECT_EQ(exception.report(), nullptr);
    EXPECT_THAT(exception.what(), StrEq("{}"));
    RaiseInto(exception.record, -52008, osFault);
    EXPECT_EQ(static_cast<const std::exception&>(exception).what(), exception.record.json);
    EXPECT_EQ(static_cast<const ExceptionBase&>(exception).report(), exception.record.json);
}

TEST(Exception, MovesItsReportIntoACopy) {
    Exception original;
    RaiseInto(original.record, -52008, osFault);
    const char* const text = original.record.json;
    const Exception copy(original);
    EXPECT_EQ(copy.record.code, -52008);
    EXPECT_EQ(copy.what(), text);
    EXPECT_EQ(original.record.code, -52008);
    EXPECT_EQ(original.report(), nullptr);
}

TEST(Exception, FreesItsReportThroughTheRecordsManager) {
    static std::vector<std::uint32_t> requests;
    {
        Exception exception;
        exception.record.reallocJson = [](StatusRecord& record, std::uint32_t capacity) noexcept {
            requests.push_back(capacity);
            return StatusRecord::reallocJsonDefault(record, capacity);
        };
    }
    EXPECT_THAT(requests, ElementsAre(0));
}

TEST(Exception, IsDestroyedCompletelyThroughItsBase) {
    auto* const exception = new Exception;
    RaiseInto(exception->record, -1, osFault);
    delete static_cast<ExceptionBase*>(exception);  // a leak checker would notice
}

// Raise

TEST(ExceptionRaise, ThrowsTheCodeWithItsReport) {
    EXPECT_EQ(caughtReport([] { Raise(osFault); }),
              R"(-52008 {"error_constant":"zukesterr_osFault","file":".\\source\\tService",)"
              R"("line":217,"component":"zuZiptraRemoteService"})");
    EXPECT_EQ(caughtReport([] { Raise(osFault, -7); }).substr(0, 3), "-7 ");
}

TEST(ExceptionRaise, OmitsAConstantOrComponentThatIsNull) {
    EXPECT_EQ(caughtReport([] { Raise(fileAndLine, -7); }), R"(-7 {"file":"a","line":1})");
}

TEST(ExceptionRaise, AcceptsEveryLine) {
    for (const std::int32_t line : {std::numeric_limits<std::int32_t>::min(), -1, 0, 9, 10, 2'147'483'647}) {
        EXPECT_EQ(caughtReport([&] {
                      Raise({nullptr, {"a", line}, nullptr}, -7);
                  }),
                  R"(-7 {"file":"a","line":)" + std::to_string(line) + "}");
    }
}

TEST(ExceptionRaise, AcceptsTextsKnownOnlyAtRunTime) {
    const std::string constant = "con\"stant";
    const std::string file = "C:\\Ger\xC3\xA4t\n";
    const std::string component(5, 'c');
    EXPECT_EQ(caughtReport([&] {
                  Raise({constant.c_str(), {file.c_str(), 1}, component.c_str()}, -7);
              }),
              R"(-7 {"error_constant":"con\"stant","file":"C:\\Ger)"
              "\xC3\xA4t"
              R"(\n","line":1,"component":"ccccc"})");
}

TEST(ExceptionRaise, KeepsAPathOf300CharactersInOneBufferOf512Bytes) {
    const std::string file(300, 'x');
    try {
        Raise({zuerr::osFault, {file.c_str(), 1}});
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.record.capacity, 512U);
        EXPECT_EQ(report::parsed(exception.what())["file"], file);
        EXPECT_EQ(report::parsed(exception.what()).size(), 4U);
    }
}

TEST(ExceptionRaise, ThrowsTheCodeWhenThereIsNoMemoryForItsReport) {
    std::string caught;
    // The runtime's memory for the thrown object is smaller than this.
    caught.reserve(100);
    caught = caughtReport([] { allocations::refused(512, [] { Raise(osFault); }); });
    EXPECT_EQ(caught, "-52008 {}");
}

TEST(ExceptionRaise, ThrowsAnExceptionThatOutlivesAPointerToIt) {
    std::exception_ptr kept;
    try {
        Raise(osFault);
    } catch (...) {
        kept = std::current_exception();
    }
    for (int i = 0; i < 2; ++i) EXPECT_EQ(caughtCode([&] { std::rethrow_exception(kept); }), -52008);
}

// ThrowIfFailed

TEST(ExceptionThrowIfFailed, ThrowsTheRecordsErrorWithItsReportAndClearsTheRecord) {
    StatusRecord record;
    RaiseInto(record, -52008, fileAndLine);
    const char* const text = record.json;
    try {
        ThrowIfFailed(record);
        FAIL() << "nothing thrown";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.record.code, -52008);
        EXPECT_EQ(exception.what(), text);
    }
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ExceptionThrowIfFailed, ClearsTheRecordWithoutThrowingForSuccessAndForAWarning) {
    for (const std::int32_t code : {0, 5}) {
        StatusRecord record;
        RaiseInto(record, code, fileAndLine);
        EXPECT_NO_THROW(ThrowIfFailed(record));
        EXPECT_EQ(record.code, 0);
        EXPECT_EQ(record.json, nullptr);
    }
}

TEST(ExceptionThrowIfFailed, ClearsTheRecordWithoutThrowingWhileAnExceptionPropagates) {
    StatusRecord record;
    RaiseInto(record, -52008, fileAndLine);
    whileUnwinding([&] { ThrowIfFailed(record); });
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ExceptionThrowIfFailed, ThrowsInAHandler) {
    StatusRecord record;
    record.code = -1;
    try {
        throw std::runtime_error("handled");
    } catch (const std::runtime_error&) {
        EXPECT_THROW(ThrowIfFailed(record), Exception);
    }
}

TEST(ExceptionThrowIfFailed, CopiesTheReportOfARecordWithItsOwnManager) {
    StatusRecord record;
    record.reallocJson = ownManager;
    RaiseInto(record, -1, fileAndLine);
    EXPECT_EQ(caughtReport([&] { ThrowIfFailed(record); }), R"(-1 {"file":"a","line":1})");
    EXPECT_EQ(record.json, nullptr);
}

TEST(ExceptionThrowIfFailed, ThrowsAPlatformStatusConvertedAndClearsIt) {
    PlatformStatus status;
    RaiseInto(status, -52008, "quarks", {"a", 12});
    EXPECT_EQ(caughtReport([&] { ThrowIfFailed(status); }), R"(-52008 {"file":"a","line":12,"component":"quarks"})");
    EXPECT_EQ(status.code, 0);
    EXPECT_THAT(status.file.data(), StrEq(""));
}

TEST(ExceptionThrowIfFailed, ClearsAPlatformStatusWithoutThrowingForSuccessAndForAWarningAndKeepsItsSize) {
    for (const std::int32_t code : {0, 3}) {
        PlatformStatus status{.size = 8};
        RaiseInto(status, code, "quarks", {"a", 12});
        EXPECT_NO_THROW(ThrowIfFailed(status));
        EXPECT_EQ(status.code, 0);
        EXPECT_EQ(status.size, 8U);
    }
}

// ExceptionIsPropagating

TEST(ExceptionIsPropagating, IsTrueOnlyWhileTheStackUnwinds) {
    EXPECT_FALSE(ExceptionIsPropagating());
    whileUnwinding([] { EXPECT_TRUE(ExceptionIsPropagating()); });
    try {
        throw std::runtime_error("handled");
    } catch (const std::runtime_error&) {
        EXPECT_FALSE(ExceptionIsPropagating());
    }
    EXPECT_FALSE(ExceptionIsPropagating());
}

TEST(ExceptionIsPropagating, IsNotChangedByForeignCallsThatThrowNothingOrThrowInOurOwnRuntime) {
    for (int i = 0; i < 3; ++i) {
        const zuerr::ForeignCallGuard call;
        EXPECT_EQ(caughtCode([] { throw std::runtime_error("ours"); }), -52003);
        EXPECT_FALSE(ExceptionIsPropagating());
    }
    EXPECT_EQ(caughtCode([] {
                  const zuerr::ForeignCallGuard call;
                  throw std::runtime_error("through the guard");
              }),
              -52003);
    EXPECT_FALSE(ExceptionIsPropagating());
    whileUnwinding([] { EXPECT_TRUE(ExceptionIsPropagating()); });
}

// CurrentExceptionCode

TEST(CurrentExceptionCode, DependsOnTheTypeOfTheException) {
    EXPECT_EQ(caughtCode([] { throw std::bad_alloc(); }), -52000);
    EXPECT_EQ(caughtCode([] { throw std::bad_array_new_length(); }), -52000);
    EXPECT_EQ(caughtCode([] { Raise(osFault); }), -52008);
    EXPECT_EQ(caughtCode([] { Raise(osFault, 5); }), 5);
    EXPECT_EQ(caughtCode([] { throw std::runtime_error("x"); }), -52003);
    EXPECT_EQ(caughtCode([] { throw std::exception(); }), -52003);
    EXPECT_EQ(caughtCode([] { throw std::bad_cast(); }), -52003);
    EXPECT_EQ(caughtCode([] {
                  ExceptionBase base;
                  base.record.code = -3;
                  throw ExceptionBase(base);
              }),
              -3);
}

TEST(CurrentExceptionCode, ChecksForBadAllocFirst) {
    struct Both : std::bad_alloc, ExceptionBase {};
    EXPECT_EQ(caughtCode([] { throw Both(); }), -52000);
}

TEST(CurrentExceptionCode, RethrowsAnExceptionOfAnyOtherType) {
    EXPECT_THROW(caughtCode([] { throw 42; }), int);
    EXPECT_FALSE(ExceptionIsPropagating());
}

TEST(CurrentExceptionCode, LeavesTheHandledExceptionUnchanged) {
    try {
        Raise(osFault);
    } catch (const Exception& exception) {
        const std::string before = exception.what();
        EXPECT_EQ(CurrentExceptionCode(), -52008);
        EXPECT_EQ(CurrentExceptionCode(), -52008);
        EXPECT_EQ(exception.what(), before);
    }
}

}  // namespace
