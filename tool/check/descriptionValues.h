#pragma once

#include "ini/document.h"
#include "source/nPluginData.h"
#include "tool/check/fileFindings.h"

namespace nCheck {

/// Finds values with surprising blanks, quotes or comments, and a surprising "Requires". On Windows a number above 32
/// bits is 4294967295; elsewhere this corrects the record accordingly.
void findInValues(nIni::tDocument& document, tPluginDescription& description, tFileFindings& findings);

}  // namespace nCheck
