#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// The calls of Windows that ziptra/worker.hpp makes, to watch them and to make them fail.
namespace systemCalls {

/// What the next tests expect; reset by resetAll.
inline bool refuseThreads = false;
inline bool refuseEvents = false;

void resetAll();

/// Returns how many of the threads and events that were created since resetAll have not been closed.
[[nodiscard]] int openHandles();

/// Returns what was sent to the debugger since resetAll.
[[nodiscard]] std::vector<std::string> debuggerTexts();

/// Returns the time of the last wait.
[[nodiscard]] DWORD lastWaitMs();

}  // namespace systemCalls
