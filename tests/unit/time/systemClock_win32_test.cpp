#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/imports_win32.h"
#include "time/clock.h"
#include "time/systemClock.h"

namespace {

class systemClockCalls : public testing::Test {
protected:
    /// Immediately at the end of a test: the test framework's own stopwatch queries the counter frequency.
    void TearDown() override {
        imports::ImportBase::restoreAll();
        nTime::gClockSettings = {};
    }

    BOOL succeeds_ = TRUE;
    DWORD increment_ = 156'250;
    std::string calls_;

    void scriptIncrement() {
        imports::GetSystemTimeAdjustment.replace([this](PDWORD adjustment, PDWORD reported, PBOOL disabled) -> BOOL {
            calls_ += "increment ";
            // The adjustment differs on a machine whose clock is being slowed down.
            *adjustment = increment_ / 2;
            *reported = increment_;
            *disabled = FALSE;
            return succeeds_;
        });
    }

    void scriptFrequency(LONGLONG frequency) {
        imports::QueryPerformanceFrequency.replace([=, this](LARGE_INTEGER* reported) -> BOOL {
            calls_ += "frequency ";
            reported->QuadPart = frequency;
            return TRUE;
        });
    }
};

TEST_F(systemClockCalls, ReturnTheReportedIncrementOrZeroOnFailure) {
    scriptIncrement();
    EXPECT_EQ(nTime::timeIncrement100ns(), 156'250U);
    succeeds_ = FALSE;
    EXPECT_EQ(nTime::timeIncrement100ns(), 0U);
}

TEST_F(systemClockCalls, ReturnTheTickCountIn64Bits) {
    imports::GetTickCount64.replace([] { return ULONGLONG{0xFEDCBA9876543210}; });
    EXPECT_EQ(nTime::uptimeMs(), 0xFEDCBA9876543210);
}

TEST_F(systemClockCalls, ReadTheIncrementFirstAndThenTheFrequencyOnInitialisation) {
    scriptIncrement();
    scriptFrequency(10'000'000);
    nTime::InitialiseClock();
    EXPECT_EQ(calls_, "increment frequency ");
    EXPECT_EQ(nTime::gClockSettings.tickLength, 15'625'000U);
    EXPECT_EQ(nTime::gClockSettings.counterPeriod, 100'000U);
}

TEST_F(systemClockCalls, ReadTheTickCountFirstAndThenTheIncrementForEachReading) {
    scriptIncrement();
    imports::GetTickCount64.replace([this] {
        calls_ += "count ";
        return ULONGLONG{1000};
    });
    EXPECT_EQ(nTime::NowTicks(), 64U);
    EXPECT_EQ(calls_, "count increment ");
}

}  // namespace
