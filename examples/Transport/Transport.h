#pragma once

// The interface of the Transport plug-in for plug-ins that list it in Dependencies.

/// Returns the folder to which files are delivered, as UTF-8. The string is valid until TransportCleanup.
/// Thread: any.
extern "C" const char* TransportFolder() noexcept;
