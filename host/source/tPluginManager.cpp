#include "source/tPluginManager.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "err/Exception.h"
#include "source/nPluginStart.h"
#include "time/stopwatch.h"

namespace {

// Checks only offsets: the sizes of strings and vectors depend on the standard library.
static_assert(offsetof(tPluginEntry, library) == 0 && offsetof(tPluginEntry, description) == sizeof(tSharedLibrary));
constexpr std::size_t codes = offsetof(tPluginEntry, initCode);
static_assert(codes == sizeof(tSharedLibrary) + sizeof(tPluginDescription));
static_assert(offsetof(tPluginEntry, stopCode) == codes + 4 && offsetof(tPluginEntry, cleanupCode) == codes + 8);
static_assert(offsetof(tPluginEntry, initTimeMs) == codes + 16 && offsetof(tPluginEntry, stopTimeMs) == codes + 24);
static_assert(offsetof(tPluginEntry, cleanupTimeMs) == codes + 32 && sizeof(tPluginEntry) == codes + 40);

constexpr const char* sourceFile = ".\\source\\tPluginManager";
constexpr zuerr::RaiseReport initializeFailed{"pluginStatus", {sourceFile, 55}};

/// Starts the plug-in and records that in `started`. Throws if it cannot be started; its library may then be loaded.
/// All memory is allocated before the plug-in's own code runs, so that no plug-in is initialised and then abandoned.
void start(tPluginEntry& entry, const tPluginDescription& description, std::uint32_t allowedMask,
           nPluginStart::tStarted& started) {
    entry.description = description;
    const zuerr::RaiseReport* const refusal = nPluginStart::refusal(description, allowedMask, started);
    if (refusal != nullptr) zuerr::Raise(*refusal);
    entry.library.open(description);
    entry.initCode = entry.library.initialize();
    if (entry.initCode < 0) {
        entry.library.close();
        zuerr::Raise(initializeFailed, entry.initCode);
    }
    started.at(description.name) = true;
}

/// Makes a call that may run a plug-in's code. Returns the code of the exception that it throws, or nullopt if it
/// returns.
///
/// If the exception comes from a plug-in, its destructor is code in the plug-in's library. The exception is destroyed
/// before this returns; only then may the library be unloaded.
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
