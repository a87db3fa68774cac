// The service never ships with this: the libraries of a Windows machine, seen from another system.
#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "tool/fileIdentity.h"
#include "tool/folderEntries.h"
#include "tool/pe/machine.h"
#include "tool/pe/systemLibraries.h"
#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

/// The names in folders, each of which is listed once.
class tFolders {
public:
    /// Returns the path of the entry of this name, whatever the case of its letters. An exact match comes first,
    /// then one in lower case.
    std::optional<std::string> find(const std::string& folder, const std::string& name) {
        const tNames& names = list(folder);
        const std::string lower = toLowerAscii(name);
        const auto [first, last] = names.equal_range(lower);
        if (first == last) return std::nullopt;
        for (const std::string* const spelling : {&name, &lower}) {
            const auto isSpelling = [spelling](const auto& entry) { return entry.second == *spelling; };
            if (std::any_of(first, last, isSpelling)) return joined(folder, *spelling);
        }
        return joined(folder, std::min_element(first, last)->second);
    }

private:
    /// The actual names, by their form in lower case.
    using tNames = std::unordered_multimap<std::string, std::string>;

    const tNames& list(const std::string& folder) {
        // Most libraries and their imports are looked for in one folder.
        if (last_ == nullptr || last_->first != folder) {
            const auto [entry, isNew] = folders_.try_emplace(folder);
            if (isNew) entry->second = read(folder);
            last_ = &*entry;
        }
        return last_->second;
    }

    /// Returns no names if the folder cannot be listed.
    static tNames read(const std::string& folder) {
        tNames names;
        auto files = nFolderEntries::list(folder.empty() ? "." : folder);
        if (!files) return names;
        names.reserve(files->size());
        for (auto& [name, isFile] : *files) names.emplace(toLowerAscii(name), std::move(name));
        return names;
    }

    std::unordered_map<std::string, tNames> folders_;
    const std::pair<const std::string, tNames>* last_ = nullptr;  ///< of them
};

/// A mapped folder.
struct tMapping {
    std::vector<std::string> parts;
    std::string folder;
};

std::optional<std::string> findPath(const std::vector<tMapping>& map, const std::string& path, tFolders& folders) {
    const std::vector<std::string> parts = partsOf(path);
    const tMapping* best = nullptr;
    for (const tMapping& mapping : map) {
        const bool isLonger = best == nullptr || mapping.parts.size() > best->parts.size();
        if (isLonger && isInside(parts, mapping.parts)) best = &mapping;
    }
    if (best == nullptr) return std::nullopt;
    std::optional<std::string> found = best->folder;
    for (std::size_t i = best->parts.size(); found && i < parts.size(); ++i) found = folders.find(*found, parts[i]);
    return found;
}

}  // namespace

tMachine thisMachine(const tFolderMap& folderMap, const tHostFolders& host) {
    std::vector<tMapping> map;
    tMachine machine;
    for (const auto& [source, target] : folderMap) {
        map.push_back({partsOf(source), target});
        machine.searchFolders.push_back(target);
    }
    const auto folders = std::make_shared<tFolders>();
    machine.findFile = [folders](const std::string& folder, const std::string& name) {
        return folders->find(folder, name);
    };
    machine.findPath = [folders, map](const std::string& path) { return findPath(map, path, *folders); };
    machine.readLibrary = cachedLibraries();
    machine.identityOf = nFileIdentity::of;
    // The libraries of one folder import the same ones again and again.
    machine.isSystemLibrary = [answers = std::unordered_map<std::string, bool>()](const std::string& name) mutable {
        const auto [answer, isNew] = answers.try_emplace(name);
        if (isNew) answer->second = isApiSet(name) || isInEveryWindows(name);
        return answer->second;
    };
    machine.mayBeSystemLibrary = looksLikeWindows;
    machine.systemFolder = machine.findPath(R"(C:\Windows\System32)").value_or(std::string());
    machine.applicationFolder = host.application;
    machine.currentFolder = host.current.empty() ? R"(C:\Windows\System32)" : host.current;
    return machine;
}

}  // namespace nPe
