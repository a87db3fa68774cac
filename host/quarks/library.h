#pragma once

#include <cstdint>

/// The platform's dynamic loader. `osError` receives the system's error number when a call fails and is left alone
/// otherwise. Handles are opaque; whoever loads a library unloads it.
namespace nLibrary {

using Handle = void*;

/// The path is UTF-8. The library's own folder is searched for the libraries that it depends on, which holds for
/// absolute paths only: a relative one is looked for along the system's search path. Null on failure.
[[nodiscard]] Handle load(const char* path, std::uint32_t& osError) noexcept;

/// False on failure; the library is then still loaded.
bool unload(Handle library, std::uint32_t& osError) noexcept;

/// The address of an exported function; null when there is none of that name.
[[nodiscard]] void* symbol(Handle library, const char* name, std::uint32_t& osError) noexcept;

}  // namespace nLibrary
