// Compiled while the build is configured: it must compile if ARGUMENT is a text, and must not if it is a number.
#include "trace/trace.h"

void traceArgument() { nTrace::trace(nTrace::errors, "%s\n", ARGUMENT); }
