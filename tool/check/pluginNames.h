#pragma once

#include "tool/check/catalogue.h"

namespace nCheck {

/// Finds plug-ins without a name, with one that nothing can depend on, or with that of another plug-in.
void findInNames(tCatalogue& catalogue);

/// Finds plug-ins that name a library, but no entry point of it.
void findWithoutEntries(tCatalogue& catalogue);

}  // namespace nCheck
