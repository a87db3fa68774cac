#pragma once

#include "tool/check/prediction.h"
#include "tool/context.h"

namespace CLI {
class App;
}

/// What the commands share that look at descriptions.
namespace nRequest {

/// Adds the option --map to a command. The request must outlive the parsing of the arguments.
void addMapOption(CLI::App& command, nCheck::tRequest& request);

/// Adds the option --allowed.
void addAllowedOption(CLI::App& command, nCheck::tRequest& request);

/// Predicts, and shows how far it has come. Throws nCheck::tCannotLook.
[[nodiscard]] nCheck::tPrediction predict(nCheck::tRequest request, tContext& context);

}  // namespace nRequest
