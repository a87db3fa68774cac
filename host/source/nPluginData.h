#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nIni {
struct tDocument;
}

/// The contents of one description file. Texts are UTF-8.
struct tPluginDescription {
    std::string name;
    std::vector<std::string> dependencies;  ///< names, sorted bytewise; duplicates are kept
    std::uint32_t requiresMask = 1;         ///< "Requires": features, at least one of which the machine must allow
    std::string path;                       ///< of the library
    std::string initialize;                 ///< exported names; empty if the plug-in has no such entry
    std::string stop;
    std::string cleanup;
};

/// Finds and reads the plug-ins' description files. Failures are thrown as zuerr::Exception.
namespace nPluginData {

/// Appends the paths (UTF-8) of the description files in the plug-in directory, in the file system's order.
/// Throws -52006 if the shared directory is unknown, -52003 if there is no plug-in directory, and Boost's
/// filesystem_error if the directory cannot be read completely.
void listPlugins(std::vector<std::string>& files);

/// The same for any directory. The extension includes the dot and is case-sensitive; a file named ".ini" has the
/// extension ".ini". Only regular files and links to them are listed; an entry whose status is not available is
/// skipped.
void listDescriptionFiles(const boost::filesystem::path& directory, const boost::filesystem::path& extension,
                          std::vector<std::string>& files);

/// Reads one file (UTF-8 path). Throws the parser's code if it cannot be read, -52005 if a line is malformed; the
/// record is then unchanged. If there is no memory for a document, it is unchanged too, but nothing is thrown. A
/// missing key leaves its field's default. "Requires" is parsed like scanf's %u: "-1" is 4294967295, "2x" is 2, "x" is
/// 0. On Windows, a number above 32 bits is 4294967295; other C libraries may use its low 32 bits.
void readDescription(const std::string& filePath, tPluginDescription& record);

/// Returns what the document, parsed with nDescriptionFormat::documentFlags, describes; malformed lines don't matter
/// here.
[[nodiscard]] tPluginDescription describe(nIni::tDocument& document);

/// Replaces the list with the trimmed, non-empty pieces between the commas, in order.
void splitDependencies(std::string_view text, std::vector<std::string>& list);

}  // namespace nPluginData
