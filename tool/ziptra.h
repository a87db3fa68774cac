#pragma once

#include <string>
#include <vector>

#include "tool/context.h"

/// The companion tool: sees what the host will do with its plug-ins, and why it did.

/// Runs the program with these arguments (UTF-8, without the program's name) and returns the exit code. The context's
/// colour is what "--color auto" means. No exception escapes: it becomes a sentence on the error stream.
[[nodiscard]] int runZiptra(const std::vector<std::string>& arguments, tContext& context);

/// The same with the process's standard streams.
[[nodiscard]] int runZiptraOnConsole(const std::vector<std::string>& arguments);
