#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "tests/support/imports_win32.h"
#include "tool/interruption.h"

namespace {

/// Keeps the handlers that are set.
class nInterruptionWin32 : public testing::Test {
protected:
    void SetUp() override {
        imports::SetConsoleCtrlHandler.replace([this](PHANDLER_ROUTINE handler, BOOL add) {
            if (add != FALSE) handlers.push_back(handler);
            if (add == FALSE) std::erase(handlers, handler);
            return TRUE;
        });
    }
    void TearDown() override { imports::ImportBase::restoreAll(); }

    std::vector<PHANDLER_ROUTINE> handlers;
};

TEST_F(nInterruptionWin32, IsIgnoredDuringTheAction) {
    BOOL handled[3] = {};
    nInterruption::withhold([&] {
        ASSERT_EQ(handlers.size(), 1U);
        handled[0] = handlers[0](CTRL_C_EVENT);
        handled[1] = handlers[0](CTRL_BREAK_EVENT);
        handled[2] = handlers[0](CTRL_CLOSE_EVENT);
    });
    EXPECT_TRUE(handled[0]);
    EXPECT_TRUE(handled[1]);
    EXPECT_FALSE(handled[2]);
    EXPECT_TRUE(handlers.empty());
}

TEST_F(nInterruptionWin32, IsNotIgnoredAfterAnActionThatThrows) {
    EXPECT_THROW(nInterruption::withhold([] { throw std::runtime_error(""); }), std::runtime_error);
    EXPECT_TRUE(handlers.empty());
}

}  // namespace
