// Never shipped: lets the portable core load plug-ins under native tools. dlerror returns text instead of numbers, so
// the error numbers are those of Windows; a library's dependencies are found through its own run path.
#include <dlfcn.h>

#include "quarks/library.h"

namespace nLibrary {
namespace {

constexpr std::uint32_t invalidHandle = 6;
constexpr std::uint32_t moduleNotFound = 126;
constexpr std::uint32_t procedureNotFound = 127;

}  // namespace

tHandle load(const char* path, std::uint32_t& osError) {
    // dlopen treats an empty path as the program itself.
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
