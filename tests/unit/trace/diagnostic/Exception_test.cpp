// The trace of the conversion of a caught exception in a diagnostic build.
#include "err/Exception.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "tests/support/exceptions.h"
#include "tests/unit/trace/diagnostic/traced.h"

namespace {

using support::caughtCode;
using testing::EndsWith;
using testing::IsEmpty;

static_assert(nTrace::errors == 0x4000);

TEST(ExceptionTrace, ShowsTheCodeOfTheProgramsOwnExceptions) {
    EXPECT_THAT(traced(nTrace::errors, [] { caughtCode([] {
                                                zuerr::Raise({"constant", {"a", 1}}, -52008);
                                            }); }),
                EndsWith("] Exception: -52008\n"));
}

TEST(ExceptionTrace, QuotesAnyOtherStandardException) {
    EXPECT_THAT(traced(nTrace::errors, [] { caughtCode([] { throw std::runtime_error("50% of it"); }); }),
                EndsWith("] Unexpected exception: 50% of it\n"));
}

TEST(ExceptionTrace, IsEmptyIfMemoryRanOut) {
    EXPECT_THAT(traced(nTrace::errors, [] { caughtCode([] { throw std::bad_alloc(); }); }), IsEmpty());
}

}  // namespace
