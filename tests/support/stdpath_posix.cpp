// Never shipped: there is no registry here, so the platform's readers of stdpath return what the test specifies.
#include <algorithm>
#include <string_view>

#include "stdpath/stdpath.h"
#include "stdpath/systemError.h"
#include "stdpath/utf.h"
#include "tests/support/allocations.h"
#include "tests/support/stdpath.h"

namespace {

support::tSharedPlaces* current = nullptr;

std::u16string wide(const std::string& text) {
    const allocations::tPause pause;  // this text is the system's
    return nStdPath::fileNameFromUtf8(text);
}

}  // namespace

namespace support {

tSharedPlaces::tSharedPlaces() { current = this; }
tSharedPlaces::~tSharedPlaces() { current = nullptr; }

}  // namespace support

namespace nStdPath {

void readRegistryString(const char16_t* keyPath, const char16_t* valueName, std::uint32_t flags,
                        tWideBuffer& wideBuffer, zuerr::StatusRecord& status) {
    if (status.failed()) return;
    const bool known = current != nullptr && flags == 0 && std::u16string_view(valueName) == u"ZUSHAREDDIR64" &&
                       std::u16string_view(keyPath) == u"SOFTWARE\\Corvell\\Common\\Installer";
    if (!known || !current->sharedDirectory) {
        const std::uint32_t error = known ? current->sharedDirectoryError : 2;
        raiseSystemError(status, 256, {tSystemError::tKind::win32, error, "The stand-in says no.\r\n"},
                         "RegQueryValue failed");
        return;
    }
    const std::u16string value = wide(*current->sharedDirectory);
    if (wideBuffer.resize(value.size(), status)) std::copy(value.begin(), value.end(), wideBuffer.data());
}

void getKnownFolder(std::int32_t csidl, tWideBuffer& wideBuffer, zuerr::StatusRecord& status) {
    if (!wideBuffer.resize(260, status)) return;
    const bool known = current != nullptr && csidl == 35;
    if (!known || !current->appDataFolder) {
        const auto error = static_cast<std::uint32_t>(known ? current->appDataFolderError : -2147024894);
        raiseSystemError(status, 293, {tSystemError::tKind::hresult, error}, "SHGetFolderPathW failed");
        return;
    }
    const std::u16string folder = wide(*current->appDataFolder);
    std::copy_n(folder.begin(), std::min<std::size_t>(folder.size(), 259), wideBuffer.data());
}

}  // namespace nStdPath
