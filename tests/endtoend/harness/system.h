#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// Small helpers around Windows calls. A call that must not fail throws std::runtime_error, which ends the test.
namespace endtoend {

using tPath = std::filesystem::path;

struct tHandleCloser {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
using tHandle = std::unique_ptr<void, tHandleCloser>;

[[noreturn]] void failed(const std::string& call, DWORD error = GetLastError());
inline void require(bool success, const char* call) {
    if (!success) failed(call);
}

[[nodiscard]] std::wstring wide(std::string_view utf8);
[[nodiscard]] std::string utf8(std::wstring_view wide);
[[nodiscard]] inline std::string utf8Path(const tPath& path) { return utf8(std::wstring_view(path.native())); }

/// Returns the file's bytes, or nothing if it cannot be opened. Meanwhile others may write, rename and delete it, as
/// far as the system allows that for an open file.
[[nodiscard]] std::string readFile(const tPath& file);
void writeFile(const tPath& file, std::string_view bytes);

/// Whether this system is Wine, which lacks some of what Windows does.
[[nodiscard]] bool isWine();

/// The running test program's own file.
[[nodiscard]] tPath ownExecutable();

/// The folder in which the product keeps its status file.
[[nodiscard]] tPath makerFolder();

/// Whether a process of that id exists. Needs no access to it, which the product hardly grants.
[[nodiscard]] bool processExists(DWORD id);

/// Removes the access list of a process of this user, and opens the process. Returns null on failure.
[[nodiscard]] tHandle openDespiteAccessList(DWORD processId, DWORD access);

/// A directory for one test, removed with everything in it, however long the paths are.
class tTemporaryDirectory {
public:
    tTemporaryDirectory();
    ~tTemporaryDirectory();
    tTemporaryDirectory(const tTemporaryDirectory&) = delete;
    tTemporaryDirectory& operator=(const tTemporaryDirectory&) = delete;

    [[nodiscard]] const tPath& path() const noexcept { return path_; }

private:
    tPath path_;
};

/// An environment variable for the processes that are started while this object lives.
class tEnvironmentVariable {
public:
    tEnvironmentVariable(const wchar_t* name, const std::wstring& value);
    ~tEnvironmentVariable();
    tEnvironmentVariable(const tEnvironmentVariable&) = delete;
    tEnvironmentVariable& operator=(const tEnvironmentVariable&) = delete;

private:
    std::wstring name_;
    std::optional<std::wstring> before_;
};

}  // namespace endtoend
