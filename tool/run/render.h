#pragma once

#include <string>

#include "tool/run/judgement.h"

namespace nRun {

/// Returns what is wrong as a compiler shows it, then the calls of each plug-in, and the verdict.
[[nodiscard]] std::string toText(const tResult& result, bool colour);

/// Returns the document that docs/schema/run.json describes.
[[nodiscard]] std::string toJson(const tResult& result);

/// Returns a report in the form of JUnit: a suite for each life, with a test case for each plug-in.
[[nodiscard]] std::string toJunit(const tResult& result);

}  // namespace nRun
