#pragma once

#include <string_view>

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Changes a name in the import tables of an executable file, so that a call goes elsewhere while the program's own
/// code stays as it is. `name` is that of an imported function or of a library. Requires: `other` is not longer;
/// another function is one of the same library. Throws std::runtime_error if the file has no such import.
void rebindImport(const tPath& executable, std::string_view name, std::string_view other);

}  // namespace endtoend
