#pragma once

#include "tool/context.h"

namespace CLI {
class App;
}

namespace nNew {

/// Adds the command to the program. When the program is run with it, it writes to the context's streams and sets the
/// context's exit code. Both must outlive the parsing of the arguments.
void addCommand(CLI::App& program, tContext& context);

}  // namespace nNew
