#pragma once

#include "tool/audit/audit.h"
#include "tool/context.h"

namespace nAudit {

struct tOptions {
    bool fix = false;
    bool json = false;
    bool strict = false;
};

/// Prints the findings, with `fix` after the access lists of the folders of the host have been set. Sets the context's
/// exit code. Throws std::runtime_error if a list cannot be set.
void run(const tOptions& options, const tMachine& machine, tContext& context);

/// Returns this machine. Throws std::runtime_error where the service cannot run, and nInstall::tCannot.
[[nodiscard]] tMachine thisMachine();

}  // namespace nAudit
