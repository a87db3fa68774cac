#include "tests/endtoend/harness/binding.h"

#include <algorithm>
#include <stdexcept>

namespace endtoend {

// A name occurs once in the import tables, followed by a zero.
void rebindImport(const tPath& executable, std::string_view name, std::string_view other) {
    std::string bytes = readFile(executable);
    const std::string wanted = std::string(name) + '\0';
    const std::size_t at = bytes.find(wanted);
    if (at == std::string::npos || bytes.find(wanted, at + 1) != std::string::npos || other.size() > name.size()) {
        throw std::runtime_error("cannot rebind " + std::string(name) + " to " + std::string(other));
    }
    std::string replacement(other);
    replacement.resize(name.size(), '\0');
    bytes.replace(at, name.size(), replacement);
    writeFile(executable, bytes);
}

}  // namespace endtoend
