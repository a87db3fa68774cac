#pragma once

#include <string>

#include "tool/context.h"
#include "tool/new/newSystem.h"

namespace nNew {

struct tRequest {
    std::string name;
    std::string language = "c++";  ///< "c", "c++" or "rust"
    std::string directory = {};    ///< in which the project's folder is created; the working folder if empty
};

/// Creates the project and prints the commands that are next, or a document. Nothing that exists is changed. Throws
/// std::runtime_error, whose text is one sentence, if it cannot; then nothing is left of what was created, unless the
/// sentence says so.
void run(const tRequest& request, bool json, const tSystem& system, tContext& context);

}  // namespace nNew
