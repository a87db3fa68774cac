// Never shipped: lets the portable core load plug-ins under native tools. The loader explains its failures in words, so
// the error numbers are those of Windows; the libraries that a library depends on are found by its own run path.
#include <dlfcn.h>

#include "quarks/library.h"

namespace nLibrary {
namespace {

constexpr std::uint32_t invalidHandle = 6;
constexpr std::uint32_t moduleNotFound = 126;
constexpr std::uint32_t procedureNotFound = 127;

}  // namespace

tHandle load(const char* path, std::uint32_t& osError) {
    // For dlopen an empty path is the program itself.
    void* const library = *path == '\0' ? nullptr : dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) osError = moduleNotFound;
    return library;
}

bool unload(tHandle library, std::uint32_t& osError) noexcept {
    const bool unloaded = dlclose(library) == 0;
    if (!unloaded) osError = invalidHandle;
    return unloaded;
}

void* symbol(tHandle library, const char* name, std::uint32_t& osError) noexcept {
    void* const address = dlsym(library, name);
    if (address == nullptr) osError = procedureNotFound;
    return address;
}

}  // namespace nLibrary
