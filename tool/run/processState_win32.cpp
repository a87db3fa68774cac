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
#include "tool/run/processState.h"

namespace nRun {
namespace {

using tHandle = std::unique_ptr<void, tCloser<CloseHandle>>;
using tEnvironment = std::unique_ptr<wchar_t, tCloser<FreeEnvironmentStringsW>>;
using tQueryThread = LONG(WINAPI*)(HANDLE thread, ULONG kind, void* value, ULONG size, ULONG* needed);

constexpr DWORD longestPath = 0x8000;

std::string toUtf8(const wchar_t* text, std::size_t size) {
    return nStdPath::fileNameToUtf8(std::u16string(text, text + size));
}

/// Wine 8 counts no handles: then each possible value is tried, until so many in a row are closed.
std::size_t countHandles() {
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) != FALSE && count > 0) return count;
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

HMODULE moduleOf(const void* address) {
    HMODULE module = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    return GetModuleHandleExW(flags, static_cast<const wchar_t*>(address), &module) != FALSE ? module : nullptr;
}

/// Returns whether the thread belongs to a thread pool of the system, which ends it when it likes.
bool isPooled(DWORD id) {
    constexpr ULONG startAddress = 9;
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    static const auto query =
        reinterpret_cast<tQueryThread>(reinterpret_cast<void*>(GetProcAddress(ntdll, "NtQueryInformationThread")));
    const tHandle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, id));
    void* start = nullptr;
    if (query == nullptr || thread == nullptr) return false;
    return query(thread.get(), startAddress, &start, sizeof start, nullptr) >= 0 && moduleOf(start) == ntdll;
}

using tThings = std::map<std::string, std::string>;

void addThreads(tThings& things) {
    const HANDLE taken = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (taken == INVALID_HANDLE_VALUE) return;
    const tHandle snapshot(taken);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(taken, &entry); more != FALSE; more = Thread32Next(taken, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId() && !isPooled(entry.th32ThreadID)) {
            things["thread " + std::to_string(entry.th32ThreadID)] = tProcessState::thread;
        }
    }
}

/// Returns whether a module is the system's, which loads and keeps libraries as it likes.
bool isSystems(const std::wstring& path) {
    wchar_t folder[MAX_PATH];
    const UINT size = GetSystemWindowsDirectoryW(folder, MAX_PATH);
    return size > 0 && size < MAX_PATH && path.size() > size && path[size] == L'\\' &&
           CompareStringOrdinal(path.c_str(), static_cast<int>(size), folder, static_cast<int>(size), TRUE) ==
               CSTR_EQUAL;
}

void addLibraries(tThings& things) {
    std::vector<HMODULE> modules(1024);  // more are of no use
    DWORD bytes = 0;
    const auto size = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
    if (K32EnumProcessModules(GetCurrentProcess(), modules.data(), size, &bytes) == FALSE) return;
    modules.resize(std::min(modules.size(), bytes / sizeof(HMODULE)));
    std::wstring path(longestPath, L'\0');
    for (const HMODULE module : modules) {
        const std::wstring name(path.data(), GetModuleFileNameW(module, path.data(), longestPath));
        const std::string text = "the library " + toUtf8(name.data(), name.size());
        if (!isSystems(name)) things[text] = text;
    }
}

std::string currentDirectory() {
    std::wstring path(longestPath, L'\0');
    return toUtf8(path.data(), GetCurrentDirectoryW(longestPath, path.data()));
}

std::string environment() {
    const tEnvironment strings(GetEnvironmentStringsW());
    if (strings == nullptr) return {};
    const wchar_t* end = strings.get();
    while (*end != L'\0') end += std::wstring_view(end).size() + 1;
    return toUtf8(strings.get(), static_cast<std::size_t>(end - strings.get()));
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
    add("priority of the host's thread", std::to_string(GetThreadPriority(GetCurrentThread())));
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
