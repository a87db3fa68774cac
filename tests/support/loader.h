#pragma once

#include <cstdint>

#include "quarks/library.h"

namespace support {

/// Replaces the dynamic loader: while one exists, every call of nLibrary comes to it (to the newest). Without one the
/// calls are passed on to the system. (The test programs are linked with --wrap; the product has no seam for this.)
class tLoader {
public:
    tLoader();
    virtual ~tLoader();
    tLoader(const tLoader&) = delete;
    tLoader& operator=(const tLoader&) = delete;

    virtual nLibrary::tHandle load(const char* path, std::uint32_t& osError) = 0;
    virtual bool unload(nLibrary::tHandle library, std::uint32_t& osError) = 0;
    virtual void* symbol(nLibrary::tHandle library, const char* name, std::uint32_t& osError) = 0;

private:
    tLoader* previous_;
};

}  // namespace support
