#include "bench/bareHost_win32.h"

#include <windows.h>
// windows.h comes first because the others need its types.
#include <share.h>
#include <shlobj.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "quarks/processAccess.h"
#include "source/nDeployment.h"

namespace {

struct tLoaded {
    HMODULE library;
    int (*initialize)();
    void (*stop)();
    void (*cleanup)();
};

template <class tEntry>
tEntry entryOf(HMODULE library, const char* name) {
    return reinterpret_cast<tEntry>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

/// Makes the calls that a stopwatch makes when it starts and when it stops.
void readClock() {
    DWORD adjustment = 0;
    DWORD increment = 0;
    BOOL disabled = FALSE;
    GetTickCount64();
    GetSystemTimeAdjustment(&adjustment, &increment, &disabled);
}

template <class tCall>
void timed(tCall call) {
    readClock();
    call();
    readClock();
}

void readRegistry() {
    std::array<wchar_t, 256> value{};
    DWORD size = sizeof value;
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvell\\Common\\Installer", 0, KEY_READ, &key);
    RegQueryValueExW(key, L"ZUSHAREDDIR64", nullptr, nullptr, reinterpret_cast<BYTE*>(value.data()), &size);
    RegCloseKey(key);
}

void writeStatus(const std::string& text) {
    std::array<wchar_t, MAX_PATH> folder{};
    SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder.data());
    const std::wstring directory = std::wstring(folder.data()) + L"\\Corvell\\";
    replaceBarely(directory + L"zuZiptraRemoteService.status", directory + L".zuZiptraRemoteService.status.tmp", text);
}

tLoaded start(const std::string& path) {
    tLoaded loaded{};
    timed([&] {
        loaded.library = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
        loaded.initialize = entryOf<int (*)()>(loaded.library, "TinyInitialize");
        loaded.stop = entryOf<void (*)()>(loaded.library, "TinyStop");
        loaded.cleanup = entryOf<void (*)()>(loaded.library, "TinyCleanup");
        loaded.initialize();
    });
    return loaded;
}

}  // namespace

tBareHost::tBareHost(const tDescriptions& descriptions, std::string lastStatus)
    : directory_(descriptions.directory()), libraries_(descriptions.libraries()), longStatus_(std::move(lastStatus)) {
    std::erase(longStatus_, '\r');
    shortStatus_ = longStatus_.substr(0, 120);
}

void tBareHost::live() const {
    const HANDLE stopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    nProcessAccess::grantQueryToEveryone();
    writeStatus(shortStatus_);
    SetEvent(stopEvent);

    timed([&] {
        readRegistry();
        for (const std::wstring& path : listBarely(directory_.native())) readBarely(path.c_str());
        static_cast<void>(nDeployment::IsDeploymentAllowed());
    });
    writeStatus(shortStatus_);

    std::vector<tLoaded> plugins;
    plugins.reserve(libraries_.size());
    for (const std::string& path : libraries_) plugins.push_back(start(path));
    writeStatus(longStatus_);

    WaitForSingleObject(stopEvent, INFINITE);

    std::for_each(plugins.rbegin(), plugins.rend(), [](const tLoaded& plugin) { timed(plugin.stop); });
    std::for_each(plugins.rbegin(), plugins.rend(), [](const tLoaded& plugin) {
        timed([&] {
            plugin.cleanup();
            FreeLibrary(plugin.library);
        });
    });
    writeStatus(longStatus_);
    writeStatus(longStatus_);
    CloseHandle(stopEvent);
}

std::vector<std::wstring> listBarely(const std::wstring& directory) {
    std::vector<std::wstring> paths;
    WIN32_FIND_DATAW found;
    GetFileAttributesW(directory.c_str());
    const HANDLE search = FindFirstFileW((directory + L"\\*").c_str(), &found);
    while (FindNextFileW(search, &found) != FALSE) {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            paths.push_back(directory + L"\\" + found.cFileName);
        }
    }
    FindClose(search);
    return paths;
}

void readBarely(const wchar_t* path) {
    static std::array<char, 4096> bytes;  // filled with zeros once, not for each file
    std::FILE* const file = _wfopen(path, L"rb");
    while (std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size()) {
    }
    std::fclose(file);
}

void replaceBarely(const std::wstring& path, const std::wstring& temporaryPath, const std::string& text) {
    std::FILE* const file = _wfsopen(temporaryPath.c_str(), L"w", _SH_DENYNO);
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
    _wremove(path.c_str());
    static_cast<void>(_wrename(temporaryPath.c_str(), path.c_str()));
}
