#pragma once

#include <string>
#include <vector>

namespace support {

/// Collects the reports of the program's own exceptions that a boundary converts to a code. At most one may exist at a
/// time.
class tCaughtReports {
public:
    tCaughtReports();
    ~tCaughtReports();
    tCaughtReports(const tCaughtReports&) = delete;
    tCaughtReports& operator=(const tCaughtReports&) = delete;

    std::vector<std::string> texts;
};

}  // namespace support
