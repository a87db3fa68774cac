#pragma once

#include <string_view>

#include "tests/endtoend/harness/system.h"

/// The installer's registry value with the path of the maker's shared directory.
namespace endtoend::registry {

/// Stores the text with a terminating zero.
void setSharedDirectory(std::wstring_view text);

/// Restores a machine on which the maker's software was never installed.
void removeKey();
void removeValue();

[[nodiscard]] bool hasSharedDirectory();

}  // namespace endtoend::registry
