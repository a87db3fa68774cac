#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tool/ziptra.h"

namespace support {

/// What a run of the program writes and returns, with the streams of a pipe.
struct tToolRun {
    explicit tToolRun(const std::vector<std::string>& arguments) {
        std::ostringstream outText;
        std::ostringstream errorText;
        tContext context{outText, errorText};
        exitCode = runZiptra(arguments, context);
        out = outText.str();
        error = errorText.str();
    }

    int exitCode = -1;
    std::string out;
    std::string error;
};

}  // namespace support
