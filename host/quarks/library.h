#pragma once

#include <cstdint>

/// The platform's dynamic loader. `osError` receives the system's error number when a call fails and is left alone
/// otherwise. Handles are opaque; the caller unloads what it has loaded.
namespace nLibrary {

using tHandle = void*;

/// The path is UTF-8. The library's own folder is searched for the libraries that it depends on, which holds for
/// absolute paths only: a relative one is looked for along the system's search path.
/// Returns null on failure, also where the system does not read UTF-8 and its code page lacks a character of the path.
/// Throws std::bad_alloc.
[[nodiscard]] tHandle load(const char* path, std::uint32_t& osError);

/// Returns false on failure; the library is then still loaded.
bool unload(tHandle library, std::uint32_t& osError) noexcept;

/// Returns the address of an exported function, null when there is none of that name.
[[nodiscard]] void* symbol(tHandle library, const char* name, std::uint32_t& osError) noexcept;

}  // namespace nLibrary
