#pragma once

#include "tool/check/catalogue.h"

namespace nCheck {

/// Finds plug-ins without a name, with one that nothing can depend on, or with that of another plug-in.
void findInNames(tCatalogue& catalogue);

}  // namespace nCheck
