#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/imports_win32.h"
#include "trace/debugger.h"
#include "trace/trace.h"

namespace {

using testing::ElementsAre;

TEST(debuggerCalls, PassOnALineUnchanged) {
    std::vector<std::string> lines;
    imports::OutputDebugStringA.replace([&](LPCSTR line) { lines.emplace_back(line); });
    nTrace::writeToDebugger("one\n");
    nTrace::writeToDebugger("%s");
    EXPECT_THAT(lines, ElementsAre("one\n", "%s"));
}

TEST(debuggerCalls, ReadTheThreadOncePerLineAndWriteTheLineWithOneCall) {
    std::string calls;
    imports::GetCurrentThreadId.replace([&] {
        calls += "thread ";
        return DWORD{1};
    });
    imports::OutputDebugStringA.replace([&](LPCSTR) { calls += "output "; });
    nTrace::writeLine({"a.cpp", "component", 1}, "text", nullptr);
    imports::ImportBase::restoreAll();
    EXPECT_EQ(calls, "thread output ");
}

TEST(debuggerCalls, ReturnTheSystemsThreadNumber) {
    imports::GetCurrentThreadId.replace([] { return DWORD{0xFEDCBA98}; });
    const std::uint32_t id = nTrace::currentThreadId();
    imports::ImportBase::restoreAll();
    EXPECT_EQ(id, 0xFEDCBA98);
}

}  // namespace
