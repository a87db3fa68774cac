#include <windows.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/plugins.h"

namespace support {

const char* const libraryExtension = ".dll";
const std::size_t manyFiles = 1'000;

// The runtime's own copy of the environment, which getenv reads.
void setEnvironment(const char* name, const char* value) { _putenv_s(name, value); }

std::string testProgramFolder() {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1023);
    return std::filesystem::path(path).parent_path().string();
}

}  // namespace support
