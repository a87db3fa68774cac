#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tests/support/allocations.h"

namespace sweep {

using allocations::tHowLong;

/// One attempt at an operation, in which a request for memory may be refused.
class tAttempt {
public:
    /// The nth request, counted from 1; 0: none.
    tAttempt(int nth, tHowLong howLong) : nth_(nth), howLong_(howLong) {}

    /// Runs the operation, once in an attempt. If an exception ends it, checks the exception's report.
    void operate(const std::function<void()>& operation);

    /// The code of the exception that ended the operation, or 0.
    [[nodiscard]] std::int32_t code() const { return code_; }
    /// The exception's report; empty if it has none.
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

/// Makes attempts at an operation in which each of its requests for memory is refused, alone and with all later ones.
/// An attempt prepares what it needs, operates, checks the result and frees everything, which is checked here.
/// Returns the number of requests that an undisturbed operation makes.
int eachAllocationFails(const char* operation, const std::function<void(tAttempt&)>& attempt);

}  // namespace sweep
