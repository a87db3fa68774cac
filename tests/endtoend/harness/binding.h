#pragma once

#include <string_view>

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Alters the names by which an executable file is bound to system libraries, so that a call goes elsewhere while the
/// program's own code stays what it is. `name` is the name of an imported function, or of the library; the other one
/// must not be longer, and the loader must find it in the same library. Throws when the file has no such import.
void rebindImport(const tPath& executable, std::string_view name, std::string_view other);

}  // namespace endtoend
