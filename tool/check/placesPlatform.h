#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>
#include <vector>

#include "ini/document.h"
#include "tool/check/places.h"

namespace nCheck {

/// The platform's part: lists the plug-in directory of this machine. Throws tCannotLook.
[[nodiscard]] tListing listThisMachine();

/// The platform's part: adds the descriptions that the host sees in a directory, and findings about entries that it
/// passes over. Throws an exception derived from std::exception.
void listDescriptions(const boost::filesystem::path& directory, tListing& listing);

/// The platform's part: parses a description as the host does. Returns the parser's result, or nullopt if the host
/// cannot open the file. Sets the text unless the result is an error.
[[nodiscard]] std::optional<int> parseDescription(const std::string& file, nIni::tDocument& document,
                                                  std::string& text);

/// The platform's part: returns the name under which a folder lists this file; the case of its letters may differ from
/// what was typed. Returns nullopt for a device, which no folder lists. Requires: the file exists.
[[nodiscard]] std::optional<boost::filesystem::path> listedName(const boost::filesystem::path& file);

/// Adds a finding if somebody may take this entry of a directory, which the host passes over, for a description.
void addIfUnseen(const boost::filesystem::path& path, tListing& listing);

}  // namespace nCheck
