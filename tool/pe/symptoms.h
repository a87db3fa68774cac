#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/pe/library.h"

/// What a library's tables tell about its author's mistakes.
namespace nPe {

/// Returns the exports that the author probably meant by this entry, in the library's order: its name as C++ compilers
/// mangle it ("_Z4Namev", "_ZN5space4NameEv", "?Name@space@@YAXXZ"), as 32-bit calling conventions decorate it
/// ("_Name@8", "@Name@8", "Name@@8"), with an underscore or without, and with letters of different case.
/// An export of exactly that name is not a near miss.
[[nodiscard]] std::vector<std::string> nearMisses(const tLibrary& library, std::string_view entry);

/// Returns those of the imported libraries that are debug versions of Microsoft's runtime, which only developers have:
/// "ucrtbased.dll", "vcruntime140d.dll", "MSVCP140D.dll", …
[[nodiscard]] std::vector<std::string> debugRuntimes(const tLibrary& library);

}  // namespace nPe
