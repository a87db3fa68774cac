#pragma once

#include <cstdint>

/// The platform's dynamic loader. `osError` receives the system's error number when a call fails and is unchanged
/// otherwise. Handles are opaque; the caller unloads each library that it loads.
namespace nLibrary {

using tHandle = void*;

/// Loads a library from a UTF-8 path. If the path is absolute, the library's own folder is searched for its
/// dependencies; a relative path is resolved along the system's search path.
/// Returns null on failure, including a path with a character that the system's code page lacks. Throws std::bad_alloc.
[[nodiscard]] tHandle load(const char* path, std::uint32_t& osError);

/// Returns false on failure; the library is then still loaded.
bool unload(tHandle library, std::uint32_t& osError) noexcept;

/// Returns the address of an exported function, or null if there is none of that name.
[[nodiscard]] void* symbol(tHandle library, const char* name, std::uint32_t& osError) noexcept;

}  // namespace nLibrary
