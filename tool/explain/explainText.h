#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/explain/code.h"
#include "tool/explain/plugin.h"
#include "tool/rules.h"

/// Renders explanations, as text for people and as JSON (docs/schema/explain.json).
namespace nExplain {

[[nodiscard]] std::string toText(const tCodeExplanation& explanation);
[[nodiscard]] std::string toJson(const tCodeExplanation& explanation);

[[nodiscard]] std::string toText(const tRule& rule);
[[nodiscard]] std::string toJson(const tRule& rule);

/// With colours if asked for. Of very many steps and findings, the text contains the first ones, the JSON all.
[[nodiscard]] std::string toText(const tPluginExplanation& explanation, bool colour);
[[nodiscard]] std::string toJson(const tPluginExplanation& explanation);

/// Returns the table of all codes in Markdown, as docs/codes.md contains it.
[[nodiscard]] std::string codesAsMarkdown();

}  // namespace nExplain
