#pragma once

#include <atomic>
#include <cstdint>

/// The functions that the Service Control Manager and the console call.
/// (https://learn.microsoft.com/windows/win32/services/service-programs)

/// The service's main function: reports each state and performs start, run and stop. The first argument is the
/// service's name. Thread: the manager's service thread.
void serviceMain(unsigned long argumentCount, char** arguments);

/// Handles stop and shutdown; ignores every other control. Thread: the dispatcher's.
void serviceControlHandler(unsigned long control);

/// Console control handlers; both handle every event. The system calls the most recently registered handler first, so
/// the early one receives the events during the start and after the run handler has been removed. It records that the
/// run is to be skipped; the run handler removes itself and ends the run. Thread: the system's console thread.
int earlyConsoleHandler(unsigned long event);
int runConsoleHandler(unsigned long event);

/// A SERVICE_STATUS_HANDLE; owned by the system.
extern void* gStatusHandle;

/// 0 = free, 1 = taken. Keeps the control handler's report and stop request from overlapping serviceMain's own reports;
/// once the run has returned, serviceMain takes the lock and never frees it, so every later request is dropped.
extern std::atomic<std::int32_t> gStatusLock;

/// Set to 1 by earlyConsoleHandler, read once by the main thread.
extern std::atomic<std::uint8_t> gConsoleInterrupted;
