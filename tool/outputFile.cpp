#include "tool/outputFile.h"

#include "tool/format.h"
#include "tool/outputFilePlatform.h"

namespace nOutputFile {

void replace(const std::string& path, std::string_view content) {
    const std::string reason = tryToReplace(path, content);
    if (!reason.empty()) throw tCannotWrite(fmt::format("Cannot write '{}': {}", path, reason));
}

}  // namespace nOutputFile
