#include "tool/check/libraryFindings.h"

#include <algorithm>
#include <array>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>

#include "stdpath/path.h"
#include "tool/check/similarNames.h"
#include "tool/check/wording.h"
#include "tool/pe/symptoms.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nWording::quoted;

/// Lists the first few.
std::string listed(const std::vector<std::string>& names) {
    constexpr std::size_t most = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) text += (i == 0 ? "" : ", ") + quoted(names[i]);
    return text + (names.size() > most ? " and others" : "");
}

/// Returns the exports that the author may have meant.
std::vector<std::string> similarExports(const nPe::tLibrary& library, const std::string& name) {
    std::vector<std::string> similar = nPe::nearMisses(library, name);
    if (!similar.empty()) return similar;
    for (const nPe::tExport& entry : library.exports) {
        if (nSimilarNames::areSimilar(entry.name, name)) similar.push_back(entry.name);
    }
    return similar;
}

/// Returns whether the library exports the entry, or need not.
bool examineEntry(const nPe::tLibrary& library, std::string_view key, const std::string& name,
                  const tExamined& examined) {
    if (name.empty() || nPe::findExport(library, name) != nullptr) return true;
    const std::string message = "the library does not export " + quoted(name);
    const std::vector<std::string> misses = similarExports(library, name);
    if (misses.empty()) {
        examined.add(key, "missing-entry", message);
    } else {
        examined.add(key, "missing-entry", message + "; it exports " + listed(misses));
    }
    return false;
}

bool isForwarded(const nPe::tLibrary& library, const std::string& name) {
    const nPe::tExport* const entry = name.empty() ? nullptr : nPe::findExport(library, name);
    return entry != nullptr && !entry->forwarder.empty();
}

/// Returns true for a pipe or a device, too, without trying: that could wait forever.
bool canBeOpened(const boost::filesystem::path& file) {
    boost::system::error_code error;
    return boost::filesystem::is_other(file, error) || boost::filesystem::ifstream(file).is_open();
}

/// Returns "a.dll -> b.dll" for the libraries through which an import is needed; empty if it is needed directly.
std::string describeChain(const std::vector<std::string>& chain) {
    if (chain.size() < 2) return {};
    std::string text = " (" + chain.front();
    for (std::size_t i = 1; i < chain.size(); ++i) text += " -> " + chain[i];
    return text + ')';
}

/// Windows then looks for the imports in the host's folder instead of the library's.
bool isWithoutBackslash(const std::string& path) {
    return path.find('/') != std::string::npos && path.find('\\') == std::string::npos;
}

constexpr const char* writeBackslashes =
    "Write backslashes in Path first: without them, Windows does not look in the library's own folder.";

void examineMissingImport(const nPe::tMissing& missing, const tExamined& examined) {
    const std::string importer = missing.chain.empty() ? "the library" : quoted(missing.chain.back());
    const std::string chain = describeChain(missing.chain);
    if (!missing.symbol.empty()) {
        const std::string reason = missing.reason.empty() ? "which lacks it" : "but " + missing.reason;
        examined.add(nKeys::path, "missing-function",
                     importer + " needs the function " + quoted(missing.symbol) + " of " + quoted(missing.library) +
                         ", " + reason + chain);
    } else if (missing.maybeSystem) {
        examined.add(nKeys::path, "unchecked-import",
                     importer + " needs " + quoted(missing.library) + ", which may be part of Windows" + chain);
    } else {
        const std::string reason = missing.reason.empty() ? "which is missing" : "but " + missing.reason;
        const std::string remedy = isWithoutBackslash(examined.description.path) ? writeBackslashes : "";
        examined.add(nKeys::path, "missing-import",
                     importer + " needs " + quoted(missing.library) + ", " + reason + chain, remedy);
    }
}

}  // namespace

tLoadVerdict examineLibrary(const nPe::tLibrary& library, const tExamined& examined) {
    if (library.machine != nPe::machineX64 && library.hasCode) {
        examined.add(nKeys::path, "wrong-processor",
                     "the library is for " + nPe::processorName(library.machine) + ", not x86-64");
        return tLoadVerdict::fails;
    }
    if (!library.isDll) examined.add(nKeys::path, "not-a-dll", "the file is a program, not a library");
    const tPluginDescription& description = examined.description;
    const std::array found{
        examineEntry(library, nKeys::initialize, description.initialize, examined),
        examineEntry(library, nKeys::stop, description.stop, examined),
        examineEntry(library, nKeys::cleanup, description.cleanup, examined),
    };
    for (const std::string& runtime : nPe::debugRuntimes(library)) {
        examined.add(nKeys::path, "debug-runtime", "the library needs " + quoted(runtime));
    }
    if (std::find(found.begin(), found.end(), false) != found.end()) return tLoadVerdict::fails;
    const bool certain = library.isDll && !library.hasEntryPoint && !isForwarded(library, description.initialize) &&
                         !isForwarded(library, description.stop) && !isForwarded(library, description.cleanup);
    return certain ? tLoadVerdict::succeeds : tLoadVerdict::uncertain;
}

tLoadVerdict examineUnreadable(const std::string& file, const nPe::tUnreadable& unreadable, const tExamined& examined) {
    const boost::filesystem::path path = nStdPath::pathFromUtf8(file);
    boost::system::error_code error;
    if (boost::filesystem::is_directory(path, error)) {
        examined.add(nKeys::path, "not-a-library", quoted(file) + " is a folder");
        return tLoadVerdict::fails;
    }
    if (!canBeOpened(path)) {
        examined.add(nKeys::path, "unreadable-library", quoted(file) + " cannot be opened");
        return tLoadVerdict::uncertain;
    }
    if (!unreadable.refused) {
        examined.add(nKeys::path, "damaged-library", quoted(file) + " is damaged: " + unreadable.reason);
        return tLoadVerdict::uncertain;
    }
    examined.add(nKeys::path, "not-a-library",
                 quoted(file) + " is no library that Windows loads: " + unreadable.reason);
    return tLoadVerdict::fails;
}

tLoadVerdict examineMissing(const std::vector<nPe::tMissing>& missing, const tExamined& examined) {
    for (const nPe::tMissing& import : missing) examineMissingImport(import, examined);
    return verdictOf(missing);
}

tLoadVerdict verdictOf(const std::vector<nPe::tMissing>& missing) noexcept {
    const bool fails = std::any_of(missing.begin(), missing.end(), [](const nPe::tMissing& import) {
        return import.symbol.empty() && !import.maybeSystem;
    });
    if (fails) return tLoadVerdict::fails;
    return missing.empty() ? tLoadVerdict::succeeds : tLoadVerdict::uncertain;
}

}  // namespace nCheck
