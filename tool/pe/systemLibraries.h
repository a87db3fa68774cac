#pragma once

#include <string_view>

/// What can be told of Windows' own libraries by their names, on a machine that is not Windows. No list can be
/// complete: new versions add libraries, and optional parts bring theirs.
namespace nPe {

/// Returns whether the name is an API set's ("api-ms-win-…", "ext-ms-…"): not a file, but a name of functions that some
/// library of Windows provides.
[[nodiscard]] bool isApiSet(std::string_view name);

/// Returns whether every supported version of Windows contains this library. Ignores case.
[[nodiscard]] bool isInEveryWindows(std::string_view name);

/// Returns whether the name looks like one of Windows, or of Microsoft's redistributable runtimes. Ignores case.
[[nodiscard]] bool looksLikeWindows(std::string_view name);

}  // namespace nPe
