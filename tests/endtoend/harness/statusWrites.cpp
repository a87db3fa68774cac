#include "tests/endtoend/harness/statusWrites.h"

#include <stdexcept>

#include "tests/endtoend/harness/statusFile.h"
#include "tests/endtoend/harness/wait.h"

namespace endtoend {

tStatusWrites::tStatusWrites() : event_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
    const HANDLE folder =
        CreateFileW(makerFolder().c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
    require(folder != INVALID_HANDLE_VALUE, "CreateFileW");
    folder_.reset(folder);
    listen();
}

tStatusWrites::~tStatusWrites() {
    CancelIo(folder_.get());
    DWORD ignored = 0;
    GetOverlappedResult(folder_.get(), &pending_, &ignored, TRUE);
}

void tStatusWrites::listen() {
    pending_ = {};
    pending_.hEvent = event_.get();
    require(ReadDirectoryChangesW(folder_.get(), changes_.data(), static_cast<DWORD>(changes_.size()), FALSE,
                                  FILE_NOTIFY_CHANGE_FILE_NAME, nullptr, &pending_, nullptr) != FALSE,
            "ReadDirectoryChangesW");
}

int tStatusWrites::replacements() const {
    const std::wstring wanted = tStatusFile::path().filename().native();
    int result = 0;
    for (const std::byte* at = changes_.data();;) {
        const auto* const change = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(at);
        const std::wstring_view name(&change->FileName[0], change->FileNameLength / sizeof(wchar_t));
        if (change->Action == FILE_ACTION_RENAMED_NEW_NAME && name == wanted) ++result;
        if (change->NextEntryOffset == 0) return result;
        at += change->NextEntryOffset;
    }
}

void tStatusWrites::waitFor(int count) {
    while (count_ < count) {
        if (WaitForSingleObject(event_.get(), static_cast<DWORD>(patience.count())) != WAIT_OBJECT_0) {
            throw std::runtime_error("the status file was written " + std::to_string(count_) + " times only");
        }
        DWORD size = 0;
        require(GetOverlappedResult(folder_.get(), &pending_, &size, FALSE) != FALSE && size != 0,
                "ReadDirectoryChangesW");
        count_ += replacements();
        listen();
    }
}

}  // namespace endtoend
