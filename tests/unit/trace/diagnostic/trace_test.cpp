// The trace entry point of a diagnostic build.
#include "trace/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/trace/diagnostic/traced.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

static_assert(nTrace::enabled);

TEST(nTraceDiagnostic, WritesOneLineThatNamesItsSiteToTheDebugger) {
    const std::string line = std::to_string(__LINE__ + 1);
    const auto trace = [] { nTrace::trace(nTrace::errors, "%s: %d\n", "Exception", -52008); };
    const std::string output = traced(nTrace::errors, trace);
    EXPECT_THAT(output, StartsWith("[oteService|"));
    EXPECT_THAT(output, EndsWith("trace/diagnostic/trace_test.cpp|00" + line + "] Exception: -52008\n"));
}

TEST(nTraceDiagnostic, StartsWithTheMaskOfTheBuild) { EXPECT_EQ(nTrace::gMask, 0x5000U); }

TEST(nTraceDiagnostic, WritesALineWithAnyCategoryOfTheMask) {
    EXPECT_THAT(debuggerOutput([] { nTrace::trace(nTrace::descriptions | nTrace::errors, "text"); }),
                EndsWith("] text"));
    EXPECT_THAT(debuggerOutput([] {
                    nTrace::trace(nTrace::descriptions, "text");
                    nTrace::trace(~nTrace::gMask, "text");
                    nTrace::trace(0, "text");
                }),
                IsEmpty());
}

}  // namespace
