// The service never ships with this: what there is to list where the host cannot run.
#include "tool/check/placesPlatform.h"
#include "tool/check/prediction.h"

namespace nCheck {

tListing listThisMachine() {
    throw tCannotLook("The host does not run on this machine: name a directory or files to check");
}

std::optional<boost::filesystem::path> listedName(const boost::filesystem::path& file) { return file.filename(); }

}  // namespace nCheck
