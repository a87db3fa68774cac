#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>

#include "quarks/closer.h"
#include "stdpath/path.h"
#include "tool/pe/libraryFile.h"

namespace nPe {
namespace {

using tHandle = std::unique_ptr<void, tCloser<CloseHandle>>;
using tView = std::unique_ptr<void, tCloser<UnmapViewOfFile>>;

tHandle openFile(const std::string& path) {
    const HANDLE file = CreateFileW(nStdPath::widePathFromUtf8(path).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    return tHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

std::variant<tLibrary, tUnreadable> readBuffered(HANDLE file, std::size_t size) {
    // Kept for the next file: memory that is used for the first time is slow. What no file fills takes none.
    static thread_local const auto buffer = std::make_unique_for_overwrite<std::byte[]>(largestBuffer);
    std::size_t done = 0;
    while (done < size) {
        DWORD count = 0;
        const BOOL isRead = ReadFile(file, buffer.get() + done, static_cast<DWORD>(size - done), &count, nullptr);
        if (isRead == FALSE) return tUnreadable{"it cannot be read"};
        if (count == 0) break;  // truncated meanwhile
        done += count;
    }
    return read(std::span(buffer.get(), done));
}

std::variant<tLibrary, tUnreadable> readMapped(HANDLE file, std::size_t size) {
    const tHandle mapping(CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr));
    const tView view(mapping == nullptr ? nullptr : MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, size));
    if (view == nullptr) return tUnreadable{"it cannot be read"};
    return read(std::span(static_cast<const std::byte*>(view.get()), size));
}

}  // namespace

std::variant<tLibrary, tUnreadable> readFile(const std::string& path) {
    const tHandle file = openFile(path);
    if (file == nullptr) return tUnreadable{"it cannot be opened"};
    // Reading a device, such as the console under its name CON, could wait forever.
    if (GetFileType(file.get()) != FILE_TYPE_DISK) return tUnreadable{"it is not a file"};
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.get(), &size) == FALSE) return tUnreadable{"it cannot be read"};
    const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
    if (bytes > largestLibrary) return tUnreadable{"it is larger than 4 GB"};
    return bytes <= largestBuffer ? readBuffered(file.get(), bytes) : readMapped(file.get(), bytes);
}

}  // namespace nPe
