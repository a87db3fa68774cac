#include "tool/audit/auditCommand.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tool/audit/auditRun.h"

namespace nAudit {

void addCommand(CLI::App& program, tContext& context) {
    CLI::App* const command = program.add_subcommand("audit", "Show who can change what the service trusts");
    const auto options = std::make_shared<tOptions>();
    command->add_flag("--fix", options->fix, "Set the access lists of the host's folders as 'install' does");
    command->add_flag("--json", options->json, "Print one JSON document");
    command->add_flag("--strict", options->strict, "Exit code 1 for warnings, too");
    command->footer(
        "Example: ziptra audit --fix\n"
        "Exit code: 0 if only administrators can change it, 1 if others can, 2 if the command could not look.");
    command->callback([options, &context] { run(*options, thisMachine(), context); });
}

}  // namespace nAudit
