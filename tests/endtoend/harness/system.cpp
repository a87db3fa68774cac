#include "tests/endtoend/harness/system.h"

// windows.h first: the others need its types.
#include <aclapi.h>
#include <shlobj.h>
#include <tlhelp32.h>

#include <stdexcept>

#include "tests/endtoend/harness/wait.h"

namespace endtoend {
namespace {

/// Returns whether the directory is gone. std::filesystem::remove_all stops at paths of more than 260 characters.
bool removeTree(const std::wstring& directory) {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW((directory + L"\\*").c_str(), &entry);
    for (bool more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &entry) != FALSE) {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = directory + L"\\" + name;
        const bool isDirectory = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        static_cast<void>(isDirectory ? removeTree(path) : DeleteFileW(path.c_str()) != FALSE);
    }
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
    return RemoveDirectoryW(directory.c_str()) != FALSE || GetLastError() == ERROR_FILE_NOT_FOUND;
}

}  // namespace

void failed(const std::string& call, DWORD error) {
    throw std::runtime_error(call + " failed with error " + std::to_string(error));
}

std::wstring wide(std::string_view utf8) {
    std::wstring result(utf8.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), result.data(),
                                           static_cast<int>(result.size()));
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::string utf8(std::wstring_view wide) {
    std::string result(3 * wide.size(), '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), result.data(),
                                           static_cast<int>(result.size()), nullptr, nullptr);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::string readFile(const tPath& file) {
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return {};
    const tHandle owner(handle);
    std::string bytes(GetFileSize(handle, nullptr), '\0');
    DWORD read = 0;
    ReadFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    bytes.resize(read);
    return bytes;
}

void writeFile(const tPath& file, std::string_view bytes) {
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    require(handle != INVALID_HANDLE_VALUE, "CreateFileW");
    const tHandle owner(handle);
    DWORD written = 0;
    require(WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE, "WriteFile");
}

bool isWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

tPath ownExecutable() {
    std::wstring name(1024, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
    return name;
}

tPath makerFolder() {
    wchar_t folder[MAX_PATH];
    if (SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, 0, folder) != S_OK) failed("SHGetFolderPathW");
    return tPath(folder) / L"Corvell";
}

bool processExists(DWORD id) {
    const tHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    bool more = Process32FirstW(snapshot.get(), &entry) != FALSE;
    while (more && entry.th32ProcessID != id) more = Process32NextW(snapshot.get(), &entry) != FALSE;
    return more;
}

tHandle openDespiteAccessList(DWORD processId, DWORD access) {
    // An owner may always change the access list, and a missing list grants access to everyone.
    if (const tHandle owner(OpenProcess(WRITE_DAC, FALSE, processId)); owner) {
        SetSecurityInfo(owner.get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr, nullptr);
    }
    return tHandle(OpenProcess(access, FALSE, processId));
}

tTemporaryDirectory::tTemporaryDirectory() {
    static int count = 0;
    const std::wstring name = L"zuZiptraEndToEnd." + std::to_wstring(GetCurrentProcessId()) + L".";
    do {
        path_ = std::filesystem::temp_directory_path() / (name + std::to_wstring(++count));
    } while (!std::filesystem::create_directory(path_));  // a killed run may have left one
}

tTemporaryDirectory::~tTemporaryDirectory() {
    // A process that has just ended may keep its own file open for a moment.
    becomesTrue([&] { return removeTree(LR"(\\?\)" + path_.native()); }, std::chrono::seconds(5));
}

tEnvironmentVariable::tEnvironmentVariable(const wchar_t* name, const std::wstring& value) : name_(name) {
    std::wstring before(32767, L'\0');
    before.resize(GetEnvironmentVariableW(name, before.data(), static_cast<DWORD>(before.size())));
    if (!before.empty()) before_ = before;
    require(SetEnvironmentVariableW(name, value.c_str()) != FALSE, "SetEnvironmentVariableW");
}

tEnvironmentVariable::~tEnvironmentVariable() {
    SetEnvironmentVariableW(name_.c_str(), before_ ? before_->c_str() : nullptr);
}

}  // namespace endtoend
