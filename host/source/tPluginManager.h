#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "source/nPluginData.h"
#include "source/tSharedLibrary.h"

/// A plug-in, started or not, with the code and the duration of each of its calls; 0 until set.
struct tPluginEntry {
    tSharedLibrary library;
    tPluginDescription description;
    std::int32_t initCode = 0;
    std::int32_t stopCode = 0;
    std::int32_t cleanupCode = 0;
    std::uint64_t initTimeMs = 0;
    std::uint64_t stopTimeMs = 0;
    std::uint64_t cleanupTimeMs = 0;
};

/// Returns a paragraph per entry, in their order, for people to read.
[[nodiscard]] std::string statusText(std::span<const tPluginEntry> entries);

/// Starts, stops and cleans up the plug-ins on the caller's thread, one after another. A plug-in's failure is stored as
/// a code in its entry and affects only the plug-ins that depend on it. An exception from a plug-in is such a failure
/// if zuerr::CurrentExceptionCode knows its type; any other exception propagates.
class tPluginManager {
public:
    /// Starts the plug-ins in the order given and appends an entry for each, started or not. Init codes: -52002 if no
    /// feature that it requires is in allowedMask; -52006 if a dependency has not started earlier in this call; -52005
    /// if its library cannot be loaded or lacks an entry; -52000 if memory ran out, in which case the entry may lack
    /// parts of the description; otherwise the plug-in's own code.
    /// Throws zuerr::Exception (-52005) if a failed plug-in cannot be unloaded; it then has no entry. Throws
    /// std::bad_alloc, with nothing started, if there is no memory for the entries.
    void startAll(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask);

    /// Calls every Stop entry, last started first.
    void stopAll();

    /// Calls every Cleanup entry and unloads the library, last started first. If Cleanup throws, the library stays
    /// loaded.
    void cleanupAll();

    /// Returns the entries in start order.
    [[nodiscard]] const std::vector<tPluginEntry>& entries() const noexcept { return entries_; }

    /// Returns the status text of the entries.
    [[nodiscard]] std::string statusText() const;

private:
    std::vector<tPluginEntry> entries_;
};
