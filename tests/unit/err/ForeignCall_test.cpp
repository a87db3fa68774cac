// A real library with a C++ runtime of its own throws here. See plugins/throwing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <thread>

#include "err/Exception.h"
#include "quarks/library.h"
#include "tests/support/plugins.h"

namespace {

using testing::StrEq;
using zuerr::CurrentExceptionCode;
using zuerr::ExceptionIsPropagating;
using zuerr::ForeignCall;
using zuerr::StatusRecord;

class ForeignExceptions : public testing::Test {
protected:
    using tEntry = void (*)();

    ForeignExceptions() : library_(nLibrary::load(support::pluginPath("throwing").c_str(), osError_)) {}
    ~ForeignExceptions() override { nLibrary::unload(library_, osError_); }

    template <class tFunction = tEntry>
    tFunction entry(const char* name) {
        void* const address = nLibrary::symbol(library_, name, osError_);
        EXPECT_NE(address, nullptr) << name << ": error " << osError_;
        return reinterpret_cast<tFunction>(address);
    }

    /// Calls it as a plug-in is to be called.
    static std::int32_t codeOf(tEntry entry) {
        const ForeignCall guard;
        try {
            entry();
        } catch (...) {
            return CurrentExceptionCode();
        }
        return 0;
    }

    /// Whether ThrowIfFailed throws where nothing is propagating, and does not where something is.
    static testing::AssertionResult failuresAreThrownRightly() {
        StatusRecord failed;
        failed.code = -1;
        bool thrown = false;
        try {
            zuerr::ThrowIfFailed(failed);
        } catch (const zuerr::Exception&) {
            thrown = true;
        }
        if (!thrown) return testing::AssertionFailure() << "a failure is not thrown";

        struct CleanUp {
            ~CleanUp() {
                StatusRecord record;
                record.code = -2;
                zuerr::ThrowIfFailed(record);  // were it to throw, the program would end here
            }
        };
        try {
            const CleanUp cleanUp;
            throw std::runtime_error("first");
        } catch (const std::runtime_error&) {
            return testing::AssertionSuccess();
        }
    }

private:
    std::uint32_t osError_ = 0;
    nLibrary::tHandle library_;
};

TEST_F(ForeignExceptions, TakeFromOurRuntimesCountWhatTheirThrowDidNotAddToIt) {
    const ForeignCall guard;
    const int before = std::uncaught_exceptions();
    EXPECT_THROW(entry("ThrowRuntimeError")(), std::runtime_error);
    EXPECT_EQ(std::uncaught_exceptions(), before - 1);
}

TEST_F(ForeignExceptions, HaveTheCodesOfOurOwn) {
    EXPECT_EQ(codeOf(entry("ThrowRuntimeError")), -52003);
    EXPECT_EQ(codeOf(entry("ThrowBadAlloc")), -52000);
    EXPECT_EQ(codeOf(entry("ThrowOsFault")), -52008);
}

TEST_F(ForeignExceptions, LeaveFailuresToBeThrownRightlyHoweverManyThereWere) {
    for (const char* name : {"ThrowRuntimeError", "ThrowBadAlloc", "ThrowOsFault"}) {
        const tEntry thrower = entry(name);
        for (int i = 0; i < 300; ++i) {
            codeOf(thrower);
            ASSERT_FALSE(ExceptionIsPropagating());
            ASSERT_TRUE(failuresAreThrownRightly());
        }
    }
}

TEST_F(ForeignExceptions, CaughtInTheirOwnLibraryTakeNothing) {
    const auto catcher = entry<std::int32_t (*)()>("CatchOwnOsFault");
    const int before = std::uncaught_exceptions();
    {
        const ForeignCall guard;
        EXPECT_EQ(catcher(), -52008);
    }
    EXPECT_EQ(std::uncaught_exceptions(), before);
    EXPECT_TRUE(failuresAreThrownRightly());
}

TEST_F(ForeignExceptions, HandledWhileOneOfOursPropagatesLeaveThatOnePropagating) {
    struct CleanUp {
        tEntry thrower;
        ~CleanUp() {
            EXPECT_TRUE(ExceptionIsPropagating());
            EXPECT_EQ(codeOf(thrower), -52008);
            EXPECT_TRUE(ExceptionIsPropagating());
            EXPECT_EQ(codeOf(thrower), -52008);
            EXPECT_TRUE(ExceptionIsPropagating());
        }
    };
    try {
        const CleanUp cleanUp{entry("ThrowOsFault")};
        throw std::runtime_error("ours");
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), StrEq("ours"));
    }
    EXPECT_TRUE(failuresAreThrownRightly());
}

TEST_F(ForeignExceptions, AreBookedOnceUnderNestedGuards) {
    {
        const ForeignCall outer;
        {
            const ForeignCall inner;
            EXPECT_EQ(codeOf(entry("ThrowRuntimeError")), -52003);
        }
        EXPECT_FALSE(ExceptionIsPropagating());
    }
    EXPECT_FALSE(ExceptionIsPropagating());
    EXPECT_TRUE(failuresAreThrownRightly());
}

TEST_F(ForeignExceptions, AreBookedOnTheirThread) {
    const tEntry thrower = entry("ThrowRuntimeError");
    std::thread other([thrower] {
        EXPECT_EQ(codeOf(thrower), -52003);
        EXPECT_TRUE(failuresAreThrownRightly());
    });
    other.join();
    EXPECT_TRUE(failuresAreThrownRightly());
}

TEST_F(ForeignExceptions, GiveTheirReportToARecordOfOurs) {
    const ForeignCall guard;
    StatusRecord record;
    try {
        entry("ThrowOsFault")();
    } catch (const zuerr::ExceptionBase& exception) {
        // The report was made by another buffer manager, so it is copied and not handed over.
        EXPECT_NE(exception.record.reallocJson, record.reallocJson);
        EXPECT_TRUE(Copy(record, exception.record));
        EXPECT_NE(exception.report(), nullptr);
        EXPECT_NE(exception.report(), record.json);
    }
    EXPECT_EQ(record.code, -52008);
    EXPECT_THAT(record.json, StrEq(R"({"error_constant":"zukesterr_osFault","file":"throwing","line":7,)"
                                   R"("component":"zuZiptraRemoteService"})"));
}

}  // namespace
