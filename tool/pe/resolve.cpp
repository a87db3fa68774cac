#include "tool/pe/resolve.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

/// So many forwards in a row do not occur, unless they are circular.
constexpr int mostForwards = 32;

std::string textOf(const tImportedSymbol& symbol) {
    return symbol.name.empty() ? '#' + std::to_string(symbol.ordinal) : std::string(symbol.name);
}

/// Where an export is forwarded to. Borrows the export's text.
struct tForward {
    std::string library;
    tImportedSymbol symbol;
};

/// Reads "LIBRARY.name" or "LIBRARY.#number".
tForward readForward(std::string_view text) {
    const std::size_t dot = std::min(text.rfind('.'), text.size());
    const std::string_view symbol = text.substr(std::min(dot + 1, text.size()));
    tForward forward{withExtension(text.substr(0, dot)), {}};
    if (!symbol.starts_with('#')) {
        forward.symbol.name = symbol;
    } else {
        std::from_chars(symbol.data() + 1, symbol.data() + symbol.size(), forward.symbol.ordinal);
    }
    return forward;
}

/// One library's imports, and those of all that it needs.
class tWalk {
public:
    /// Borrows both.
    tWalk(const tLocation& location, const tMachine& machine);
    [[nodiscard]] tLoad run() &&;

private:
    /// A library that is loaded.
    struct tNode {
        std::string path;
        const tLibrary* library;
        std::size_t importer;  ///< index of a node that needs it; the first one's is its own
    };
    /// What the loader finds under a name.
    struct tPlace {
        std::string path;
        const tLibrary* library = nullptr;  ///< null if the system provides it, or if it is no help
        bool provided = false;              ///< by the system
        std::string reason;                 ///< why it is no help; empty if there is none
    };

    /// Returns whether the library's own imports need not be followed.
    [[nodiscard]] bool isComplete(const tNode& node) const;
    [[nodiscard]] bool isLoaded(const std::string& path) const;
    void load(const tPlace& place, std::size_t importer);
    void followImport(const tImport& import, std::size_t importer);
    [[nodiscard]] const tPlace& locate(const std::string& name);
    /// `key` is the name in lower case.
    [[nodiscard]] tPlace search(const std::string& name, const std::string& key) const;
    /// Returns false if the search ends here.
    bool lookInto(const std::string& folder, const std::string& name, tPlace& place) const;
    [[nodiscard]] const tExport* find(const tLibrary& library, const tImportedSymbol& symbol);
    [[nodiscard]] bool resolves(const tForward& first, std::size_t importer);
    void report(const std::string& library, std::string symbol, std::string reason, std::size_t importer);

    const tMachine& machine_;
    const std::string& folder_;  ///< of the location
    std::uint16_t processor_ = 0;
    std::vector<tNode> nodes_;  ///< in the order in which they were met
    // Of most libraries, so few others are needed that a hash table takes longer.
    std::set<const tLibrary*> met_;
    std::map<std::string, tPlace> places_;  ///< by name in lower case
    std::unordered_map<const tLibrary*, std::unordered_map<std::uint32_t, const tExport*>> byOrdinal_;
    std::vector<tMissing> missing_;
};

tWalk::tWalk(const tLocation& location, const tMachine& machine) : machine_(machine), folder_(location.folder) {
    const auto* const library = std::get_if<tLibrary>(&machine.readLibrary(location.file));
    if (library == nullptr) return;
    processor_ = library->machine;
    tPlace place{location.file, library, false, {}};
    load(place, 0);
    const std::string name = toLowerAscii(fileNameOf(location.file));
    if (!machine.loadedLibraries.contains(name)) places_.emplace(name, std::move(place));
}

tLoad tWalk::run() && {
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        if (isComplete(nodes_[i])) continue;
        const tLibrary& library = *nodes_[i].library;
        for (const tImport& import : library.imports) {
            if (!import.delayed && !import.symbols.empty()) followImport(import, i);
        }
    }
    tLoad result{std::move(missing_), {}};
    for (tNode& node : nodes_) result.loaded.push_back(std::move(node.path));
    return result;
}

bool tWalk::isComplete(const tNode& node) const {
    const std::string& system = machine_.systemFolder;
    return !node.library->isDll || isLoaded(node.path) || (!system.empty() && folderOf(node.path) == system);
}

bool tWalk::isLoaded(const std::string& path) const {
    const auto loaded = machine_.loadedLibraries.find(toLowerAscii(fileNameOf(path)));
    return loaded != machine_.loadedLibraries.end() && loaded->second == path;
}

void tWalk::load(const tPlace& place, std::size_t importer) {
    if (met_.insert(place.library).second) nodes_.push_back({place.path, place.library, importer});
}

void tWalk::followImport(const tImport& import, std::size_t importer) {
    const std::string name = withExtension(import.library);
    const tPlace& place = locate(name);
    if (place.provided) return;
    if (place.library == nullptr) return report(name, {}, place.reason, importer);
    load(place, importer);
    for (const tImportedSymbol& symbol : import.symbols.list()) {
        const tExport* const found = find(*place.library, symbol);
        if (found == nullptr) {
            report(name, textOf(symbol), {}, importer);
        } else if (!found->forwarder.empty() && !resolves(readForward(found->forwarder), importer)) {
            report(name, textOf(symbol), "it forwards the function to " + found->forwarder + ", which is missing",
                   importer);
        }
    }
}

const tWalk::tPlace& tWalk::locate(const std::string& name) {
    const auto [entry, isNew] = places_.try_emplace(toLowerAscii(name));
    if (isNew) entry->second = search(name, entry->first);
    return entry->second;
}

tWalk::tPlace tWalk::search(const std::string& name, const std::string& key) const {
    tPlace place;
    if (const auto loaded = machine_.loadedLibraries.find(key); loaded != machine_.loadedLibraries.end()) {
        const auto* const library = std::get_if<tLibrary>(&machine_.readLibrary(loaded->second));
        return {loaded->second, library, library == nullptr, {}};
    }
    if (std::ranges::find(machine_.knownLibraries, key) != machine_.knownLibraries.end()) {
        lookInto(machine_.systemFolder, name, place);
        return place;
    }
    if (!lookInto(folder_, name, place)) return place;
    for (const std::string& folder : machine_.searchFolders) {
        if (folder != folder_ && !lookInto(folder, name, place)) return place;
    }
    place.provided = place.reason.empty() && machine_.isSystemLibrary(name);
    return place;
}

bool tWalk::lookInto(const std::string& folder, const std::string& name, tPlace& place) const {
    const std::optional<std::string> path = machine_.findFile(folder, name);
    if (!path) return true;
    const auto& content = machine_.readLibrary(*path);
    if (const auto* const unreadable = std::get_if<tUnreadable>(&content)) {
        place.reason = unreadable->reason;
        return false;
    }
    const auto& library = std::get<tLibrary>(content);
    if (library.machine != processor_) {
        // The loader goes on searching for one that fits.
        place.reason = "it is for " + processorName(library.machine);
        return true;
    }
    place = {*path, &library, false, {}};
    return false;
}

const tExport* tWalk::find(const tLibrary& library, const tImportedSymbol& symbol) {
    if (!symbol.name.empty()) return findExport(library, symbol.name);
    const auto [entry, isNew] = byOrdinal_.try_emplace(&library);
    if (isNew) {
        for (const tExport& found : library.exports) entry->second.try_emplace(found.ordinal, &found);
    }
    const auto found = entry->second.find(symbol.ordinal);
    return found == entry->second.end() ? nullptr : found->second;
}

bool tWalk::resolves(const tForward& first, std::size_t importer) {
    tForward forward = first;
    for (int i = 0; i < mostForwards; ++i) {
        const tPlace& place = locate(forward.library);
        if (place.provided) return true;
        if (place.library == nullptr) return false;
        load(place, importer);
        const tExport* const found = find(*place.library, forward.symbol);
        if (found == nullptr) return false;
        if (found->forwarder.empty()) return true;
        forward = readForward(found->forwarder);
    }
    return false;
}

void tWalk::report(const std::string& library, std::string symbol, std::string reason, std::size_t importer) {
    if (missing_.size() == mostMissing) return;
    tMissing missing{{}, library, std::move(symbol), std::move(reason), false};
    missing.maybeSystem = missing.symbol.empty() && missing.reason.empty() && machine_.mayBeSystemLibrary &&
                          machine_.mayBeSystemLibrary(library);
    for (std::size_t node = importer;; node = nodes_[node].importer) {
        missing.chain.push_back(fileNameOf(nodes_[node].path));
        if (node == 0) break;
    }
    std::ranges::reverse(missing.chain);
    missing_.push_back(std::move(missing));
}

}  // namespace

void addLoaded(tMachine& machine, const std::vector<std::string>& paths) {
    for (const std::string& path : paths) machine.loadedLibraries.try_emplace(toLowerAscii(fileNameOf(path)), path);
}

tLoad followImports(const tLocation& library, const tMachine& machine) { return tWalk(library, machine).run(); }

std::vector<tMissing> findMissingImports(const std::string& path, const tMachine& machine) {
    return followImports({path, folderOf(path)}, machine).missing;
}

}  // namespace nPe
