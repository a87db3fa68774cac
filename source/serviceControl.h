#pragma once

#include <cstdint>

/// What the Service Control Manager and the console call.
/// (https://learn.microsoft.com/windows/win32/services/service-programs)

/// The name under which the service is installed.
inline constexpr const char* serviceName = "zuZiptraRemoteService";

/// The service's main function: reports the states and drives start, run and stop. On the manager's service thread.
void serviceMain(unsigned long argumentCount, char** arguments);

/// Acts on stop and shutdown, ignores every other control. On the dispatcher's thread.
void serviceControlHandler(unsigned long control);

/// Console control handlers, on the system's console thread; both handle every event. The early one, registered first
/// and so called last, notes that the run is to be skipped; the other ends the run and takes itself off the list.
int earlyConsoleHandler(unsigned long event);
int runConsoleHandler(unsigned long event);

/// A SERVICE_STATUS_HANDLE; owned by the system.
extern void* gStatusHandle;

/// 0 = free, 1 = taken. Keeps the control handler's report and stop request from overlapping the service main's own;
/// once the run has returned the service main takes it for good, and every later request is dropped.
extern std::int32_t gStatusLock;

/// Set by earlyConsoleHandler, read once by the main thread.
extern volatile unsigned char gConsoleInterrupted;
