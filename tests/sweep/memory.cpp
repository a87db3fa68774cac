#include "tests/sweep/memory.h"

#include <gtest/gtest.h>

#include "err/Exception.h"
#include "tests/support/report.h"
#include "tests/support/statusRecord.h"
#include "tests/sweep/figures.h"

namespace sweep {
namespace {

const char* nameOf(tHowLong howLong) {
    return howLong == tHowLong::once ? "an allocation, once" : "an allocation, from then on";
}

}  // namespace

void tAttempt::operate(const std::function<void()>& operation) {
    allocations::startFailing(nth_, howLong_);
    try {
        operation();
        counts_ = allocations::stopFailing();
    } catch (...) {
        counts_ = allocations::stopFailing();
        describeFailure();
    }
}

/// Requires: called in a handler.
void tAttempt::describeFailure() {
    code_ = zuerr::CurrentExceptionCode();
    try {
        throw;
    } catch (const zuerr::ExceptionBase& exception) {
        if (exception.record.json == nullptr) return;
        EXPECT_TRUE(report::wellLaidOut(exception.record));
        report::parsed(exception.record.json);
        report_ = exception.record.json;
    } catch (const std::exception&) {
        // Has no report.
    }
}

int eachAllocationFails(const char* operation, const std::function<void(tAttempt&)>& attempt) {
    tAttempt undisturbed(0, tHowLong::once);
    attempt(undisturbed);  // for what is set up only once
    for (const tHowLong howLong : {tHowLong::once, tHowLong::forEver}) {
        bool struck = true;
        for (int nth = 1; struck; ++nth) {
            SCOPED_TRACE(std::string(operation) + ", " + nameOf(howLong) + ", request " + std::to_string(nth));
            const auto refused = [&] {
                tAttempt disturbed(nth, howLong);
                attempt(disturbed);
                return disturbed.counts().refused;
            };
            int faults = refused();
            // A library may keep memory after its first failure, but not after the second.
            if (allocations::held() > 0) faults = refused();
            EXPECT_EQ(allocations::held(), 0U) << "blocks are lost";
            struck = faults > 0;
            if (struck) count(nameOf(howLong), {.faults = faults, .leaks = allocations::held()});
        }
    }
    return undisturbed.counts().requests;
}

}  // namespace sweep
