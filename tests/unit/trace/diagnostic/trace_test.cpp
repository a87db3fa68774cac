// The trace entry point as a diagnostic build has it, with a mask that lets libraries and errors through.
#include "trace/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/debugger.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

static_assert(nTrace::enabled && nTrace::mask == (nTrace::libraries | nTrace::errors));

TEST(DiagnosticTrace, HandsOneLineThatNamesItsPlaceToTheDebugger) {
    const std::string line = std::to_string(__LINE__ + 1);
    const std::string output = debuggerOutput([] { nTrace::trace(nTrace::errors, "%s: %d\n", "Exception", -52008); });
    EXPECT_THAT(output, StartsWith("[oteService|"));
    EXPECT_THAT(output, EndsWith("trace/diagnostic/trace_test.cpp|00" + line + "] Exception: -52008\n"));
}

TEST(DiagnosticTrace, WritesNothingOfACategoryThatTheMaskHoldsBack) {
    EXPECT_THAT(debuggerOutput([] {
                    nTrace::trace(nTrace::descriptions, "text");
                    nTrace::trace(~nTrace::mask, "text");
                    nTrace::trace(0, "text");
                }),
                IsEmpty());
}

TEST(DiagnosticTrace, WritesALineThatHasOneCategoryOfTheMask) {
    EXPECT_THAT(debuggerOutput([] { nTrace::trace(nTrace::descriptions | nTrace::errors, "text"); }),
                EndsWith("] text"));
}

}  // namespace
