#include "tool/pe/machine.h"

#include <memory>
#include <unordered_map>

#include "tool/pe/libraryFile.h"

namespace nPe {

decltype(tMachine::readLibrary) cachedLibraries() {
    struct tCache {
        std::unordered_map<std::string, std::variant<tLibrary, tUnreadable>> libraries;
        decltype(libraries)::const_pointer last = nullptr;  ///< of them: a library is asked for several times in a row
    };
    return [cache = std::make_shared<tCache>()](const std::string& path) -> const auto& {
        if (cache->last == nullptr || cache->last->first != path) {
            auto found = cache->libraries.find(path);
            if (found == cache->libraries.end()) found = cache->libraries.emplace(path, readFile(path)).first;
            cache->last = &*found;
        }
        return cache->last->second;
    };
}

}  // namespace nPe
