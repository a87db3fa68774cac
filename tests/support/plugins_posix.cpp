// Never shipped.
#include <cstdlib>
#include <filesystem>

#include "tests/support/plugins.h"

namespace support {

const char* const libraryExtension = ".so";
const std::size_t manyFiles = 10'000;

void setEnvironment(const char* name, const char* value) { setenv(name, value, 1); }

std::string testProgramFolder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path().string(); }

}  // namespace support
