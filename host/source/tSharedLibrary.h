#pragma once

#include <cstdint>

#include "err/PlatformStatus.h"
#include "quarks/library.h"
#include "source/nPluginData.h"

/// One plug-in library and its three entry points. This is a plain value: a copy refers to the same library, and only
/// the functions unload and close unload it. Thread: one at a time.
///
/// load, unload and symbol set the status to -52005 when they fail, and do nothing at all, not even a system call, if
/// it already contains an error. open and close throw zuerr::Exception instead, except while another exception is
/// propagating: then they ignore the failure.
struct tSharedLibrary {
    using tInitialize = std::int32_t (*)();
    using tNotify = void (*)();

    std::int32_t loaded = 0;             ///< 1 while the library is loaded
    nLibrary::tHandle handle = nullptr;  ///< valid while loaded is 1
    tInitialize initialize = noInitialize;
    tNotify stop = doNothing;
    tNotify cleanup = doNothing;

    /// The path is UTF-8. A relative path is resolved along the system's search path.
    void load(const char* path, zuerr::PlatformStatus& status);

    /// Does nothing if no library is loaded. After a failure the library still counts as loaded.
    void unload(zuerr::PlatformStatus& status);

    /// Returns the address exported under this name, or null on failure, including when no library is loaded.
    void* symbol(const char* name, zuerr::PlatformStatus& status) const;

    /// Loads the described library and looks up its named entries; an entry without a name becomes the built-in one,
    /// which does nothing and succeeds. The entries change together or not at all. If this throws because an entry is
    /// missing, the library stays loaded, and the caller must close it.
    void open(const tPluginDescription& description);

    /// Unloads the library, if one is loaded, and restores the built-in entries. If this throws, nothing has changed.
    void close();

    static std::int32_t noInitialize() { return 0; }
    static void doNothing() {}
};
