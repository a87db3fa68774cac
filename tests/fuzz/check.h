#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program if the condition is false, which the fuzzer reports as a finding.
inline void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not as expected: %s\n", what);
    std::abort();
}
