// Never shipped.
#include <dlfcn.h>

#include "ownPath.h"

std::filesystem::path ownPath() {
    Dl_info self{};
    dladdr(reinterpret_cast<const void*>(&ownPath), &self);
    return self.dli_fname;
}
