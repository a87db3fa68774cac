#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The contents of one description file. Texts are UTF-8 and unchanged.
struct tPluginDescription {
    std::string name;
    std::vector<std::string> dependencies;  ///< names, sorted bytewise; a name given twice stays twice
    std::uint32_t requiresMask = 1;         ///< "Requires": features, at least one of which the machine must allow
    std::string path;                       ///< of the library
    std::string initialize;                 ///< exported names; empty: the plug-in has no such entry
    std::string stop;
    std::string cleanup;
};

/// The catalogue of plug-ins: one description file each. Failures are thrown as zuerr::Exception.
namespace nPluginData {

/// Appends the paths (UTF-8) of the description files in the plug-in directory, in the file system's order.
/// Throws -52006 when the shared directory is not known, -52003 when there is no plug-in directory, and Boost's
/// filesystem_error when the directory cannot be read to its end.
void listPlugins(std::vector<std::string>& files);

/// The same for any directory. The extension, dot included, is case-sensitive; ".ini" alone has the extension ".ini".
/// Only regular files and links to them are listed; an entry whose status is not available is skipped.
void listDescriptionFiles(const boost::filesystem::path& directory, const boost::filesystem::path& extension,
                          std::vector<std::string>& files);

/// Reads one file (UTF-8 path). Throws the parser's code when it cannot be read, -52005 when a line is malformed; the
/// record is then left as it was, and so it is, with nothing thrown, when there is no memory for a document. A key
/// that is missing leaves its field's default. "Requires" is read as scanf reads it: "-1" is 4294967295, "2x" is 2, "x"
/// is 0. Of a number beyond 32 bits Windows reads 4294967295, another C library may keep the low 32 bits.
void readDescription(const std::string& filePath, tPluginDescription& record);

/// Replaces the list by the trimmed, non-empty pieces between the commas, in their order.
void splitDependencies(std::string_view text, std::vector<std::string>& list);

}  // namespace nPluginData
