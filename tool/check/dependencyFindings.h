#pragma once

#include <string>
#include <vector>

#include "tool/check/catalogue.h"
#include "tool/check/predictedStarts.h"

namespace nCheck {

/// Finds dependencies because of which a plug-in does not start. `outcomes` is by position. Names in `assumed` need no
/// description. Throws std::bad_alloc.
void findInDependencies(tCatalogue& catalogue, const std::vector<tOutcome>& outcomes,
                        const std::vector<std::string>& assumed = {});

}  // namespace nCheck
