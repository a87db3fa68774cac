#include "tests/support/loader.h"

namespace support {
namespace {

tLoader* current = nullptr;

}  // namespace

tLoader::tLoader() : previous_(current) { current = this; }
tLoader::~tLoader() { current = previous_; }

// The linker redirects calls of a wrapped function to __wrap_NAME and renames the function itself to __real_NAME.

nLibrary::tHandle realLoad(const char* path, std::uint32_t& osError) asm("__real__ZN8nLibrary4loadEPKcRj");
nLibrary::tHandle wrappedLoad(const char* path, std::uint32_t& osError) asm("__wrap__ZN8nLibrary4loadEPKcRj");
nLibrary::tHandle wrappedLoad(const char* path, std::uint32_t& osError) {
    return current == nullptr ? realLoad(path, osError) : current->load(path, osError);
}

bool realUnload(nLibrary::tHandle library, std::uint32_t& osError) asm("__real__ZN8nLibrary6unloadEPvRj");
bool wrappedUnload(nLibrary::tHandle library, std::uint32_t& osError) asm("__wrap__ZN8nLibrary6unloadEPvRj");
bool wrappedUnload(nLibrary::tHandle library, std::uint32_t& osError) {
    return current == nullptr ? realUnload(library, osError) : current->unload(library, osError);
}

void* realSymbol(nLibrary::tHandle library, const char* name,
                 std::uint32_t& osError) asm("__real__ZN8nLibrary6symbolEPvPKcRj");
void* wrappedSymbol(nLibrary::tHandle library, const char* name,
                    std::uint32_t& osError) asm("__wrap__ZN8nLibrary6symbolEPvPKcRj");
void* wrappedSymbol(nLibrary::tHandle library, const char* name, std::uint32_t& osError) {
    return current == nullptr ? realSymbol(library, name, osError) : current->symbol(library, name, osError);
}

}  // namespace support
