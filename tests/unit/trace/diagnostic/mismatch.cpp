// Compiled while the build is configured: with a text for ARGUMENT it must compile, with a number it must not.
#include "trace/trace.h"

void traceArgument() { nTrace::trace(nTrace::errors, "%s\n", ARGUMENT); }
