#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "quarks/synchronization.h"
#include "source/tPluginManager.h"

/// The state of the running program. One object exists from start to stop; its construction and destruction both write
/// the status file. Thread: the same one for everything except signalServiceStop.
class tService {
public:
    /// Throws zuerr::Exception (-52008) if no event is available.
    tService();
    /// Throws only what the platform throws, normally nothing: WriteStatus handles its own failures.
    ~tService() noexcept(false);
    tService(const tService&) = delete;
    tService& operator=(const tService&) = delete;

    /// Lists, reads, orders, loads and starts the plug-ins, waits for stopEvent, then stops and cleans them up.
    /// Returns immediately, with the reason in messages, if there is no plug-in directory. Throws zuerr::Exception if a
    /// plug-in cannot be unloaded, Boost's filesystem_error if the directory cannot be read completely, and
    /// std::bad_alloc; each ends the run.
    void run();

    tEvent stopEvent;  ///< set once to end the run
    tPluginManager pluginManager;
    std::uint32_t allowedMask = 0xFFFFFFFF;  ///< features that plug-ins may require on this machine
    std::uint64_t initTimeMs = 0;            ///< time taken to prepare the run; 0 until measured
    std::string messages;                    ///< one line for each failure of the run

private:
    [[nodiscard]] std::vector<tPluginDescription> readDescriptions(const std::vector<std::string>& descriptionPaths);
};

/// The only service object, or null. It is owned: only the functions below create and destroy it.
extern tService* gService;

// The entry points that the platform calls. No std::exception escapes them: it is converted to its code, which is
// traced.

/// Creates the service, then destroys any earlier one. Returns 0, or -1 on failure, which leaves an earlier one
/// unchanged.
std::int32_t startService();
/// Requires: a started service. Returns when the stop event is set, or earlier if the run fails.
void runService();
/// Destroys the service, if there is one. If its destruction throws, gService keeps its value.
void stopService();
/// Requires: a started service that is not being stopped. Thread: any.
void signalServiceStop();

/// Clears the deployment bit in the service's mask if deployment is not allowed. If the query fails, leaves the mask
/// unchanged and appends a line with the reason to the service's messages.
void ApplyDeploymentSetting(tService& service);

/// Formats the service's state as text and replaces the status file with it. No std::exception escapes this function:
/// the service continues if the status file cannot be written.
void WriteStatus(const tService& service);

/// Replaces the whole file directory\name with the text: a reader sees the old file, the new one or, briefly, none.
/// Paths are UTF-8. Lines end with CR LF on disk. Throws zuerr::Exception: -52026 if the temporary file cannot be
/// opened or renamed, -52008 if it cannot be written.
void WriteStatusFile(const std::string& directory, const std::string& name, const std::string& text);
