#include "source/tPluginManager.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "err/Exception.h"
#include "source/nPluginStart.h"
#include "time/stopwatch.h"

namespace {

// The order of the fields; how long texts and lists are is the library's business.
static_assert(offsetof(tPluginEntry, library) == 0 && offsetof(tPluginEntry, description) == sizeof(tSharedLibrary));
constexpr std::size_t codes = offsetof(tPluginEntry, initCode);
static_assert(codes == sizeof(tSharedLibrary) + sizeof(tPluginDescription));
static_assert(offsetof(tPluginEntry, stopCode) == codes + 4 && offsetof(tPluginEntry, cleanupCode) == codes + 8);
static_assert(offsetof(tPluginEntry, initTimeMs) == codes + 16 && offsetof(tPluginEntry, stopTimeMs) == codes + 24);
static_assert(offsetof(tPluginEntry, cleanupTimeMs) == codes + 32 && sizeof(tPluginEntry) == codes + 40);

constexpr const char* sourceFile = ".\\source\\tPluginManager";
constexpr zuerr::RaiseReport featureMissing{zuerr::featureUnsupported, {sourceFile, 41}};
constexpr zuerr::RaiseReport dependencyMissing{zuerr::resourceNotFound, {sourceFile, 48}};
constexpr zuerr::RaiseReport initializeFailed{"pluginStatus", {sourceFile, 55}};

/// Starts the plug-in and notes that it has started. Throws when it cannot be started; its library may then be loaded.
/// All memory is allocated before the plug-in's own code runs, so that no plug-in is initialised and then given up.
void start(tPluginEntry& entry, const tPluginDescription& description, std::uint32_t allowedMask,
           nPluginStart::tStarted& started) {
    entry.description = description;
    if (!nPluginStart::featureAllowed(description.requiresMask, allowedMask)) zuerr::Raise(featureMissing);
    if (!nPluginStart::dependenciesStarted(description.dependencies, started)) zuerr::Raise(dependencyMissing);
    entry.library.open(description);
    entry.initCode = entry.library.initialize();
    if (entry.initCode < 0) {
        entry.library.close();
        zuerr::Raise(initializeFailed, entry.initCode);
    }
    started.at(description.name) = true;
}

/// Makes a call that may lead into a plug-in. Returns the code of the exception that it throws, nullopt if it returns.
///
/// A plug-in may have made that exception, and its destructor is then code in the plug-in's library. It is destroyed
/// when this returns: the library may be unloaded after that, not before.
template <class Call>
std::optional<std::int32_t> caughtCode(const Call& call) {
    const zuerr::ForeignCallGuard guard;
    try {
        call();
        return std::nullopt;
    } catch (...) {
        return zuerr::CurrentExceptionCode();
    }
}

/// Makes the call and stores its code, 0 unless it throws, and its duration.
template <class Call>
void runTimed(std::int32_t& code, std::uint64_t& timeMs, const Call& call) {
    const nTime::tStopwatch stopwatch;
    code = caughtCode(call).value_or(0);
    timeMs = stopwatch.elapsedMs();
}

}  // namespace

void tPluginManager::startAll(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask) {
    entries_.reserve(entries_.size() + descriptions.size());
    nPluginStart::tStarted started = nPluginStart::noneStarted(descriptions);
    for (const tPluginDescription& description : descriptions) {
        const nTime::tStopwatch stopwatch;
        tPluginEntry entry;
        if (const auto failure = caughtCode([&] { start(entry, description, allowedMask, started); })) {
            entry.library.close();
            entry.initCode = *failure;
        }
        entry.initTimeMs = stopwatch.elapsedMs();
        entries_.push_back(std::move(entry));
    }
}

void tPluginManager::stopAll() {
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
        runTimed(entry->stopCode, entry->stopTimeMs, [&] { entry->library.stop(); });
    }
}

void tPluginManager::cleanupAll() {
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
        runTimed(entry->cleanupCode, entry->cleanupTimeMs, [&] {
            entry->library.cleanup();
            entry->library.close();
        });
    }
}
