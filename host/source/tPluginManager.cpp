#include "source/tPluginManager.h"

#include <algorithm>
#include <boost/function.hpp>
#include <optional>
#include <utility>

#include "err/Exception.h"
#include "source/tStartedNames.h"
#include "time/stopwatch.h"

namespace {

constexpr const char* sourceFile = ".\\source\\tPluginManager";
constexpr zuerr::RaiseReport featureMissing{zuerr::featureUnsupported, {sourceFile, 41}};
constexpr zuerr::RaiseReport dependencyMissing{zuerr::resourceNotFound, {sourceFile, 48}};
constexpr zuerr::RaiseReport initializeFailed{"pluginStatus", {sourceFile, 55}};

/// Starts the plug-in and adds it to the started ones. Throws when it cannot be started; its library may be loaded
/// then. All memory is asked for before the plug-in's own code runs: it is never initialised and then given up.
void start(tPluginEntry& entry, const tPluginDescription& description, std::uint32_t allowedMask,
           tStartedNames& started) {
    entry.description = description;
    if ((description.requiresMask & allowedMask) == 0) zuerr::Raise(featureMissing);
    if (!started.haveStarted(description.dependencies)) zuerr::Raise(dependencyMissing);
    std::string name = description.name;
    entry.library.open(description);
    entry.initCode = entry.library.initialize();
    if (entry.initCode < 0) {
        entry.library.close();
        zuerr::Raise(initializeFailed, entry.initCode);
    }
    started.add(std::move(name));
}

/// Makes a call that may lead into a plug-in; gives the code of the exception that comes out of it, if one does.
///
/// That exception may have been made by a plug-in, and its destructor is then code in the plug-in's library. It is
/// gone when this returns: the library may be unloaded after that, not before.
template <class tCall>
std::optional<std::int32_t> failureOf(const tCall& call) {
    const zuerr::ForeignCall guard;
    try {
        call();
        return std::nullopt;
    } catch (...) {
        return zuerr::CurrentExceptionCode();
    }
}

/// Makes the call for every entry, last started first, and keeps its code and duration where the members say.
void callBackwards(std::vector<tPluginEntry>& entries, const boost::function<void(tSharedLibrary&)>& call,
                   std::int32_t tPluginEntry::*code, std::uint64_t tPluginEntry::*timeMs) {
    std::for_each(entries.rbegin(), entries.rend(), [&](tPluginEntry& entry) {
        const nTime::tStopwatch stopwatch;
        entry.*code = failureOf([&] { call(entry.library); }).value_or(0);
        entry.*timeMs = stopwatch.elapsedMs();
    });
}

}  // namespace

void tPluginManager::startAll(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask) {
    entries_.reserve(entries_.size() + descriptions.size());
    tStartedNames started(descriptions.size());
    for (const tPluginDescription& description : descriptions) {
        const nTime::tStopwatch stopwatch;
        tPluginEntry entry;
        if (const auto failure = failureOf([&] { start(entry, description, allowedMask, started); })) {
            entry.library.close();
            entry.initCode = *failure;
        }
        entry.initTimeMs = stopwatch.elapsedMs();
        entries_.push_back(std::move(entry));
    }
}

void tPluginManager::stopAll() {
    const auto call = [](tSharedLibrary& library) { library.stop(); };
    callBackwards(entries_, call, &tPluginEntry::stopCode, &tPluginEntry::stopTimeMs);
}

void tPluginManager::cleanupAll() {
    const auto call = [](tSharedLibrary& library) {
        library.cleanup();
        library.close();
    };
    callBackwards(entries_, call, &tPluginEntry::cleanupCode, &tPluginEntry::cleanupTimeMs);
}
