#pragma once

#include <string>
#include <vector>

namespace support {

/// The reports of the program's own exceptions that boundaries have turned into a code while this object lives: what a
/// boundary keeps to itself. One at a time.
class tCaughtReports {
public:
    tCaughtReports();
    ~tCaughtReports();
    tCaughtReports(const tCaughtReports&) = delete;
    tCaughtReports& operator=(const tCaughtReports&) = delete;

    std::vector<std::string> texts;
};

}  // namespace support
