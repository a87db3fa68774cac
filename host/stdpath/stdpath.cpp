#include "stdpath/stdpath.h"

#include <algorithm>

#include "err/Exception.h"
#include "stdpath/path.h"
#include "stdpath/systemError.h"
#include "stdpath/utf.h"

namespace nStdPath {
namespace {

constexpr std::int32_t commonAppData = 35;  // CSIDL_COMMON_APPDATA
constexpr std::size_t usualPathLength = 256;

/// Same as std::isspace in the C locale. std::isspace itself follows the current locale, which a plug-in may have set
/// for the whole process; it could then treat the last byte of a UTF-8 character as a space.
constexpr bool isSpace(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

constexpr bool isTrailingJunk(char character) { return isSpace(character) || character == 0 || character == '\\'; }

void assignTrimmed(std::string& result, const tWideBuffer& wide) {
    result.clear();
    result.reserve(usualPathLength);
    wideToUtf8(wide.begin(), wide.end(), result);
    trimPath(result);
}

}  // namespace

void getSharedDirectory(std::string& result, zuerr::StatusRecord& status) {
    tWideBuffer wide;
    readRegistryString(u"SOFTWARE\\Corvell\\Common\\Installer", u"ZUSHAREDDIR64", 0, wide, status);
    if (!status.failed()) assignTrimmed(result, wide);
}

void getCommonAppDataDirectory(std::string& result, zuerr::StatusRecord& status) {
    if (status.failed()) return;
    tWideBuffer wide;
    getKnownFolder(commonAppData, wide, status);
    assignTrimmed(result, wide);
    result += "\\Corvell";
}

boost::filesystem::path getPluginDirectory() {
    std::string sharedDirectory;
    zuerr::StatusRecord status;
    getSharedDirectory(sharedDirectory, status);
    zuerr::ThrowIfFailed(status);
    return pathFromUtf8(sharedDirectory) / "ZiptraRemoteService" / "plugins";
}

void trimPath(std::string& path) {
    path.erase(std::find_if_not(path.rbegin(), path.rend(), isTrailingJunk).base(), path.end());
    path.erase(path.begin(), std::find_if_not(path.begin(), path.end(), isSpace));
}

void raiseSystemError(zuerr::StatusRecord& status, std::int32_t line, const tSystemError& error,
                      const char* description) noexcept {
    const zuerr::RaiseReport report{zuerr::statusResourceNotFound, {"zutolq\\stdpath", line}};
    zuerr::JsonChain chain = zuerr::RaiseInto(status, report.code, report);
    chain.EnterObject("internal_error");
    if (error.kind == tSystemError::tKind::hresult) {
        chain.AddString("api", "hresult").AddInt("code", static_cast<std::int32_t>(error.code));
    } else {
        chain.AddString("api", "win32").AddUInt("code", error.code);
        if (error.message != nullptr) chain.AddString("string", error.message);
    }
    chain.LeaveObject().EnterObject("zutolq_debug").AddString("desc", description);
}

}  // namespace nStdPath
