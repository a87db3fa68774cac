#pragma once

#include <string>

#include "tool/check/prediction.h"
#include "tool/context.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// What several commands share.
namespace nRequest {

/// Adds the option --map to a command. The request must outlive the parsing of the arguments.
void addMapOption(CLI::App& command, nCheck::tRequest& request);

/// Adds the option --allowed.
void addAllowedOption(CLI::App& command, nCheck::tRequest& request);

/// Adds the option --output, which names the file that is replaced with the result. The text stays empty without it.
CLI::Option* addOutputOption(CLI::App& command, std::string& file);

/// Predicts, and shows how far it has come. Throws nCheck::tCannotLook.
[[nodiscard]] nCheck::tPrediction predict(nCheck::tRequest request, tContext& context);

}  // namespace nRequest
