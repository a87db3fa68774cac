#pragma once

#include <cstdint>

#include "err/PlatformStatus.h"
#include "quarks/library.h"
#include "source/nPluginData.h"

/// One plug-in library and its three entry points. A plain value: copying it copies the reference to the library, and
/// nothing is unloaded unless unload is called. One thread.
///
/// load, unload and symbol do nothing, not even a system call, when the status holds an error already; they fill it
/// with -52005 when they fail.
struct tSharedLibrary {
    using tInitialize = std::int32_t (*)();
    using tNotify = void (*)();

    std::int32_t loaded = 0;            ///< 1 while the library is loaded
    nLibrary::Handle handle = nullptr;  ///< meaningful while loaded is 1
    tInitialize initialize = noInitialize;
    tNotify stop = noNotify;
    tNotify cleanup = noNotify;

    void load(const char* path, zuerr::PlatformStatus& status);
    void unload(zuerr::PlatformStatus& status);
    void* symbol(const char* name, zuerr::PlatformStatus& status) const;

    /// Loads the described library and looks its named entries up. Throws zuerr::Exception (-52005) on failure, unless
    /// another exception is propagating; the library may then be loaded, with the entries that it had before.
    void open(const tPluginDescription& description);

    /// Puts the built-in entries back, which do nothing and succeed.
    void resetEntries() noexcept;

    static std::int32_t noInitialize() { return 0; }
    static void noNotify() {}
};
