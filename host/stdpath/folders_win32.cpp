#include <windows.h>

#include "stdpath/folders.h"

namespace nStdPath {
namespace {

constexpr DWORD longestPath = 32'767;

}  // namespace

std::wstring applicationFolder() {
    std::wstring path(longestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), longestPath);
    if (length == longestPath) return {};  // truncated
    path.resize(length);
    return path.substr(0, path.rfind(L'\\'));
}

std::wstring systemFolder() {
    std::wstring path(MAX_PATH, L'\0');
    const UINT length = GetSystemDirectoryW(path.data(), MAX_PATH);
    if (length >= MAX_PATH) return {};  // the required size, not the length
    path.resize(length);
    return path;
}

}  // namespace nStdPath
