#pragma once

#include <atomic>
#include <cstdint>

/// The functions that the Service Control Manager and the console call.
/// (https://learn.microsoft.com/windows/win32/services/service-programs)

/// The service's main function: reports the states and drives start, run and stop. The first argument text is the
/// service's name. Thread: the manager's service thread.
void serviceMain(unsigned long argumentCount, char** arguments);

/// Acts on stop and shutdown, ignores every other control. Thread: the dispatcher's.
void serviceControlHandler(unsigned long control);

/// Console control handlers; both handle every event, whatever it is. The system calls the one registered last first,
/// so the early one receives the events during the start and after the run handler has been removed. It records that
/// the run is to be skipped; the other one removes itself and ends the run. Thread: the system's console thread.
int earlyConsoleHandler(unsigned long event);
int runConsoleHandler(unsigned long event);

/// A SERVICE_STATUS_HANDLE; owned by the system.
extern void* gStatusHandle;

/// 0 = free, 1 = taken. Keeps the control handler's report and stop request from overlapping the service main's own;
/// once the run has returned the service main takes it for good, and every later request is dropped.
extern std::atomic<std::int32_t> gStatusLock;

/// Set to 1 by earlyConsoleHandler, read once by the main thread.
extern std::atomic<std::uint8_t> gConsoleInterrupted;
