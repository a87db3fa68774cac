// The service never ships with this: the files of systems other than Windows.
#include <fcntl.h>
#include <unistd.h>

#include <string_view>

#include "tool/fileDescriptor.h"

namespace {

/// The folder of the file that was opened last.
class tLastFolder {
public:
    tLastFolder() = default;
    ~tLastFolder() { closeFolder(); }
    tLastFolder(const tLastFolder&) = delete;
    tLastFolder& operator=(const tLastFolder&) = delete;

    /// Returns a negative number if the folder cannot be opened.
    [[nodiscard]] int number(std::string_view path) {
        if (path == path_) return number_;
        closeFolder();
        path_ = path;
        number_ = open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        return number_;
    }

private:
    void closeFolder() const {
        if (number_ >= 0) close(number_);
    }

    std::string path_;
    int number_ = -1;
};

int openFile(const std::string& path) {
    static thread_local tLastFolder lastFolder;
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    const std::size_t nameStart = path.rfind('/') + 1;
    const int folder = nameStart == 0 ? -1 : lastFolder.number(std::string_view(path).substr(0, nameStart));
    const int file = folder < 0 ? -1 : openat(folder, path.c_str() + nameStart, flags);
    // Meanwhile, another folder may have this path.
    return file < 0 ? open(path.c_str(), flags) : file;
}

}  // namespace

tFileDescriptor::tFileDescriptor(const std::string& path) : number_(openFile(path)) {}

tFileDescriptor::~tFileDescriptor() {
    if (number_ >= 0) close(number_);
}

bool writeAll(int file, std::string_view content) noexcept {
    while (!content.empty()) {
        const ssize_t written = write(file, content.data(), content.size());
        if (written < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}
