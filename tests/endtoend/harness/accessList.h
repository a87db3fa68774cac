#pragma once

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Returns the discretionary access list of a kernel object in the security descriptor definition language.
[[nodiscard]] std::string accessList(HANDLE object);

/// The expected list of the product's process: one entry, which lets everyone query it.
inline const std::string everyoneMayQuery = "D:(A;;0x400;;;WD)";

}  // namespace endtoend
