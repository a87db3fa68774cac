#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "quarks/synchronization.h"
#include "source/tPluginManager.h"

/// The running state of the program: one object, from start to stop. Its construction and destruction both write the
/// status file. Thread: one for everything but signalServiceStop.
class tService {
public:
    /// Throws zuerr::Exception (-52008) if no event is available.
    tService();
    /// Throws what the platform throws, which is nothing as a rule: WriteStatus keeps its failures to itself.
    ~tService() noexcept(false);
    tService(const tService&) = delete;
    tService& operator=(const tService&) = delete;

    /// Lists, reads, orders, loads and starts the plug-ins, waits for stopEvent, and stops and cleans them up.
    /// Returns at once, with the reason in messages, if there is no plug-in directory. Throws what the manager throws
    /// if a plug-in cannot be unloaded, and std::bad_alloc; the run ends there.
    void run();

    tEvent stopEvent;  ///< set once to end the run
    tPluginManager pluginManager;
    std::uint32_t allowedMask = 0xFFFFFFFF;  ///< features that plug-ins may require on this machine
    std::uint64_t initTimeMs = 0;            ///< time that preparing the run took; 0 until measured
    std::string messages;                    ///< one line for each failure of the run

private:
    [[nodiscard]] std::vector<tPluginDescription> readDescriptions(const std::vector<std::string>& descriptionPaths);
};

/// The one service object; owned, and null if there is none. Only the functions below create and destroy it.
extern tService* gService;

// The entry points that the platform calls. No std::exception leaves them: it is converted to its code and ends there.

/// Returns 0, or -1 if no new object could be built; an earlier one is then unchanged. Otherwise it is replaced.
std::int32_t startService();
/// Returns when the stop event is set, or earlier if there is nothing to run. Requires: a started service.
void runService();
/// Destroys the service, if there is one. If its destruction throws, gService is left as it was.
void stopService();
/// Requires: a started service that is not being stopped. Thread: any.
void signalServiceStop();

/// Clears the deployment bit in the service's mask if deployment is not allowed. A query that fails leaves the mask
/// unchanged and appends the reason to the service's messages as a line.
void ApplyDeploymentSetting(tService& service);

/// Renders the service's state and replaces the status file with it. No std::exception leaves it: a status file that
/// cannot be written does not stop the service.
void WriteStatus(const tService& service);

/// Replaces directory\name with the text as a whole: a reader sees the old file, the new one or, for a moment, none.
/// Paths are UTF-8. Lines end with CR LF on the disk. Throws zuerr::Exception: -52026 if the temporary file cannot be
/// opened or renamed, -52008 if it cannot be written.
void WriteStatusFile(const std::string& directory, const std::string& name, const std::string& text);
