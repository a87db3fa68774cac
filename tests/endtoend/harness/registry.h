#pragma once

#include <string_view>

#include "tests/endtoend/harness/system.h"

/// The installer's registry value that tells where the maker's shared directory is.
namespace endtoend::registry {

/// Text types are stored with their terminating zero.
void setSharedDirectory(std::wstring_view text, DWORD type = REG_SZ);

/// Back to a machine on which the maker's software was never installed.
void removeKey();
void removeValue();

[[nodiscard]] bool hasSharedDirectory();

}  // namespace endtoend::registry
