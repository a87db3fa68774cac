#include "tool/check/libraries.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "source/zusysapi.h"
#include "stdpath/utf.h"
#include "tool/check/thisMachine.h"
#include "tool/check/wording.h"
#include "tool/pe/locate.h"
#include "tool/pe/windowsPath.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nWording::quoted;

constexpr bool isSeparator(char c) noexcept { return c == '\\' || c == '/'; }

/// Returns whether the path begins with a drive and a separator, or with two separators, so that it depends neither on
/// a current folder nor on a search.
bool isAbsolute(const std::string& path) {
    if (nPe::isNative(path)) return true;
    const bool hasDrive = path.size() > 2 && path[1] == ':';
    return path.size() > 2 && (hasDrive ? isSeparator(path[2]) : isSeparator(path[0]) && isSeparator(path[1]));
}

constexpr std::size_t longestPath = 259;

/// Returns whether the path has more characters than every Windows accepts from the host: without the policy for long
/// paths, 259. (Wine accepts 260, counted before anything is replaced or added, whatever the prefix.)
bool isLong(const std::string& path) {
    return path.size() > longestPath && nStdPath::fileNameFromUtf8(path).size() > longestPath;
}

/// Returns the same for the path to which the loader may add an extension.
bool isLongWithExtension(const std::string& path) {
    constexpr std::size_t extension = 4;
    return path.size() + extension > longestPath && isLong(nPe::withExtension(path));
}

/// Returns whether the path has a form that not every system accepts from the host, and finds it.
bool isDoubtful(const std::string& path, const tExamined& examined) {
    const bool tooLong = isLong(path) || isLongWithExtension(path);
    const bool native = nPe::isNative(path);
    if (tooLong) examined.add(nKeys::path, "long-path", quoted(path) + " has more than 259 characters");
    if (native) examined.add(nKeys::path, "native-path", quoted(path) + R"( begins with \??\)");
    return tooLong || native;
}

bool contains(const std::vector<nPe::tMissing>& list, const nPe::tMissing& missing) {
    return std::any_of(list.begin(), list.end(), [&missing](const nPe::tMissing& other) {
        return other.library == missing.library && other.symbol == missing.symbol;
    });
}

/// Returns a number that libraries have in common if they are the same file, and rarely otherwise.
std::size_t likenessOf(const nPe::tLibrary& library) {
    auto likeness = static_cast<std::size_t>(library.fileSize);
    for (const nPe::tExport& entry : library.exports) likeness = 31 * likeness + std::hash<std::string>()(entry.name);
    return likeness;
}

}  // namespace

tLibraries::tLibraries(nPe::tFolderMap folderMap)
    : runsHost_(nThisMachine::runsHost()), folderMap_(std::move(folderMap)), machine_(nPe::thisMachine(folderMap_)) {
    if (!runsHost_) return;
    // The host's query of the deployment setting has loaded it, if it is there.
    const auto framework = machine_.findFile(machine_.applicationFolder, nZusysapi::libraryName);
    if (framework) nPe::addLoaded(machine_, {*framework});
}

tLibraries::tLibraries(nPe::tMachine machine) : runsHost_(true), machine_(std::move(machine)) {}

tLoadVerdict tLibraries::examine(const tExamined& examined) {
    lastLoaded_.clear();
    const std::string& path = examined.description.path;
    if (path.empty()) {
        examined.add(nKeys::path, "missing-path", "there is no path of a library");
        return tLoadVerdict::fails;
    }
    if (path.find('/') != std::string::npos) {
        examined.add(nKeys::path, "forward-slashes", quoted(path) + " has forward slashes");
    }
    const bool isOpen = isDoubtful(path, examined);
    const tLoadVerdict verdict = isAbsolute(path) ? examineAbsolute(examined) : examineRelative(examined);
    return isOpen ? std::min(verdict, tLoadVerdict::uncertain) : verdict;
}

tLoadVerdict tLibraries::examineAbsolute(const tExamined& examined) {
    const std::string& path = examined.description.path;
    std::optional<nPe::tLocation> location = nPe::locate(path, machine_);
    if (!location && !isCovered(path)) {
        examined.add(nKeys::path, "unmapped-path", quoted(path) + " has not been looked for: no --map covers it");
        return tLoadVerdict::uncertain;
    }
    if (!location) {
        examined.add(nKeys::path, "missing-library", "there is no file " + quoted(nPe::withExtension(path)));
        return tLoadVerdict::fails;
    }
    const bool inHostFolder = path.find('\\') == std::string::npos;  // is where its imports are looked for
    if (!inHostFolder || runsHost_) return examineFile(*location, examined);
    location->folder = nPe::folderOf(location->file);
    return std::min(examineFile(*location, examined), tLoadVerdict::uncertain);
}

bool tLibraries::isCovered(const std::string& path) const {
    const std::vector<std::string> parts = nPe::partsOf(nPe::withExtension(path));
    return runsHost_ || std::any_of(folderMap_.begin(), folderMap_.end(), [&parts](const auto& mapping) {
               return nPe::isInside(parts, nPe::partsOf(mapping.first));
           });
}

/// What Windows finds depends on folders and variables of the service, which may differ from those of this program, and
/// on what has been loaded before.
tLoadVerdict tLibraries::examineRelative(const tExamined& examined) {
    const std::string& path = examined.description.path;
    const bool hasVariable = path.find('%') != path.rfind('%');
    const auto location = runsHost_ ? nPe::locate(path, machine_) : std::nullopt;
    std::string message = quoted(path) + " is not an absolute path";
    if (hasVariable) message += ", and environment variables are not replaced";
    if (location) message += "; Windows loads " + quoted(location->file);
    if (runsHost_ && !location) message += "; Windows finds no such library";
    examined.add(nKeys::path, "relative-path", std::move(message));
    if (!location) return runsHost_ ? tLoadVerdict::fails : tLoadVerdict::uncertain;

    machine_.loadedLibraries.swap(certainlyLoaded_);
    const auto certain = nPe::locate(path, machine_);
    machine_.loadedLibraries.swap(certainlyLoaded_);
    const bool isCertain = certain && certain->file == location->file;
    const tLoadVerdict verdict = examineFile(*location, examined);
    return isCertain ? std::min(verdict, tLoadVerdict::uncertain) : tLoadVerdict::uncertain;
}

tLoadVerdict tLibraries::examineFile(const nPe::tLocation& location, const tExamined& examined) {
    const auto& content = machine_.readLibrary(location.file);
    if (const auto* const unreadable = std::get_if<nPe::tUnreadable>(&content)) {
        return examineUnreadable(location.file, *unreadable, examined);
    }
    const auto& library = std::get<nPe::tLibrary>(content);
    findSecondUse(location.file, library, examined);
    const tLoadVerdict verdict = examineLibrary(library, examined);
    return std::min(verdict, examineImports(location, examined));
}

/// Files are identified only if they look alike, because opening one again takes as long as reading it.
void tLibraries::findSecondUse(const std::string& file, const nPe::tLibrary& library, const tExamined& examined) {
    tUse use{file, examined.findings.file()};
    const auto [alike, isNew] = alike_.try_emplace(likenessOf(library));
    if (isNew) {
        alike->second = std::move(use);
        return;
    }
    const auto addUser = [this](const tUse& added) {
        const std::string identity = machine_.identityOf(added.library);
        return users_.try_emplace(identity.empty() ? added.library : identity, added.description);
    };
    addUser(alike->second);
    const auto [user, isFirst] = addUser(use);
    if (isFirst) return;
    examined.add(nKeys::path, "shared-library", "the library is also that of the plug-in in " + user->second);
}

/// Whether an import is resolved can depend on what other plug-ins have loaded before. Only then is it tried again
/// without that, and with that which is certain.
tLoadVerdict tLibraries::examineImports(const nPe::tLocation& location, const tExamined& examined) {
    nPe::tLoad load = nPe::followImports(location, machine_);
    const tLoadVerdict missing = examineMissing(load.missing, examined);
    const tLoadVerdict verdict = mayRefuse(load.loaded) ? std::min(missing, tLoadVerdict::uncertain) : missing;
    const bool borrowing = borrows(location, load);
    lastLoaded_ = std::move(load.loaded);
    if (!borrowing) return verdict;
    tLoadedLibraries nothing;
    for (const nPe::tMissing& import : missingIf(nothing, location)) {
        if (!import.symbol.empty() || contains(load.missing, import)) continue;
        examined.add(nKeys::path, "borrowed-import",
                     quoted(import.library) + " is not in a folder that Windows searches for it");
    }
    const bool isCertain = verdictOf(missingIf(certainlyLoaded_, location)) == missing;
    return isCertain ? verdict : tLoadVerdict::uncertain;
}

/// Returns whether code runs when the library is loaded: its own, or that of libraries which are not part of Windows.
bool tLibraries::mayRefuse(const std::vector<std::string>& loaded) const {
    return std::any_of(loaded.begin(), loaded.end(), [this](const std::string& file) {
        const auto* const library = std::get_if<nPe::tLibrary>(&machine_.readLibrary(file));
        return library != nullptr && library->hasEntryPoint && nPe::folderOf(file) != machine_.systemFolder;
    });
}

/// Returns whether one of the libraries is only known because it was loaded before.
bool tLibraries::borrows(const nPe::tLocation& location, const nPe::tLoad& load) const {
    const std::vector<std::string>& searched = machine_.searchFolders;
    return std::any_of(load.loaded.begin(), load.loaded.end(), [&](const std::string& file) {
        if (file == location.file) return false;
        const std::string folder = nPe::folderOf(file);
        return folder != location.folder && std::find(searched.begin(), searched.end(), folder) == searched.end();
    });
}

/// Returns what is missing if these libraries have been loaded before.
std::vector<nPe::tMissing> tLibraries::missingIf(tLoadedLibraries& loaded, const nPe::tLocation& location) {
    machine_.loadedLibraries.swap(loaded);
    std::vector<nPe::tMissing> missing = nPe::followImports(location, machine_).missing;
    machine_.loadedLibraries.swap(loaded);
    return missing;
}

void tLibraries::keep(tStart start) {
    if (start == tStart::no) return;
    nPe::addLoaded(machine_, lastLoaded_);
    if (start != tStart::yes) return;
    machine_.loadedLibraries.swap(certainlyLoaded_);
    nPe::addLoaded(machine_, lastLoaded_);
    machine_.loadedLibraries.swap(certainlyLoaded_);
}

}  // namespace nCheck
