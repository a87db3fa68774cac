#pragma once

#include <windows.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// Small tools on the Windows interface. A call that must not fail throws std::runtime_error, which ends the test.
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

/// Makes a call that starts a process. Wine fails in about one of a thousand with an internal error, before anything of
/// the process has run, and now and then takes a service that ends at once for one that never answered. Both are tried
/// again, and counted in the test's report.
void requireStart(const char* call, const std::function<BOOL()>& start);

[[nodiscard]] std::wstring wide(std::string_view utf8);
[[nodiscard]] std::string utf8(std::wstring_view wide);
[[nodiscard]] inline std::string utf8Path(const tPath& path) { return utf8(std::wstring_view(path.native())); }

/// The file's bytes; empty when it cannot be opened. Others may write, rename and delete it meanwhile, as far as the
/// system lets them with an open file.
[[nodiscard]] std::string readFile(const tPath& file);
void writeFile(const tPath& file, std::string_view bytes);

/// The running test program's own file.
[[nodiscard]] tPath ownExecutable();

/// The folder in which the product keeps its status file.
[[nodiscard]] tPath makerFolder();

/// Whether there is a process of that id. Asks for no access to it: the product gives away next to none.
[[nodiscard]] bool processExists(DWORD id);

/// Opens a process of this user's whatever its access list says. The list is gone afterwards. Null on failure.
[[nodiscard]] tHandle openDespiteAccessList(DWORD processId, DWORD access);

/// Whether the process, opened with full access, has the library in memory.
[[nodiscard]] bool hasLoaded(HANDLE process, const wchar_t* library);

/// A directory of its own for a test, removed with everything in it.
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
