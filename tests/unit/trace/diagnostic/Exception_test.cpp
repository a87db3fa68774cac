// What the conversion of a caught exception says in a diagnostic build.
#include "err/Exception.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "tests/support/debugger.h"
#include "trace/trace.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;

static_assert(nTrace::errors == 0x4000);

/// What is traced when this exception is caught and converted.
template <class Exception>
std::string traceOf(const Exception& exception) {
    return debuggerOutput([&] {
        try {
            throw Exception(exception);
        } catch (...) {
            static_cast<void>(zuerr::CurrentExceptionCode());
        }
    });
}

TEST(ExceptionTrace, TellsTheCodeOfTheProgramsOwn) {
    zuerr::Exception exception;
    exception.record.code = -52008;
    EXPECT_THAT(traceOf(exception), EndsWith("] Exception: -52008\n"));
}

TEST(ExceptionTrace, QuotesAnyOtherStandardException) {
    EXPECT_THAT(traceOf(std::runtime_error("50% of it")), EndsWith("] Unexpected exception: 50% of it\n"));
}

TEST(ExceptionTrace, IsSilentAboutMemoryThatRanOut) { EXPECT_THAT(traceOf(std::bad_alloc()), IsEmpty()); }

}  // namespace
