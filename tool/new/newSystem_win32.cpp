#include <windows.h>

#include <memory>
#include <type_traits>

#include "quarks/closer.h"
#include "stdpath/folders.h"
#include "stdpath/path.h"
#include "tool/new/newSystem.h"
#include "tool/systemReason.h"

namespace nNew {
namespace {

using tFile = std::unique_ptr<std::remove_pointer_t<HANDLE>, tCloser<CloseHandle>>;

std::wstring wide(const std::string& path) { return nStdPath::widePathFromUtf8(path); }

std::string createFolder(const std::string& folder) {
    return CreateDirectoryW(wide(folder).c_str(), nullptr) != FALSE ? std::string() : nSystemReason::last();
}

std::string createFile(const std::string& path, std::string_view content) {
    const std::wstring name = wide(path);
    const HANDLE created =
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (created == INVALID_HANDLE_VALUE) return nSystemReason::last();
    tFile file(created);
    DWORD written = 0;
    if (WriteFile(created, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) != FALSE) return {};
    std::string reason = nSystemReason::last();
    file.reset();
    DeleteFileW(name.c_str());
    return reason;
}

bool remove(const std::string& path) {
    const std::wstring name = wide(path);
    return DeleteFileW(name.c_str()) != FALSE || RemoveDirectoryW(name.c_str()) != FALSE;
}

bool exists(const std::string& path) { return GetFileAttributesW(wide(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

}  // namespace

tSystem thisSystem() {
    return {createFolder, createFile, remove, exists, nStdPath::pathToUtf8(nStdPath::applicationFolder()), true};
}

}  // namespace nNew
