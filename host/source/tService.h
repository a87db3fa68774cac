#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "quarks/synchronization.h"
#include "source/tPluginManager.h"

/// The running state of the program: one object, from start to stop. Its construction and destruction both write the
/// status file. All on one thread, but for signalServiceStop.
class tService {
public:
    /// Throws zuerr::Exception (-52008) when there is no event to be had.
    tService();
    ~tService();
    tService(const tService&) = delete;
    tService& operator=(const tService&) = delete;

    /// Lists, reads, orders, loads and starts the plug-ins, waits for stopEvent, and stops and cleans them up.
    /// Returns at once, with the reason in messages, when there is no plug-in directory. Throws what the manager throws
    /// when a plug-in cannot be unloaded, and std::bad_alloc; the run ends there.
    void run();

    tEvent stopEvent;  ///< set once to end the run
    tPluginManager pluginManager;
    std::uint32_t allowedMask = 0xFFFFFFFF;  ///< features that plug-ins may require on this machine
    std::uint64_t initTimeMs = 0;            ///< what preparing the run took, in milliseconds; 0 until measured
    std::string messages;                    ///< what went wrong, a line each

private:
    [[nodiscard]] std::vector<tPluginDescription> readDescriptions(const std::vector<std::string>& descriptionPaths);
};

/// The one service object; owned, and null when there is none. Created and destroyed by the functions below only.
extern tService* gService;

/// What the platform calls. No std::exception leaves them. startService gives 0, or -1 when there is no new object; an
/// earlier one is then left alone. runService returns when the stop event is set, or earlier when there is nothing to
/// run. signalServiceStop may be called from any thread while there is an object; stopService must not overlap it.
std::int32_t startService();
void runService();
void stopService();
void signalServiceStop();

/// Clears the deployment bit in the service's mask if deployment is not allowed. A query that fails leaves the mask
/// unchanged and appends the reason to the service's messages as a line.
void ApplyDeploymentSetting(tService& service);

/// Renders the service's state and replaces the status file by it. No std::exception leaves it: a status file that
/// cannot be written does not stop the service.
void WriteStatus(const tService& service);

/// Replaces directory\name by the text as a whole: a reader sees the old file, the new one or, for a moment, none.
/// Paths are UTF-8. Lines end with CR LF on the disk. Throws zuerr::Exception: -52026 when the temporary file cannot
/// be opened or renamed, -52008 when it cannot be written.
void WriteStatusFile(const std::string& directory, const std::string& name, const std::string& text);
