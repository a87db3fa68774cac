// The service never ships with this: on a system without a registry, the vendor's folders are unknown.
#include "stdpath/stdpath.h"
#include "stdpath/systemError.h"

namespace nStdPath {
namespace {

void raiseUnknown(zuerr::StatusRecord& status, std::int32_t line, const char* description) {
    constexpr std::uint32_t notSupported = 50;  // ERROR_NOT_SUPPORTED
    raiseSystemError(status, line, {tSystemError::tKind::win32, notSupported}, description);
}

}  // namespace

void readRegistryString(const char16_t* /*keyPath*/, const char16_t* /*valueName*/, std::uint32_t /*flags*/,
                        tWideBuffer& /*wideBuffer*/, zuerr::StatusRecord& status) {
    raiseUnknown(status, 232, "RegOpenKeyEx failed");
}

void getKnownFolder(std::int32_t /*csidl*/, tWideBuffer& /*wideBuffer*/, zuerr::StatusRecord& status) {
    raiseUnknown(status, 293, "SHGetFolderPathW failed");
}

}  // namespace nStdPath
