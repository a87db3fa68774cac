#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// Files that commands write for others to read.
namespace nOutputFile {

/// The file could not be written. Its text is one sentence for people.
struct tCannotWrite : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Replaces the content of a file (UTF-8 path), or creates the file: readers see the whole old content or the whole new
/// one, whatever happens. The new content is written to a temporary file in the same folder, which does not outlive a
/// failure or Ctrl+C. A device or a pipe is written to directly. Throws tCannotWrite, with the old content unchanged.
void replace(const std::string& path, std::string_view content);

}  // namespace nOutputFile
