#pragma once

#include <string_view>

#include "tool/check/descriptionFile.h"

namespace nCheck {

/// Finds the lines of a description that the host rejects or ignores. `text` is the whole file, `rejected` says whether
/// the host rejects it, and `counting` has the lines of the keys that count.
void findInLines(std::string_view text, bool rejected, const tKeyLines& counting, tFileFindings& findings);

}  // namespace nCheck
