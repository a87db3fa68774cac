#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>

#include "quarks/closer.h"
#include "stdpath/path.h"
#include "tool/outputFilePlatform.h"
#include "tool/systemReason.h"

namespace nOutputFile {
namespace {

using tHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, tCloser<CloseHandle>>;

tHandle open(const std::wstring& path, DWORD access, DWORD disposition) {
    const HANDLE file = CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    return tHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

bool writeAll(HANDLE file, std::string_view content) {
    while (!content.empty()) {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(content.size() < 0x10000000 ? content.size() : 0x10000000);
        if (WriteFile(file, content.data(), size, &written, nullptr) == FALSE) return false;
        content.remove_prefix(written);
    }
    return true;
}

/// Makes the system delete the file when its last handle is closed, whatever closes it, or lets the file stay.
bool deleteOnClose(HANDLE file, bool wanted) {
    FILE_DISPOSITION_INFO disposition{};
    disposition.DeleteFile = wanted ? TRUE : FALSE;
    return SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition) != FALSE;
}

/// Returns whether the path leads to something that is there and is no file on a disk, such as NUL.
bool isDevice(const std::wstring& path) {
    const tHandle existing = open(path, 0, OPEN_EXISTING);
    return existing != nullptr && GetFileType(existing.get()) != FILE_TYPE_DISK;
}

std::string writeDirectly(const std::wstring& path, std::string_view content) {
    const tHandle device = open(path, GENERIC_WRITE, OPEN_EXISTING);
    return device != nullptr && writeAll(device.get(), content) ? std::string() : nSystemReason::last();
}

/// Returns the path of a temporary file in the same folder. It does not contain the file's name, which can be as long
/// as names may be, but differs for each, because other machines may write into the folder and have the same process
/// ids.
std::wstring temporaryBeside(const std::wstring& path) {
    return path.substr(0, path.find_last_of(L"\\/:") + 1) + L"ziptra." +
           std::to_wstring(std::hash<std::wstring>{}(path)) + L"." + std::to_wstring(GetCurrentProcessId()) + L".tmp";
}

/// Until the content is complete, the end of the process deletes the temporary file, too. Returns the reason for a
/// failure, or an empty text.
std::string fill(const std::wstring& temporary, std::string_view content) {
    const tHandle file = open(temporary, GENERIC_WRITE | DELETE, CREATE_NEW);
    const bool filled = file != nullptr && deleteOnClose(file.get(), true) && writeAll(file.get(), content) &&
                        FlushFileBuffers(file.get()) != FALSE && deleteOnClose(file.get(), false);
    return filled ? std::string() : nSystemReason::last();
}

}  // namespace

std::string tryToReplace(const std::string& path, std::string_view content) {
    const std::wstring wide = nStdPath::widePathFromUtf8(path);
    if (isDevice(wide)) return writeDirectly(wide, content);
    const std::wstring temporary = temporaryBeside(wide);
    std::string reason = fill(temporary, content);
    if (!reason.empty()) return reason;
    if (MoveFileExW(temporary.c_str(), wide.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE) {
        return {};
    }
    reason = nSystemReason::last();
    DeleteFileW(temporary.c_str());
    return reason;
}

}  // namespace nOutputFile
