#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/imports_win32.h"
#include "time/clock.h"
#include "time/stopwatch.h"

namespace {

using nTime::gClockSettings;
using nTime::NowTicks;
using testing::InSequence;
using testing::MockFunction;

constexpr DWORD usualIncrement = 156'250;  // 15.625 ms

void setIncrement(DWORD increment) {
    imports::GetSystemTimeAdjustment.replace([=](PDWORD adjustment, PDWORD reported, PBOOL disabled) -> BOOL {
        // The adjustment is another number on a machine whose clock is being slowed down.
        *adjustment = increment / 2;
        *reported = increment;
        *disabled = FALSE;
        return TRUE;
    });
}

void setCounterFrequency(LONGLONG frequency) {
    imports::QueryPerformanceFrequency.replace([=](LARGE_INTEGER* reported) -> BOOL {
        reported->QuadPart = frequency;
        return TRUE;
    });
}

/// The tick counter stands at `milliseconds` until the test moves it.
void setTickCount(const ULONGLONG& milliseconds) {
    imports::GetTickCount64.replace([&] { return milliseconds; });
}

class ClockCalls : public testing::Test {
protected:
    ClockCalls() {
        setIncrement(usualIncrement);
        setCounterFrequency(10'000'000);
        setTickCount(milliseconds);
        gClockSettings = {};
    }
    ~ClockCalls() override {
        // At once: the test framework's own stopwatch asks for the counter frequency when the test ends.
        imports::ImportBase::restoreAll();
        gClockSettings = {};
    }

    ULONGLONG milliseconds = 0;
};

TEST_F(ClockCalls, GiveOneTickForOneMillisecondAndSixtyFourForASecond) {
    milliseconds = 1;
    EXPECT_EQ(NowTicks(), 1U);
    milliseconds = 1000;
    EXPECT_EQ(NowTicks(), 64U);
}

TEST_F(ClockCalls, ThatFailForAMomentDoNotDisturbADurationThatIsBeingMeasured) {
    setIncrement(100'000);
    milliseconds = 1'000'000;
    const nTime::tStopwatch stopwatch;
    milliseconds += 50;
    imports::GetSystemTimeAdjustment.replace([](auto...) { return FALSE; });
    EXPECT_EQ(stopwatch.elapsedMs(), 50U);
}

TEST_F(ClockCalls, FillTheSettingsOnInitialisation) {
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.tickLength, 15'625'000U);
    EXPECT_EQ(gClockSettings.counterPeriod, 100'000U);
    EXPECT_TRUE(gClockSettings.initialised);
}

TEST_F(ClockCalls, TruncateTheCounterPeriod) {
    setCounterFrequency(3'579'545);
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.counterPeriod, 279'365U);
}

TEST_F(ClockCalls, ComputeTheTickLengthOfTheSettingsIn64Bits) {
    setIncrement(0xFFFFFFFF);
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.tickLength, 429'496'729'500U);
}

TEST_F(ClockCalls, AskForTheIncrementFirstAndTheFrequencyThen) {
    MockFunction<void(const char*)> call;
    {
        const InSequence inSequence;
        EXPECT_CALL(call, Call(testing::StrEq("GetSystemTimeAdjustment")));
        EXPECT_CALL(call, Call(testing::StrEq("QueryPerformanceFrequency")));
    }
    imports::GetSystemTimeAdjustment.replace([&](PDWORD, PDWORD increment, PBOOL) -> BOOL {
        call.Call("GetSystemTimeAdjustment");
        *increment = usualIncrement;
        return TRUE;
    });
    imports::QueryPerformanceFrequency.replace([&](LARGE_INTEGER* frequency) -> BOOL {
        call.Call("QueryPerformanceFrequency");
        frequency->QuadPart = 1;
        return TRUE;
    });
    nTime::InitialiseClock();
}

TEST_F(ClockCalls, AskForTheIncrementAgainAtEachReading) {
    milliseconds = 1000;
    EXPECT_EQ(NowTicks(), 64U);
    setIncrement(10'000);
    EXPECT_EQ(NowTicks(), 1000U);
}

TEST_F(ClockCalls, TakeTheUsualIncrementWhenTheSystemTellsNone) {
    milliseconds = 1000;
    setIncrement(0);
    EXPECT_EQ(NowTicks(), 64U);
    imports::GetSystemTimeAdjustment.replace([](PDWORD, PDWORD, PBOOL) -> BOOL { return FALSE; });
    EXPECT_EQ(NowTicks(), 64U);
    nTime::InitialiseClock();
    EXPECT_EQ(gClockSettings.tickLength, 15'625'000U);
}

/// Instead of the system's crash report.
LONG CALLBACK endWithTheExceptionsCode(EXCEPTION_POINTERS* exception) {
    TerminateProcess(GetCurrentProcess(), exception->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

/// By this name it runs before all others: one of them leaves a process that the test's child has no access to.
using ClockCallsDeathTest = ClockCalls;

TEST_F(ClockCallsDeathTest, EndTheProcessForACounterFrequencyOfZero) {
    setCounterFrequency(0);
    EXPECT_EXIT(
        {
            SetUnhandledExceptionFilter(endWithTheExceptionsCode);
            nTime::InitialiseClock();
        },
        testing::ExitedWithCode(static_cast<int>(EXCEPTION_INT_DIVIDE_BY_ZERO)), "");
}

TEST_F(ClockCalls, MeasureWholeTicksTruncatedToMilliseconds) {
    milliseconds = 1000;
    const nTime::tStopwatch stopwatch;
    EXPECT_EQ(stopwatch.elapsedMs(), 0U);
    milliseconds = 1001;  // the tick that has begun: 15.625 ms
    EXPECT_EQ(stopwatch.elapsedMs(), 15U);
    milliseconds = 1015;
    EXPECT_EQ(stopwatch.elapsedMs(), 15U);
    milliseconds = 1016;
    EXPECT_EQ(stopwatch.elapsedMs(), 31U);
    milliseconds = 2000;
    EXPECT_EQ(stopwatch.elapsedMs(), 1000U);
}

TEST_F(ClockCalls, MeasureNothingWithinOneTick) {
    milliseconds = 1001;
    const nTime::tStopwatch stopwatch;
    milliseconds = 1015;
    EXPECT_EQ(stopwatch.elapsedMs(), 0U);
}

TEST_F(ClockCalls, MeasureWeeks) {
    milliseconds = 5;
    const nTime::tStopwatch stopwatch;
    milliseconds += 30ULL * 24 * 60 * 60 * 1000;
    EXPECT_EQ(stopwatch.elapsedMs(), 30ULL * 24 * 60 * 60 * 1000);
}

}  // namespace
