// The service never ships with this: the folders of systems other than Windows.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string_view>

#include "tool/folderEntries.h"

namespace nFolderEntries {
namespace {

struct tCloser {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

/// Asks for the kind of an entry only if the folder does not say it.
bool isFile(DIR* folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_REG;
    struct stat status {};
    return fstatat(dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::optional<std::vector<tEntry>> list(const std::string& folder) {
    const std::unique_ptr<DIR, tCloser> opened(opendir(folder.c_str()));
    if (opened == nullptr) return std::nullopt;
    std::vector<tEntry> entries;
    errno = 0;
    while (const dirent* const entry = readdir(opened.get())) {  // NOLINT(concurrency-mt-unsafe): a stream of its own
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..") entries.push_back({std::string(name), isFile(opened.get(), *entry)});
        errno = 0;
    }
    if (errno != 0) return std::nullopt;
    return entries;
}

}  // namespace nFolderEntries
