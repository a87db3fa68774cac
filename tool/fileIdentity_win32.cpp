#include <windows.h>

#include <memory>

#include "quarks/closer.h"
#include "stdpath/path.h"
#include "tool/fileIdentity.h"

namespace nFileIdentity {
namespace {

using tHandle = std::unique_ptr<void, tCloser<CloseHandle>>;

}  // namespace

std::string of(const std::string& path) {
    // Without any access, which also succeeds while another program has the file to itself.
    const HANDLE opened =
        CreateFileW(nStdPath::widePathFromUtf8(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);  // which folders need
    if (opened == INVALID_HANDLE_VALUE) return {};
    const tHandle file(opened);
    BY_HANDLE_FILE_INFORMATION information{};
    if (GetFileInformationByHandle(opened, &information) == FALSE) return {};
    if (information.nFileIndexHigh == 0 && information.nFileIndexLow == 0) return {};  // as some network drives have it
    return std::to_string(information.dwVolumeSerialNumber) + ':' + std::to_string(information.nFileIndexHigh) + ':' +
           std::to_string(information.nFileIndexLow);
}

}  // namespace nFileIdentity
