#include "bench/hostStage_win32.h"

#include <windows.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "bench/pairs.h"
#include "err/StatusRecord.h"
#include "stdpath/stdpath.h"

namespace {

namespace fs = std::filesystem;

/// Returns the library with a time stamp and a checksum of its own. Wine treats libraries that agree in both as copies
/// of one another, and examines all of them when it loads one.
std::string withStamp(std::string library, std::uint32_t number) {
    std::int32_t header = 0;
    std::memcpy(&header, library.data() + offsetof(IMAGE_DOS_HEADER, e_lfanew), sizeof header);
    char* const headers = library.data() + header;
    const std::uint32_t stamp = 0x5EED0000 + number;
    std::memcpy(headers + offsetof(IMAGE_NT_HEADERS64, FileHeader.TimeDateStamp), &stamp, sizeof stamp);
    std::memcpy(headers + offsetof(IMAGE_NT_HEADERS64, OptionalHeader.CheckSum), &stamp, sizeof stamp);
    return library;
}

void writeFile(const fs::path& path, const std::string& bytes) {
    if (!fs::exists(path)) std::ofstream(path, std::ios::binary) << bytes;
}

void setSharedDirectory(const std::wstring& directory) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvell\\Common\\Installer", 0, nullptr, 0, KEY_WRITE, nullptr,
                    &key, nullptr);
    const auto bytes = static_cast<DWORD>((directory.size() + 1) * sizeof(wchar_t));
    const auto* const text = reinterpret_cast<const BYTE*>(directory.c_str());
    const LSTATUS error = RegSetValueExW(key, L"ZUSHAREDDIR64", 0, REG_SZ, text, bytes);
    RegCloseKey(key);
    nBench::demand(error == ERROR_SUCCESS, "the shared directory cannot be set");
}

fs::path ownFolder() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return fs::path(path).parent_path();
}

}  // namespace

tDescriptions::tDescriptions(int count) {
    const fs::path root = fs::current_path() / "build" / "bench" / "host" / std::to_string(count);
    directory_ = root / "ZiptraRemoteService" / "plugins";
    fs::create_directories(directory_);
    for (int i = 0; i < count; ++i) {
        const std::string name = "Plugin" + std::to_string(10'000 + i);
        const std::string library = (root / "libraries" / (name + ".dll")).string();
        std::string text = "[Service]\r\nName=" + name + "\r\n";
        text += "Path=" + library + "\r\nRequires=1\r\nInitialize=TinyInitialize\r\n";
        writeFile(directory_ / (name + ".ini"), text + "Stop=TinyStop\r\nCleanup=TinyCleanup\r\n");
        libraries_.push_back(library);
    }
}

void stageHost(const tDescriptions& descriptions) {
    const fs::path root = descriptions.directory().parent_path().parent_path();
    fs::create_directories(root / "libraries");
    fs::create_directories(statusFolder());
    const std::string tiny = readText(ownFolder() / "tiny.dll");
    nBench::demand(!tiny.empty(), "tiny.dll is not in the program's folder");
    std::uint32_t number = 0;
    for (const std::string& library : descriptions.libraries()) writeFile(library, withStamp(tiny, number++));
    setSharedDirectory(root.native());
}

fs::path statusFolder() {
    std::string folder;
    zuerr::StatusRecord status;
    nStdPath::getCommonAppDataDirectory(folder, status);
    return folder;
}

std::string readText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
