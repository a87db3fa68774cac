#include <windows.h>
// windows.h first: these need its types.
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <clocale>
#include <memory>
#include <vector>

#include "quarks/closer.h"
#include "stdpath/utf.h"
#include "tool/format.h"
#include "tool/run/processState.h"
#include "tool/run/selection.h"
#include "tool/systemReason.h"

namespace nRun {
namespace {

using tHandle = std::unique_ptr<void, tCloser<CloseHandle>>;
using tEnvironment = std::unique_ptr<wchar_t, tCloser<FreeEnvironmentStringsW>>;
using tQueryThread = LONG(WINAPI*)(HANDLE thread, ULONG kind, void* value, ULONG size, ULONG* needed);

constexpr DWORD longestPath = 0x8000;

std::string toUtf8(const wchar_t* text, std::size_t size) {
    return nStdPath::fileNameToUtf8(std::u16string(text, text + size));
}

void require(bool succeeded, std::string_view what) {
    if (!succeeded) throw tCannotRun(fmt::format("{}: {}", what, nSystemReason::last()));
}

/// Wine 8 counts no handles: then each possible value is tried, until so many in a row are closed.
std::size_t countHandles() {
    DWORD count = 0;
    require(GetProcessHandleCount(GetCurrentProcess(), &count) != FALSE, "the number of handles is unknown");
    if (count > 0) return count;
    constexpr int enough = 64;
    std::size_t open = 0;
    std::uintptr_t value = 4;
    for (int closed = 0; closed < enough; value += 4) {
        DWORD flags = 0;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number
        const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE;
        open += isOpen ? 1 : 0;
        closed = isOpen ? 0 : closed + 1;
    }
    return open;
}

/// Returns null if the address is in no library.
HMODULE moduleOf(const void* address) {
    HMODULE module = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    const bool found = GetModuleHandleExW(flags, static_cast<const wchar_t*>(address), &module) != FALSE;
    require(found || GetLastError() == ERROR_MOD_NOT_FOUND, "the library of a function is unknown");
    return module;
}

/// Returns whether the thread has ended, or belongs to a thread pool of the system, which ends it when it likes.
bool isPooled(DWORD id) {
    constexpr ULONG startAddress = 9;
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    require(ntdll != nullptr, "ntdll.dll is not found");
    const auto query =
        reinterpret_cast<tQueryThread>(reinterpret_cast<void*>(GetProcAddress(ntdll, "NtQueryInformationThread")));
    require(query != nullptr, "NtQueryInformationThread is not found");
    const tHandle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, id));
    if (thread == nullptr && GetLastError() == ERROR_INVALID_PARAMETER) return true;
    require(thread != nullptr, "a thread cannot be opened");
    void* start = nullptr;
    const LONG status = query(thread.get(), startAddress, &start, sizeof start, nullptr);
    if (status < 0) throw tCannotRun(fmt::format("the start of a thread is unknown: status {}", status));
    return moduleOf(start) == ntdll;
}

using tThings = std::map<std::string, std::string>;

void addThreads(tThings& things) {
    const HANDLE taken = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    require(taken != INVALID_HANDLE_VALUE, "the threads cannot be listed");
    const tHandle snapshot(taken);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(taken, &entry); more != FALSE; more = Thread32Next(taken, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId() && !isPooled(entry.th32ThreadID)) {
            things["thread " + std::to_string(entry.th32ThreadID)] = tProcessState::thread;
        }
    }
    require(GetLastError() == ERROR_NO_MORE_FILES, "the threads cannot be listed");
}

/// Returns whether a module is the system's, which loads and keeps libraries as it likes.
bool isSystems(const std::wstring& path) {
    wchar_t folder[MAX_PATH];
    const UINT size = GetSystemWindowsDirectoryW(folder, MAX_PATH);
    require(size > 0, "the folder of Windows is unknown");
    if (size >= MAX_PATH || path.size() <= size || path[size] != L'\\') return false;
    const int length = static_cast<int>(size);
    const int result = CompareStringOrdinal(path.c_str(), length, folder, length, TRUE);
    require(result != 0, "two paths cannot be compared");
    return result == CSTR_EQUAL;
}

void addLibraries(tThings& things) {
    std::vector<HMODULE> modules(1024);  // more are of no use
    DWORD bytes = 0;
    const auto size = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
    require(K32EnumProcessModules(GetCurrentProcess(), modules.data(), size, &bytes) != FALSE,
            "the libraries cannot be listed");
    modules.resize(std::min(modules.size(), bytes / sizeof(HMODULE)));
    std::wstring path(longestPath, L'\0');
    for (const HMODULE module : modules) {
        const std::wstring name(path.data(), GetModuleFileNameW(module, path.data(), longestPath));
        if (name.empty() && moduleOf(module) == nullptr) continue;  // it has been unloaded meanwhile
        require(!name.empty(), "the path of a library is unknown");
        const std::string text = "the library " + toUtf8(name.data(), name.size());
        if (!isSystems(name)) things[text] = text;
    }
}

std::string currentDirectory() {
    std::wstring path(longestPath, L'\0');
    const DWORD size = GetCurrentDirectoryW(longestPath, path.data());
    require(size > 0, "the current directory is unknown");
    return toUtf8(path.data(), size);
}

std::string environment() {
    const tEnvironment strings(GetEnvironmentStringsW());
    require(strings != nullptr, "the environment is unknown");
    const wchar_t* end = strings.get();
    while (*end != L'\0') end += std::wstring_view(end).size() + 1;
    return toUtf8(strings.get(), static_cast<std::size_t>(end - strings.get()));
}

std::string threadPriority() {
    const int priority = GetThreadPriority(GetCurrentThread());
    require(priority != THREAD_PRIORITY_ERROR_RETURN, "the priority of a thread is unknown");
    return std::to_string(priority);
}

std::string cLocale() {
    const char* const locale = std::setlocale(LC_ALL, nullptr);  // NOLINT(concurrency-mt-unsafe): it is only read
    return locale != nullptr ? locale : "";
}

void addSettings(tThings& things) {
    const auto add = [&things](const std::string& name, const std::string& value) {
        things[name + " " + value] = "another " + name;
    };
    add("current directory", currentDirectory());
    add("environment", environment());
    add("error mode", std::to_string(GetErrorMode()) + ' ' + std::to_string(GetThreadErrorMode()));
    add("locale of the C library", cLocale());
    add("locale of the host's thread", std::to_string(GetThreadLocale()));
    add("priority of the host's thread", threadPriority());
    add("code page of the console", std::to_string(GetConsoleCP()) + ' ' + std::to_string(GetConsoleOutputCP()));
}

}  // namespace

tProcessState readProcessState() {
    tProcessState state;
    addThreads(state.things);
    addLibraries(state.things);
    addSettings(state.things);
    state.handles = countHandles();
    return state;
}

}  // namespace nRun
