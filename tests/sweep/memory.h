#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tests/support/allocations.h"

namespace sweep {

using allocations::tHowLong;

/// One try of an operation in which a request for memory may be refused.
class tAttempt {
public:
    /// The nth request, counted from 1; 0: none.
    tAttempt(int nth, tHowLong howLong) : nth_(nth), howLong_(howLong) {}

    /// Does what is swept. An exception ends it, and its report is looked at. Once in an attempt.
    void operate(const std::function<void()>& operation);

    /// Of the exception that ended the operation; 0 when none did.
    [[nodiscard]] std::int32_t code() const { return code_; }
    /// What the exception's report says; empty when it has none.
    [[nodiscard]] const std::string& report() const { return report_; }
    /// Whether a request has been refused.
    [[nodiscard]] bool struck() const { return counts_.refused > 0; }
    [[nodiscard]] bool once() const { return howLong_ == tHowLong::once; }
    [[nodiscard]] const allocations::tCounts& counts() const { return counts_; }

private:
    void describeFailure();

    int nth_;
    tHowLong howLong_;
    std::int32_t code_ = 0;
    std::string report_;
    allocations::tCounts counts_{0, 0};
};

/// Makes attempts until one goes through in which nothing was refused: each request for memory is refused once, and
/// then once more with all behind it. An attempt prepares what it needs, operates, looks at what has become of it, and
/// gives everything back, which is checked here. Gives the number of requests that an undisturbed operation makes.
int eachAllocationFails(const char* operation, const std::function<void(tAttempt&)>& attempt);

}  // namespace sweep
