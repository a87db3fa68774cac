#pragma once

// The interface of the Transport plug-in for plug-ins that list it in Dependencies.

#ifdef Transport_EXPORTS
#define TRANSPORT_API __declspec(dllexport)
#else
#define TRANSPORT_API __declspec(dllimport)
#endif

extern "C" {

/// Returns the folder to which files are delivered, as UTF-8. The string is valid until TransportCleanup.
/// Thread: any.
TRANSPORT_API const char* TransportFolder() noexcept;

// Called by the host.
TRANSPORT_API int TransportInitialize() noexcept;
TRANSPORT_API void TransportStop() noexcept;
TRANSPORT_API void TransportCleanup() noexcept;
}
