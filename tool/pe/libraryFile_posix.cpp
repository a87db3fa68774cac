// The service never ships with this: the mapping of files on systems other than Windows.
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <memory>
#include <span>

#include "tool/fileDescriptor.h"
#include "tool/pe/libraryFile.h"

namespace nPe {
namespace {

std::variant<tLibrary, tUnreadable> readBuffered(int file, std::size_t size) {
    // Kept for the next file: memory that is used for the first time is slow. What no file fills takes none.
    static thread_local const auto buffer = std::make_unique_for_overwrite<std::byte[]>(largestBuffer);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::read(file, buffer.get() + done, size - done);
        if (count < 0) return tUnreadable{"it cannot be read"};
        if (count == 0) break;  // truncated meanwhile
        done += static_cast<std::size_t>(count);
    }
    return read(std::span(buffer.get(), done));
}

std::variant<tLibrary, tUnreadable> readMapped(int file, std::size_t size) {
    void* const view = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (view == MAP_FAILED) return tUnreadable{"it cannot be read"};
    const auto unmap = [size](void* address) { munmap(address, size); };
    const std::unique_ptr<void, decltype(unmap)> owner(view, unmap);
    return read(std::span(static_cast<const std::byte*>(view), size));
}

}  // namespace

std::variant<tLibrary, tUnreadable> readFile(const std::string& path) {
    const tFileDescriptor file(path);
    struct stat status {};
    if (file.number() < 0 || fstat(file.number(), &status) != 0) return tUnreadable{"it cannot be opened"};
    if (!S_ISREG(status.st_mode)) return tUnreadable{"it is not a file"};
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > largestLibrary) return tUnreadable{"it is larger than 4 GB"};
    return size <= largestBuffer ? readBuffered(file.number(), size) : readMapped(file.number(), size);
}

}  // namespace nPe
