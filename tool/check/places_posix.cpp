// The service never ships with this: what there is to list where the host cannot run.
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string_view>

#include "ini/file.h"
#include "ini/parser.h"
#include "source/descriptionFormat.h"
#include "tool/check/placesPlatform.h"
#include "tool/check/prediction.h"
#include "tool/check/wording.h"
#include "tool/fileDescriptor.h"
#include "tool/folderEntries.h"

namespace nCheck {
namespace {

/// Reads up to the size that the file had at first, without asking the system whether it has ended there: that would
/// take as long as reading a small file. The system says that some of its own files are empty, though they are not.
bool readAll(int file, std::string& text) {
    struct stat status {};
    if (fstat(file, &status) != 0) return false;
    const auto size = static_cast<std::size_t>(status.st_size);
    std::array<char, 4096> chunk;  // NOLINT(cppcoreguidelines-pro-type-member-init): read fills it
    ssize_t count = 0;
    do {
        count = ::read(file, chunk.data(), chunk.size());
        if (count < 0) return false;
        text.append(chunk.data(), static_cast<std::size_t>(count));
    } while (count > 0 && text.size() != size);
    return true;
}

}  // namespace

tListing listThisMachine() {
    throw tCannotLook("The host does not run on this machine: name a directory or files to check");
}

// The host's own code, made for Windows, would ask the system for the kind of each file and convert each path twice.

void listDescriptions(const boost::filesystem::path& directory, tListing& listing) {
    const auto entries = nFolderEntries::list(directory.native());
    if (!entries) throw std::runtime_error("the directory cannot be read");
    const std::string folder = directory.native() + (directory.native().ends_with('/') ? "" : "/");
    const std::string_view extension = nDescriptionFormat::extension;
    for (const auto& [name, isFile] : *entries) {
        // A name that consists of the extension only has none.
        if (isFile && name.size() > extension.size() && name.ends_with(extension)) {
            listing.files.push_back(folder + name);
        } else {
            addIfUnseen(folder + name, listing);
        }
    }
}

std::optional<int> parseDescription(const std::string& file, nIni::tDocument& document, std::string& text) {
    if (!nWording::isUtf8(file)) return std::nullopt;  // the host does not find it
    const tFileDescriptor opened(file);
    if (opened.number() < 0) return std::nullopt;
    if (!readAll(opened.number(), text)) return nIni::fileNotRead;
    std::array<char, 4096> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): the stream fills it
    const nIni::tFile stream(fmemopen(text.data(), text.size(), "rb"));
    if (stream == nullptr) throw std::bad_alloc();
    std::setvbuf(stream.get(), buffer.data(), _IOFBF, buffer.size());
    return nIni::parseStream(document, stream.get());
}

std::optional<boost::filesystem::path> listedName(const boost::filesystem::path& file) { return file.filename(); }

}  // namespace nCheck
