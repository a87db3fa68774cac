#include "trace/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <stdexcept>
#include <string>

#include "tests/support/debugger.h"
#include "tests/support/exceptions.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr nTrace::tSite site{"source/tService.cpp", "zuZiptraRemoteService", 7};
constexpr const char* prefix = "[oteService|             source/tService.cpp|0007] ";

[[gnu::format(printf, 2, 3)]] std::string lineOf(const nTrace::tSite& traceSite, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string line = debuggerOutput([&] { nTrace::writeLine(traceSite, format, arguments); });
    va_end(arguments);
    return line;
}

TEST(nTrace, WritesThePrefixAndTheFormattedText) {
    EXPECT_EQ(lineOf(site, "%s %d of %u\n", "part", -1, 2U), std::string(prefix) + "part -1 of 2\n");
}

TEST(nTrace, TruncatesALineAtTheEndOfItsBuffer) {
    const std::string text(5000, 'x');
    const std::string line = lineOf(site, "%s\n", text.c_str());
    EXPECT_THAT(line, StartsWith(std::string(prefix) + "xxx"));
    EXPECT_THAT(line, EndsWith("xxx"));
    EXPECT_THAT(line, SizeIs(1023));
}

TEST(nTrace, DoesNotTreatThePrefixAsAFormat) {
    EXPECT_EQ(lineOf({"%s%n.cpp", "%d", 1}, "text"), "[        %d|                        %s%n.cpp|0001] text");
}

// The shipped program. Diagnostic builds have their own tests.

TEST(nTrace, WritesNothingToTheDebugger) {
    if (nTrace::enabled) GTEST_SKIP() << "a diagnostic build";
    const std::string output = debuggerOutput([] {
        nTrace::trace(nTrace::errors, "Exception: %d\n", -52008);
        nTrace::trace(0xFFFFFFFF, "text");
        EXPECT_EQ(support::caughtCode([] { throw std::runtime_error("unexpected"); }), -52003);
    });
    EXPECT_THAT(output, IsEmpty());
}

}  // namespace
