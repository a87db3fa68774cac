#include <windows.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "quarks/closer.h"
#include "stdpath/folders.h"
#include "stdpath/path.h"
#include "tool/fileIdentity.h"
#include "tool/pe/machine.h"
#include "tool/pe/systemLibraries.h"
#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

using tKey = std::unique_ptr<HKEY__, tCloser<RegCloseKey>>;
using tModule = std::unique_ptr<HINSTANCE__, tCloser<FreeLibrary>>;

constexpr const wchar_t* environmentKey = LR"(SYSTEM\CurrentControlSet\Control\Session Manager\Environment)";
constexpr const wchar_t* knownLibrariesKey = LR"(SYSTEM\CurrentControlSet\Control\Session Manager\KnownDLLs)";

/// Returns the machine's PATH, which services have, or an empty string if it cannot be read.
std::string searchPath() {
    DWORD size = 0;
    RegGetValueW(HKEY_LOCAL_MACHINE, environmentKey, L"PATH", RRF_RT_REG_SZ, nullptr, nullptr, &size);
    std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS status =
        RegGetValueW(HKEY_LOCAL_MACHINE, environmentKey, L"PATH", RRF_RT_REG_SZ, nullptr, text.data(), &size);
    return status == ERROR_SUCCESS ? nStdPath::pathToUtf8(text.c_str()) : std::string();
}

std::string windowsFolder() {
    std::array<wchar_t, MAX_PATH> path{};
    const UINT length = GetWindowsDirectoryW(path.data(), MAX_PATH);
    return length < MAX_PATH ? nStdPath::pathToUtf8(path.data()) : std::string();
}

std::vector<std::string> searchFolders(const tMachine& machine) {
    std::vector<std::string> folders{machine.systemFolder, joined(windowsFolder(), "system"), windowsFolder(),
                                     machine.currentFolder};
    const std::string path = searchPath();
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        if (end > 0) folders.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return folders;
}

std::vector<std::string> knownLibraries() {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, knownLibrariesKey, 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) return {};
    const tKey key(opened);
    std::vector<std::string> names;
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> value{};
        std::array<wchar_t, MAX_PATH + 1> file{};
        DWORD valueLength = value.size();
        DWORD size = MAX_PATH * sizeof(wchar_t);
        const LSTATUS status = RegEnumValueW(key.get(), i, value.data(), &valueLength, nullptr, nullptr,
                                             reinterpret_cast<BYTE*>(file.data()), &size);
        if (status == ERROR_MORE_DATA) continue;  // no name of a file
        if (status != ERROR_SUCCESS) return names;
        names.push_back(toLowerAscii(nStdPath::pathToUtf8(file.data())));
    }
}

bool exists(const std::string& path) {
    return GetFileAttributesW(nStdPath::widePathFromUtf8(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<std::string> findFile(const std::string& folder, const std::string& name) {
    if (name.find_first_of("\\/:") != std::string::npos) return std::nullopt;
    std::string path = joined(folder, name);
    return exists(path) ? std::optional(std::move(path)) : std::nullopt;
}

/// Returns findFile with a memory: the libraries of one folder import the same names again and again, and looking for a
/// file that is not there takes long in a large folder.
decltype(tMachine::findFile) cachedFindFile() {
    using tCache = std::unordered_map<std::string, std::optional<std::string>>;
    return [cache = std::make_shared<tCache>()](const std::string& folder, const std::string& name) {
        const auto [entry, isNew] = cache->try_emplace(toLowerAscii(joined(folder, name)));
        if (isNew) entry->second = findFile(folder, name);
        return entry->second;
    };
}

std::optional<std::string> findPath(const std::string& path) {
    if (path.starts_with(R"(\\?\)")) return exists(path) ? std::optional(path) : std::nullopt;  // taken literally
    const std::wstring wide = nStdPath::widePathFromUtf8(path);
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    const std::string found = nStdPath::pathToUtf8(full);
    return exists(found) ? std::optional(found) : std::nullopt;
}

/// Returns whether this version of Windows has the API set: its loader knows, so the library of Windows that implements
/// the set is mapped for a moment, without running any of its code.
bool hasApiSet(const std::string& name) {
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyz0123456789-";
    const std::string lower = toLowerAscii(name);
    // Nothing else may be loaded from anywhere else.
    if (!isApiSet(lower) || !lower.ends_with(".dll")) return false;
    if (lower.find_first_not_of(allowed) != lower.size() - 4) return false;
    const tModule module(LoadLibraryExW(std::wstring(lower.begin(), lower.end()).c_str(), nullptr,
                                        LOAD_LIBRARY_SEARCH_SYSTEM32 | DONT_RESOLVE_DLL_REFERENCES));
    // Without its updates, Windows 7 does not know the flag, and cannot be asked.
    return module != nullptr || GetLastError() == ERROR_INVALID_PARAMETER;
}

}  // namespace

tMachine thisMachine(const tFolderMap& /*folderMap*/, const tHostFolders& host) {
    tMachine machine;
    machine.systemFolder = nStdPath::pathToUtf8(nStdPath::systemFolder());
    machine.applicationFolder =
        host.application.empty() ? nStdPath::pathToUtf8(nStdPath::applicationFolder()) : host.application;
    machine.currentFolder = host.current.empty() ? machine.systemFolder : host.current;
    machine.searchFolders = searchFolders(machine);
    machine.knownLibraries = knownLibraries();
    machine.findFile = cachedFindFile();
    machine.findPath = findPath;
    machine.readLibrary = cachedLibraries();
    machine.identityOf = nFileIdentity::of;
    machine.isSystemLibrary = hasApiSet;
    return machine;
}

}  // namespace nPe
