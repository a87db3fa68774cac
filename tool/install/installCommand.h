#pragma once

#include "tool/context.h"

namespace CLI {
class App;
}

namespace nInstall {

/// Adds the commands install, repair and uninstall to the program. When the program is run with one of them, it writes
/// to the context's streams and sets the context's exit code. Both must outlive the parsing of the arguments.
void addCommands(CLI::App& program, tContext& context);

}  // namespace nInstall
