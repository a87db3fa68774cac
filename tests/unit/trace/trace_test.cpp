#include "trace/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "err/Exception.h"
#include "tests/support/debugger.h"
#include "trace/debugger.h"

namespace {

using nTrace::Site;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr Site site{"source/tService.cpp", "zuZiptraRemoteService", 7};
constexpr const char* prefix = "[oteService|             source/tService.cpp|0007] ";

TEST(TraceLine, IsThePrefixAndTheFormattedText) {
    const std::string line = debuggerOutput([] { nTrace::writeLine(site, "%s %d of %u\n", "part", -1, 2U); });
    EXPECT_EQ(line, std::string(prefix) + "part -1 of 2\n");
}

TEST(TraceLine, IsCutWhereItsBufferEnds) {
    const std::string text(5000, 'x');
    const std::string line = debuggerOutput([&] { nTrace::writeLine(site, "%s\n", text.c_str()); });
    EXPECT_THAT(line, StartsWith(std::string(prefix) + "xxx"));
    EXPECT_THAT(line, EndsWith("xxx"));
    EXPECT_THAT(line, SizeIs(1023));
}

TEST(TraceLine, TakesNoFormatFromThePrefix) {
    const Site percent{"%s%n.cpp", "%d", 1};
    const std::string line = debuggerOutput([&] { nTrace::writeLine(percent, "text"); });
    EXPECT_EQ(line, "[        %d|                        %s%n.cpp|0001] text");
}

TEST(TraceThread, KeepsItsNumber) { EXPECT_EQ(nTrace::currentThreadId(), nTrace::currentThreadId()); }

// The delivered program. Diagnostic builds have tests of their own.

TEST(Trace, HandsNothingToTheDebugger) {
    if (nTrace::enabled) GTEST_SKIP() << "a diagnostic build";
    const std::string output = debuggerOutput([] {
        nTrace::trace(nTrace::errors, "Exception: %d\n", -52008);
        nTrace::trace(0xFFFFFFFF, "text");
        try {
            throw std::runtime_error("unexpected");
        } catch (...) {
            EXPECT_EQ(zuerr::CurrentExceptionCode(), -52003);
        }
    });
    EXPECT_THAT(output, IsEmpty());
}

}  // namespace
