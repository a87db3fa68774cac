#include "tool/pe/machine.h"

#include <memory>
#include <unordered_map>

#include "tool/pe/libraryFile.h"

namespace nPe {

decltype(tMachine::readLibrary) cachedLibraries() {
    using tCache = std::unordered_map<std::string, std::variant<tLibrary, tUnreadable>>;
    return [cache = std::make_shared<tCache>()](const std::string& path) -> const auto& {
        const auto found = cache->find(path);
        return found != cache->end() ? found->second : cache->emplace(path, readFile(path)).first->second;
    };
}

}  // namespace nPe
