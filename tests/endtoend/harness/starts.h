#pragma once

#include <windows.h>

#include <functional>

namespace endtoend {

/// Makes a call that starts a process or a service. Repeats it once after ERROR_INTERNAL_ERROR, with which Wine fails
/// about once in a thousand starts before anything of the process has run. Throws std::runtime_error on other errors.
void requireStart(const char* call, const std::function<BOOL()>& start);

/// The same for a service that ends by itself. If it ends before the manager has looked at it, Wine reports
/// ERROR_SERVICE_REQUEST_TIMEOUT, as for a process that never reached the dispatcher; so that is repeated here as well,
/// and here only.
void requireBriefStart(const char* call, const std::function<BOOL()>& start);

/// Prints how many starts there were and how many were repeated. Fails the test program if they are too many.
void reportStarts();

}  // namespace endtoend
