#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "quarks/synchronization.h"
#include "source/tPluginManager.h"

/// The running state of the program: one object, from start to stop. Its construction and destruction both write the
/// status file. Thread: one for everything except signalServiceStop.
class tService {
public:
    /// Throws zuerr::Exception (-52008) if no event is available.
    tService();
    /// Throws only what the platform throws, normally nothing: WriteStatus handles its own failures.
    ~tService() noexcept(false);
    tService(const tService&) = delete;
    tService& operator=(const tService&) = delete;

    /// Lists, reads, orders, loads and starts the plug-ins, waits for stopEvent, and stops and cleans them up.
    /// Returns at once, with the reason in messages, if there is no plug-in directory. Throws zuerr::Exception if a
    /// plug-in cannot be unloaded, and std::bad_alloc; the run then ends.
    void run();

    tEvent stopEvent;  ///< set once to end the run
    tPluginManager pluginManager;
    std::uint32_t allowedMask = 0xFFFFFFFF;  ///< features that plug-ins may require on this machine
    std::uint64_t initTimeMs = 0;            ///< time taken to prepare the run; 0 until measured
    std::string messages;                    ///< one line for each failure of the run

private:
    [[nodiscard]] std::vector<tPluginDescription> readDescriptions(const std::vector<std::string>& descriptionPaths);
};

/// The only service object, or null; owned. Only the functions below create and destroy it.
extern tService* gService;

// The entry points that the platform calls. No std::exception leaves them: it is converted to its code, which is
// traced.

/// Creates the service and destroys an earlier one. Returns 0, or -1 if that fails; an earlier one is then unchanged.
std::int32_t startService();
/// Requires: a started service. Returns when the stop event is set, or earlier if the run fails.
void runService();
/// Destroys the service, if there is one. If its destruction throws, gService is left as it was.
void stopService();
/// Requires: a started service that is not being stopped. Thread: any.
void signalServiceStop();

/// Clears the deployment bit in the service's mask if deployment is not allowed. A query that fails leaves the mask
/// unchanged and appends the reason to the service's messages as a line.
void ApplyDeploymentSetting(tService& service);

/// Formats the service's state as text and replaces the status file with it. No std::exception leaves this function:
/// the service continues if the status file cannot be written.
void WriteStatus(const tService& service);

/// Replaces the whole of directory
/// ame with the text: a reader sees the old file, the new one or, briefly, none. Paths are UTF-8. Lines end with CR LF
/// on disk. Throws zuerr::Exception: -52026 if the temporary file cannot be opened or renamed, -52008 if it cannot be
/// written.
void WriteStatusFile(const std::string& directory, const std::string& name, const std::string& text);
