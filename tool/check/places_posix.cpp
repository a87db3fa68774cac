// The service never ships with this: what there is to list where the host cannot run.
#include <filesystem>

#include "source/descriptionFormat.h"
#include "tool/check/placesPlatform.h"
#include "tool/check/prediction.h"
#include "tool/check/wording.h"

namespace nCheck {

tListing listThisMachine() {
    throw tCannotLook("The host does not run on this machine: name a directory or files to check");
}

// The host's own code, made for Windows, would ask the system for the kind of each file and convert each path twice.

void listDescriptions(const boost::filesystem::path& directory, std::vector<std::string>& files) {
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(directory.native())) {
        std::error_code ignored;
        if (entry.path().extension() != nDescriptionFormat::extension || !entry.is_regular_file(ignored)) continue;
        files.push_back(entry.path().native());
    }
}

nIni::tFile openDescription(const std::string& file) {
    return nIni::tFile(nWording::isUtf8(file) ? std::fopen(file.c_str(), "rb") : nullptr);
}

std::optional<boost::filesystem::path> listedName(const boost::filesystem::path& file) { return file.filename(); }

}  // namespace nCheck
