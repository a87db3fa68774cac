#pragma once

#include <array>

#include "ini/document.h"
#include "source/descriptionFormat.h"
#include "source/nPluginData.h"
#include "tool/check/fileFindings.h"

namespace nCheck {

/// The keys that count, in the order of nDescriptionFormat::nKeys::all. Null if the file has no such key.
using tKeys = std::array<const nIni::tKey*, nDescriptionFormat::nKeys::all.size()>;

/// Finds values with surprising blanks, quotes or comments, and a surprising "Requires". On Windows a number above 32
/// bits is 4294967295; elsewhere this corrects the record accordingly.
void findInValues(const tKeys& keys, tPluginDescription& description, tFileFindings& findings);

}  // namespace nCheck
