#include "err/Exception.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/report.h"

namespace {

using testing::ElementsAre;
using testing::StrEq;
using zuerr::CurrentExceptionCode;
using zuerr::Exception;
using zuerr::ExceptionBase;
using zuerr::ExceptionIsPropagating;
using zuerr::Raise;
using zuerr::RaiseInto;
using zuerr::StatusRecord;
using zuerr::ThrowIfFailed;

constexpr zuerr::RaiseSite site{".\\source\\tService", 217};

/// What CurrentExceptionCode gives in a catch-all handler around the action.
template <class Action>
std::int32_t codeOf(Action action) {
    try {
        action();
    } catch (...) {
        return CurrentExceptionCode();
    }
    return 0;
}

/// Does something while an exception unwinds the stack.
template <class Action>
void whileUnwinding(Action action) {
    struct Guard {
        Action action;
        ~Guard() { action(); }
    };
    try {
        const Guard guard{action};
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), StrEq("on its way"));
    }
}

// The classes

TEST(Exception, IsVirtuallyBothAnExceptionBaseAndAStandardException) {
    EXPECT_TRUE((std::is_base_of_v<ExceptionBase, Exception>));
    EXPECT_TRUE((std::is_base_of_v<std::exception, Exception>));
    EXPECT_FALSE((std::is_base_of_v<std::exception, ExceptionBase>));
    // A class with both as virtual bases of its own still has one of each.
    struct Joined : Exception, virtual ExceptionBase, virtual std::exception {};
    Joined joined;
    EXPECT_EQ(static_cast<ExceptionBase*>(&joined), static_cast<ExceptionBase*>(static_cast<Exception*>(&joined)));
}

TEST(Exception, GivesItsReportThroughWhatAndThroughTheBasesAccessor) {
    Exception exception;
    RaiseInto(exception.record, -52008, "zukesterr_osFault", site, nullptr);
    const std::exception& standard = exception;
    const ExceptionBase& base = exception;
    EXPECT_EQ(standard.what(), exception.record.json);
    EXPECT_EQ(base.report(), exception.record.json);
}

TEST(Exception, WithoutAReportGivesAnEmptyObjectAsItsText) {
    const Exception exception;
    EXPECT_EQ(exception.report(), nullptr);
    EXPECT_THAT(exception.what(), StrEq("{}"));
}

TEST(Exception, CopiedHandsItsReportToTheCopy) {
    Exception original;
    RaiseInto(original.record, -52008, "zukesterr_osFault", site, nullptr);
    const char* const text = original.record.json;
    const Exception copy(original);
    EXPECT_EQ(copy.record.code, -52008);
    EXPECT_EQ(copy.what(), text);
    EXPECT_EQ(original.record.code, -52008);
    EXPECT_EQ(original.report(), nullptr);
}

TEST(Exception, ReleasesItsReportThroughTheRecordsManager) {
    static std::vector<std::uint32_t> requests;
    {
        Exception exception;
        exception.record.code = -1;
        exception.record.reallocJson = [](StatusRecord& record, std::uint32_t capacity) {
            requests.push_back(capacity);
            return StatusRecord::reallocJsonDefault(record, capacity);
        };
    }
    EXPECT_THAT(requests, ElementsAre(0));
}

TEST(Exception, IsDestroyedWholeThroughItsBase) {
    auto* const exception = new Exception;
    RaiseInto(exception->record, -1, "constant", site, nullptr);
    delete static_cast<ExceptionBase*>(exception);  // a leak checker judges
}

// Raise

TEST(Raise, ThrowsTheCodeWithItsReport) {
    try {
        Raise({zuerr::osFault, site});
        FAIL() << "nothing thrown";
    } catch (const std::exception& exception) {
        EXPECT_THAT(exception.what(), StrEq(R"({"error_constant":"zukesterr_osFault","file":".\\source\\tService",)"
                                            R"("line":217,"component":"zuZiptraRemoteService"})"));
        const auto members = report::parsed(exception.what());
        EXPECT_EQ(members["file"], ".\\source\\tService");
        EXPECT_TRUE(members["line"].is_number_integer());
        EXPECT_EQ(dynamic_cast<const ExceptionBase&>(exception).record.code, -52008);
    }
}

TEST(Raise, LeavesOutAConstantOrComponentThatIsNotGiven) {
    try {
        Raise({nullptr, {"a", 1}, nullptr}, -7);
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.record.code, -7);
        EXPECT_THAT(exception.what(), StrEq(R"({"file":"a","line":1})"));
    }
}

TEST(Raise, ThrowsTheCodeWhenThereIsNoMemoryForItsReport) {
    std::int32_t code = 0;
    bool hasReport = true;
    try {
        // The language's own memory for the thrown object is below this.
        allocations::refused(512, [] { Raise({zuerr::osFault, site}); });
    } catch (const Exception& exception) {
        code = exception.record.code;
        hasReport = exception.report() != nullptr;
    }
    EXPECT_EQ(code, -52008);
    EXPECT_FALSE(hasReport);
}

TEST(Raise, ThrowsAnExceptionThatOutlivesAPointerToIt) {
    std::exception_ptr kept;
    try {
        Raise({zuerr::osFault, site});
    } catch (...) {
        kept = std::current_exception();
    }
    EXPECT_EQ(codeOf([&] { std::rethrow_exception(kept); }), -52008);
    EXPECT_EQ(codeOf([&] { std::rethrow_exception(kept); }), -52008);
}

// ThrowIfFailed

TEST(ThrowIfFailed, ThrowsWhatTheRecordHoldsAndClearsIt) {
    StatusRecord record;
    RaiseInto(record, -52008, "zukesterr_osFault", site, nullptr);
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

TEST(ThrowIfFailed, ThrowsNothingForSuccessOrAWarningAndClearsTheRecord) {
    StatusRecord record;
    EXPECT_NO_THROW(ThrowIfFailed(record));
    RaiseInto(record, 5, "warning", site, nullptr);
    EXPECT_NO_THROW(ThrowIfFailed(record));
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ThrowIfFailed, DoesNotThrowOverAPropagatingExceptionButClearsTheRecord) {
    StatusRecord record;
    RaiseInto(record, -52008, "zukesterr_osFault", site, nullptr);
    whileUnwinding([&] { ThrowIfFailed(record); });
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ThrowIfFailed, ThrowsInAHandler) {
    StatusRecord record;
    record.code = -1;
    try {
        throw std::runtime_error("handled");
    } catch (const std::runtime_error&) {
        EXPECT_THROW(ThrowIfFailed(record), Exception);
    }
}

TEST(ThrowIfFailed, CopiesTheReportOfARecordWithItsOwnManager) {
    StatusRecord record;
    record.reallocJson = [](StatusRecord& self, std::uint32_t capacity) {
        return StatusRecord::reallocJsonDefault(self, capacity);
    };
    RaiseInto(record, -1, nullptr, {"a", 1}, nullptr);
    try {
        ThrowIfFailed(record);
        FAIL() << "nothing thrown";
    } catch (const Exception& exception) {
        EXPECT_THAT(exception.what(), StrEq(R"({"file":"a","line":1})"));
        EXPECT_EQ(exception.record.reallocJson, &StatusRecord::reallocJsonDefault);
    }
    EXPECT_EQ(record.json, nullptr);
}

// ExceptionIsPropagating

TEST(ExceptionIsPropagating, IsTrueOnlyWhileTheStackIsUnwound) {
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
        const zuerr::ForeignCall call;
        EXPECT_EQ(codeOf([] { throw std::runtime_error("ours"); }), -52003);
        EXPECT_FALSE(ExceptionIsPropagating());
    }
    EXPECT_FALSE(ExceptionIsPropagating());
    try {
        const zuerr::ForeignCall call;
        throw std::runtime_error("through the guard");
    } catch (const std::runtime_error&) {
        EXPECT_FALSE(ExceptionIsPropagating());
    }
    EXPECT_FALSE(ExceptionIsPropagating());
    whileUnwinding([] { EXPECT_TRUE(ExceptionIsPropagating()); });
}

// CurrentExceptionCode

TEST(CurrentExceptionCode, IsMinus52000ForABadAlloc) {
    EXPECT_EQ(codeOf([] { throw std::bad_alloc(); }), -52000);
    EXPECT_EQ(codeOf([] { throw std::bad_array_new_length(); }), -52000);
}

TEST(CurrentExceptionCode, IsTheCodeOfTheProgramsOwnExceptions) {
    EXPECT_EQ(codeOf([] { Raise({zuerr::osFault, site}); }), -52008);
    EXPECT_EQ(codeOf([] { Raise({"warning", site, nullptr}, 5); }), 5);
    EXPECT_EQ(codeOf([] {
                  ExceptionBase base;
                  base.record.code = -3;
                  throw ExceptionBase(base);
              }),
              -3);
}

TEST(CurrentExceptionCode, IsMinus52003ForAnyOtherStandardException) {
    EXPECT_EQ(codeOf([] { throw std::runtime_error("x"); }), -52003);
    EXPECT_EQ(codeOf([] { throw std::exception(); }), -52003);
    EXPECT_EQ(codeOf([] { throw std::bad_cast(); }), -52003);
}

TEST(CurrentExceptionCode, AsksForBadAllocFirst) {
    struct Both : std::bad_alloc, ExceptionBase {};
    EXPECT_EQ(codeOf([] { throw Both(); }), -52000);
}

TEST(CurrentExceptionCode, LetsAnExceptionOfAnyOtherTypeThrough) {
    EXPECT_THROW(codeOf([] { throw 42; }), int);
    EXPECT_FALSE(ExceptionIsPropagating());
}

TEST(CurrentExceptionCode, LeavesTheHandledExceptionAsItIs) {
    try {
        Raise({zuerr::osFault, site});
    } catch (const Exception& exception) {
        const std::string before = exception.what();
        EXPECT_EQ(CurrentExceptionCode(), -52008);
        EXPECT_EQ(CurrentExceptionCode(), -52008);
        EXPECT_EQ(exception.what(), before);
    }
}

}  // namespace
