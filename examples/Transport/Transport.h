#pragma once

// What the Transport plug-in offers to the plug-ins that name it under Dependencies.

#ifdef Transport_EXPORTS
#define TRANSPORT_API __declspec(dllexport)
#else
#define TRANSPORT_API __declspec(dllimport)
#endif

extern "C" {

/// The folder that files are delivered to, as UTF-8. Any thread; valid until TransportCleanup.
TRANSPORT_API const char* TransportFolder() noexcept;

// For the host.
TRANSPORT_API int TransportInitialize() noexcept;
TRANSPORT_API void TransportStop() noexcept;
TRANSPORT_API void TransportCleanup() noexcept;
}
