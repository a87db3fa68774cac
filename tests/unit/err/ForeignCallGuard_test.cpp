// A real library with its own C++ runtime throws here. See plugins/throwing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <thread>

#include "err/Exception.h"
#include "quarks/library.h"
#include "tests/support/exceptions.h"
#include "tests/support/plugins.h"

namespace {

using support::whileUnwinding;
using testing::StrEq;
using zuerr::ExceptionIsPropagating;
using zuerr::ForeignCallGuard;
using zuerr::StatusRecord;

class ForeignCallGuardTest : public testing::Test {
protected:
    using tEntry = void (*)();

    ForeignCallGuardTest() : library_(nLibrary::load(support::pluginPath("throwing").c_str(), osError_)) {}
    void TearDown() override { nLibrary::unload(library_, osError_); }

    template <class tFunction = tEntry>
    tFunction entry(const char* name) {
        void* const address = nLibrary::symbol(library_, name, osError_);
        EXPECT_NE(address, nullptr) << name << ": error " << osError_;
        return reinterpret_cast<tFunction>(address);
    }

    /// Calls the entry as the host calls a plug-in.
    static std::int32_t codeOf(tEntry entry) {
        const ForeignCallGuard guard;
        return support::caughtCode(entry);
    }

    /// Returns whether ThrowIfFailed throws, as it must while nothing is propagating. While something is propagating
    /// it must not: the program would end here.
    static bool failuresAreThrown() {
        const auto throwFailure = [] {
            StatusRecord failed;
            failed.code = -1;
            zuerr::ThrowIfFailed(failed);
        };
        whileUnwinding(throwFailure);
        return support::caughtCode(throwFailure) == -1;
    }

private:
    std::uint32_t osError_ = 0;
    nLibrary::tHandle library_;
};

TEST_F(ForeignCallGuardTest, IsNeededBecauseOurRuntimeDoesNotCountForeignThrows) {
    const ForeignCallGuard guard;
    const int before = std::uncaught_exceptions();
    EXPECT_THROW(entry("ThrowRuntimeError")(), std::runtime_error);
    EXPECT_EQ(std::uncaught_exceptions(), before - 1);
}

TEST_F(ForeignCallGuardTest, KeepsPropagationCorrectAfterAnyNumberOfForeignExceptions) {
    const std::pair<const char*, std::int32_t> throwers[] = {
        {"ThrowRuntimeError", -52003}, {"ThrowBadAlloc", -52000}, {"ThrowOsFault", -52008}};
    for (const auto& [name, code] : throwers) {
        for (int i = 0; i < 300; ++i) {
            ASSERT_EQ(codeOf(entry(name)), code);
            ASSERT_FALSE(ExceptionIsPropagating());
            ASSERT_TRUE(failuresAreThrown());
        }
    }
}

TEST_F(ForeignCallGuardTest, CountsNothingForAnExceptionThatItsOwnLibraryCatches) {
    const auto catcher = entry<std::int32_t (*)()>("CatchOwnOsFault");
    const int before = std::uncaught_exceptions();
    {
        const ForeignCallGuard guard;
        EXPECT_EQ(catcher(), -52008);
    }
    EXPECT_EQ(std::uncaught_exceptions(), before);
    EXPECT_TRUE(failuresAreThrown());
}

TEST_F(ForeignCallGuardTest, LeavesOurOwnExceptionPropagating) {
    whileUnwinding([thrower = entry("ThrowOsFault")] {
        EXPECT_TRUE(ExceptionIsPropagating());
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(codeOf(thrower), -52008);
            EXPECT_TRUE(ExceptionIsPropagating());
        }
    });
    EXPECT_TRUE(failuresAreThrown());
}

TEST_F(ForeignCallGuardTest, CountsAnExceptionOnceUnderNestedGuards) {
    {
        const ForeignCallGuard outer;
        {
            const ForeignCallGuard inner;
            EXPECT_EQ(codeOf(entry("ThrowRuntimeError")), -52003);
        }
        EXPECT_FALSE(ExceptionIsPropagating());
    }
    EXPECT_FALSE(ExceptionIsPropagating());
    EXPECT_TRUE(failuresAreThrown());
}

TEST_F(ForeignCallGuardTest, CountsForEachThreadSeparately) {
    std::thread([thrower = entry("ThrowRuntimeError")] {
        EXPECT_EQ(codeOf(thrower), -52003);
        EXPECT_TRUE(failuresAreThrown());
    }).join();
    EXPECT_TRUE(failuresAreThrown());
}

TEST_F(ForeignCallGuardTest, AllowsCopyingAForeignReportIntoOurRecord) {
    const ForeignCallGuard guard;
    StatusRecord record;
    try {
        entry("ThrowOsFault")();
    } catch (const zuerr::ExceptionBase& exception) {
        // The report has another buffer manager, so it is copied, not moved.
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
