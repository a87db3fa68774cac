#pragma once

#include <cstdint>

#include "err/PlatformStatus.h"
#include "quarks/library.h"
#include "source/nPluginData.h"

/// One plug-in library and its three entry points. A plain value: copying it copies the reference to the library, and
/// nothing is unloaded unless unload or close is called. One thread.
///
/// load, unload and symbol report through the status: they fill it with -52005 when they fail, and do nothing at all,
/// not even a system call, when it contains an error already. open and close throw zuerr::Exception instead, except
/// while another exception is propagating: the failure is then dropped.
struct tSharedLibrary {
    using tInitialize = std::int32_t (*)();
    using tNotify = void (*)();

    std::int32_t loaded = 0;             ///< 1 while the library is loaded
    nLibrary::tHandle handle = nullptr;  ///< meaningful while loaded is 1
    tInitialize initialize = noInitialize;
    tNotify stop = doNothing;
    tNotify cleanup = doNothing;

    /// The path is UTF-8. A relative one is looked for along the system's search path.
    void load(const char* path, zuerr::PlatformStatus& status);

    /// Does nothing when no library is loaded. After a failure it still counts as loaded.
    void unload(zuerr::PlatformStatus& status);

    /// Returns the address exported under this name; null on failure, and when no library is loaded.
    void* symbol(const char* name, zuerr::PlatformStatus& status) const;

    /// Loads the described library and looks its named entries up; an entry without a name is a built-in one, which
    /// does nothing and succeeds. The entries change together or not at all. When this throws over a missing entry the
    /// library is loaded, and the caller's to close.
    void open(const tPluginDescription& description);

    /// Unloads the library, if one is loaded, and puts the built-in entries back. When this throws, library and
    /// entries are as they were.
    void close();

    static std::int32_t noInitialize() { return 0; }
    static void doNothing() {}
};
