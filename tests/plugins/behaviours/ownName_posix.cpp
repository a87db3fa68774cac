// Never shipped.
#include <dlfcn.h>

#include <filesystem>

#include "ownName.h"

std::string ownName() {
    Dl_info self{};
    dladdr(reinterpret_cast<const void*>(&ownName), &self);
    return std::filesystem::path(self.dli_fname).stem().string();
}
