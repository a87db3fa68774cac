#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What one description file says about its plug-in. Texts are UTF-8 and as they stand in the file.
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
/// filesystem_error when reading the directory fails half-way.
void listPlugins(std::vector<std::string>& files);

/// The same for any directory. The extension, dot included, is compared with regard to case. Only regular files and
/// links to them are listed; an entry whose kind cannot be told is passed over.
void listDescriptionFiles(const boost::filesystem::path& directory, const boost::filesystem::path& extension,
                          std::vector<std::string>& files);

/// Reads one file (UTF-8 path). Throws the parser's code when it cannot be read, -52005 when a line is malformed; the
/// record is then left as it was, and so it is, with nothing thrown, when there is no memory for a document. A key
/// that is missing gives its field's default. "Requires" is read as scanf reads it: "-1" is 4294967295, "2x" is 2, "x"
/// is 0, and what becomes of a number beyond 32 bits is the C library's affair.
void readDescription(const std::string& filePath, tPluginDescription& record);

/// Fills the list with the trimmed, non-empty pieces between the commas, in their order; what it held is dropped.
void splitDependencies(std::string_view text, std::vector<std::string>& list);

}  // namespace nPluginData
