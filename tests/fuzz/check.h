#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program, which the fuzzer takes for a finding, when something is not as expected.
inline void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not as expected: %s\n", what);
    std::abort();
}
