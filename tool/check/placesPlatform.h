#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>
#include <vector>

#include "ini/file.h"
#include "tool/check/places.h"

namespace nCheck {

/// The platform's part: lists the plug-in directory of this machine. Throws tCannotLook.
[[nodiscard]] tListing listThisMachine();

/// The platform's part: appends the paths of the descriptions that the host sees in a directory. Throws an exception
/// derived from std::exception.
void listDescriptions(const boost::filesystem::path& directory, std::vector<std::string>& files);

/// The platform's part: opens a description as the host does. Returns null if the host cannot open it.
[[nodiscard]] nIni::tFile openDescription(const std::string& file);

/// The platform's part: returns the name under which a folder lists this file; the case of its letters may differ from
/// what was typed. Returns nullopt for a device, which no folder lists. Requires: the file exists.
[[nodiscard]] std::optional<boost::filesystem::path> listedName(const boost::filesystem::path& file);

/// Finds what the host passes over although somebody may take it for a description. Throws
/// boost::filesystem::filesystem_error.
/// Requires: the files that the host sees are listed.
void findUnseen(const boost::filesystem::path& directory, tListing& listing);

}  // namespace nCheck
