#include "tool/pe/locate.h"

#include <algorithm>

#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

std::optional<std::string> searchFor(const std::string& name, const std::string& firstFolder, const tMachine& machine) {
    const bool isPlainName = folderOf(name).empty();
    const auto find = [&](const std::string& folder) -> std::optional<std::string> {
        if (folder.empty()) return std::nullopt;
        return isPlainName ? machine.findFile(folder, name) : machine.findPath(joined(folder, name));
    };
    if (std::optional<std::string> found = find(firstFolder)) return found;
    for (const std::string& folder : machine.searchFolders) {
        if (std::optional<std::string> found = find(folder)) return found;
    }
    return std::nullopt;
}

std::optional<std::string> fileOf(const std::string& name, const std::string& firstFolder, const tMachine& machine) {
    if (!isSearched(name)) return machine.findPath(absolutePath(name, machine.currentFolder));
    const std::string key = toLowerAscii(name);
    const auto loaded = machine.loadedLibraries.find(key);
    if (loaded != machine.loadedLibraries.end()) return loaded->second;
    const bool isKnown = std::ranges::find(machine.knownLibraries, key) != machine.knownLibraries.end();
    return isKnown ? machine.findFile(machine.systemFolder, name) : searchFor(name, firstFolder, machine);
}

}  // namespace

std::optional<tLocation> locate(const std::string& path, const tMachine& machine) {
    const bool namesFolder = path.find('\\') != std::string::npos;
    const bool searched = isSearched(path);
    std::string folder = machine.applicationFolder;
    if (namesFolder && searched) folder = absolutePath(folderOf(path), machine.currentFolder);
    std::optional<std::string> file = fileOf(withExtension(path), folder, machine);
    if (!file) return std::nullopt;
    if (namesFolder && !searched) folder = folderOf(*file);
    return tLocation{std::move(*file), std::move(folder)};
}

}  // namespace nPe
