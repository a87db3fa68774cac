#include "tests/endtoend/harness/starts.h"

#include <gtest/gtest.h>

#include "tests/endtoend/harness/figures.h"
#include "tests/endtoend/harness/system.h"

namespace endtoend {
namespace {

int starts = 0;
int repeatedStarts = 0;
int briefStarts = 0;
int repeatedBriefStarts = 0;

constexpr int briefAttempts = 5;

bool startsWithin(int attempts, DWORD pardoned, int& repeated, const std::function<BOOL()>& start) {
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        if (start() != FALSE) return true;
        if (GetLastError() != pardoned) return false;
        if (attempt < attempts) ++repeated;
    }
    return false;
}

}  // namespace

void requireStart(const char* call, const std::function<BOOL()>& start) {
    ++starts;
    require(startsWithin(2, ERROR_INTERNAL_ERROR, repeatedStarts, start), call);
}

void requireBriefStart(const char* call, const std::function<BOOL()>& start) {
    ++briefStarts;
    requireStart(
        call, [&] { return startsWithin(briefAttempts, ERROR_SERVICE_REQUEST_TIMEOUT, repeatedBriefStarts, start); });
}

void reportStarts() {
    figure("starts of processes and services", starts);
    figure("starts repeated after an internal error of the system (1359)", repeatedStarts);
    figure("starts of services that end by themselves", briefStarts);
    figure("starts repeated as such a service had ended too soon for the manager (1053)", repeatedBriefStarts);
    EXPECT_LE(repeatedStarts, 1 + starts / 100);
    EXPECT_LE(repeatedBriefStarts, 1 + briefStarts / 4);
}

}  // namespace endtoend
