#include "source/tSharedLibrary.h"

#include <cstddef>
#include <string>

#include "err/Exception.h"
#include "trace/trace.h"

namespace {

static_assert(sizeof(tSharedLibrary::loaded) == 4 && offsetof(tSharedLibrary, loaded) == 0);
static_assert(offsetof(tSharedLibrary, handle) == 8 && offsetof(tSharedLibrary, initialize) == 16);
static_assert(offsetof(tSharedLibrary, stop) == 24 && offsetof(tSharedLibrary, cleanup) == 32);

constexpr const char* sourceFile = "zukest/quarks/library";
constexpr zuerr::RaiseSite loadSite{sourceFile, 134};
constexpr zuerr::RaiseSite unloadSite{sourceFile, 225};
constexpr zuerr::RaiseSite notLoadedSite{sourceFile, 280};
constexpr zuerr::RaiseSite symbolSite{sourceFile, 299};

void fail(zuerr::PlatformStatus& status, const zuerr::RaiseSite& site) {
    zuerr::RaiseInto(status, zuerr::invalidParameter.code, zuerr::hostComponent, site);
}

/// Returns the library's entry with this name, or the built-in one if the name is empty.
template <class Entry>
Entry findEntry(const tSharedLibrary& library, const std::string& name, Entry builtIn) {
    if (name.empty()) return builtIn;
    zuerr::PlatformStatus status;
    void* const address = library.symbol(name.c_str(), status);
    zuerr::ThrowIfFailed(status);
    // While another exception is propagating, nothing is thrown for a missing entry. The result must be safe to call
    // even then.
    return address == nullptr ? builtIn : reinterpret_cast<Entry>(address);
}

}  // namespace

void tSharedLibrary::load(const char* path, zuerr::PlatformStatus& status) {
    if (status.failed()) return;
    std::uint32_t osError = 0;
    handle = nLibrary::load(path, osError);
    if (handle == nullptr) {
        nTrace::trace(nTrace::libraries, "Failed to load library %s, error was %d\n", path, osError);
        fail(status, loadSite);
        return;
    }
    loaded = 1;
}

void tSharedLibrary::unload(zuerr::PlatformStatus& status) {
    if (status.failed() || loaded != 1) return;
    std::uint32_t osError = 0;
    if (!nLibrary::unload(handle, osError)) {
        nTrace::trace(nTrace::libraries, "Failed to unload library, error was %d\n", osError);
        fail(status, unloadSite);
        return;
    }
    loaded = 0;
}

void* tSharedLibrary::symbol(const char* name, zuerr::PlatformStatus& status) const {
    if (status.failed()) return nullptr;
    if (loaded != 1) {
        fail(status, notLoadedSite);
        return nullptr;
    }
    std::uint32_t osError = 0;
    void* const address = nLibrary::symbol(handle, name, osError);
    if (address == nullptr) {
        nTrace::trace(nTrace::libraries, "Failed to load symbol %s, error was %d\n", name, osError);
        fail(status, symbolSite);
    }
    return address;
}

void tSharedLibrary::open(const tPluginDescription& description) {
    zuerr::PlatformStatus status;
    load(description.path.c_str(), status);
    zuerr::ThrowIfFailed(status);
    const auto foundInitialize = findEntry(*this, description.initialize, &noInitialize);
    const auto foundStop = findEntry(*this, description.stop, &doNothing);
    const auto foundCleanup = findEntry(*this, description.cleanup, &doNothing);
    initialize = foundInitialize;
    stop = foundStop;
    cleanup = foundCleanup;
}

void tSharedLibrary::close() {
    zuerr::PlatformStatus status;
    unload(status);
    zuerr::ThrowIfFailed(status);
    initialize = noInitialize;
    stop = doNothing;
    cleanup = doNothing;
}
