#include <windows.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

#include "quarks/closer.h"
#include "source/statusFile.h"
#include "stdpath/path.h"
#include "stdpath/stdpath.h"
#include "tool/status/statusSource.h"
#include "tool/systemReason.h"

namespace nStatus {
namespace nPlatform {
namespace {

using tHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, tCloser<CloseHandle>>;

/// While the host replaces the file there is none, or one that is being deleted; or the host has it open.
bool passes(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
           error == ERROR_DELETE_PENDING;
}

tAttempt failure() {
    const DWORD error = GetLastError();
    return {passes(error) ? tOutcome::tryAgain : tOutcome::failed, nSystemReason::of(error)};
}

tAttempt tooLarge() { return {tOutcome::failed, "it is larger than 1 GiB"}; }

/// Reads to the end, whatever the file's size was at first.
tAttempt readAll(HANDLE file, std::size_t expectedSize) {
    std::string content(expectedSize + 1, 0);
    std::size_t size = 0;
    for (;;) {
        DWORD count = 0;
        const auto room = static_cast<DWORD>(std::min<std::size_t>(content.size() - size, largestSize));
        if (ReadFile(file, content.data() + size, room, &count, nullptr) == FALSE) return failure();
        if (count == 0) break;
        size += count;
        if (size > largestSize) return tooLarge();
        if (size == content.size()) content.resize(2 * size);
    }
    content.resize(size);
    return {tOutcome::read, std::move(content)};
}

}  // namespace

tAttempt tryToRead(const std::string& path) {
    // Sharing everything, so that the host can delete and replace the file meanwhile.
    const HANDLE opened = CreateFileW(nStdPath::widePathFromUtf8(path).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return failure();
    const tHandle file(opened);
    constexpr std::size_t usualSize = 4096;  // of what has no size, such as a pipe
    LARGE_INTEGER size{};
    if (GetFileSizeEx(opened, &size) == FALSE) size.QuadPart = usualSize;
    if (size.QuadPart > static_cast<LONGLONG>(largestSize)) return tooLarge();
    return readAll(opened, static_cast<std::size_t>(size.QuadPart));
}

}  // namespace nPlatform

std::string hostsFile() {
    std::string folder;
    zuerr::StatusRecord status;
    nStdPath::getCommonAppDataDirectory(folder, status);
    if (status.failed()) throw tCannotRead("This system has no folder for the status file: name the file");
    return folder + "\\" + nStatusFile::fileName;
}

}  // namespace nStatus
