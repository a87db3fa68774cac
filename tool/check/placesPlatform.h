#pragma once

#include <boost/filesystem/path.hpp>

#include "tool/check/places.h"

namespace nCheck {

/// The platform's part: lists the plug-in directory of this machine. Throws tCannotLook.
[[nodiscard]] tListing listThisMachine();

/// Finds what the host passes over although somebody may take it for a description. Throws
/// boost::filesystem::filesystem_error.
/// Requires: the files that the host sees are listed.
void findUnseen(const boost::filesystem::path& directory, tListing& listing);

}  // namespace nCheck
