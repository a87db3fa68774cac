#pragma once

#include <string>

#include "tool/check/prediction.h"

namespace nCheck {

/// Returns the findings as a compiler shows them, each with its remedy, then the start order with the codes, and a
/// summary.
[[nodiscard]] std::string toText(const tPrediction& prediction, bool colour);

/// Returns the document that docs/schema/check.json describes.
[[nodiscard]] std::string toJson(const tPrediction& prediction);

}  // namespace nCheck
