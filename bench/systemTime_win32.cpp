#include "bench/systemTime_win32.h"

#include <windows.h>
// windows.h comes first because the others need its types.
#include <aclapi.h>
#include <shlobj.h>
#include <x86intrin.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "bench/pairs.h"

namespace nSystemTime {
namespace {

unsigned long long ticksInside = 0;

/// Adds its lifetime to the ticks spent in system calls.
class tCallTimer {
public:
    tCallTimer() : entered_(__rdtsc()) {}
    ~tCallTimer() { ticksInside += __rdtsc() - entered_; }
    tCallTimer(const tCallTimer&) = delete;
    tCallTimer& operator=(const tCallTimer&) = delete;

private:
    unsigned long long entered_;
};

/// Returns the import table's slot for the function of that name. Throws if the program does not import it.
void** importSlot(std::string_view name) {
    auto* const base = reinterpret_cast<char*>(GetModuleHandleA(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table); import->Name != 0;
         ++import) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-union-access): windows.h declares it so
        const auto* names = reinterpret_cast<const ULONGLONG*>(base + import->OriginalFirstThunk);
        auto* slots = reinterpret_cast<void**>(base + import->FirstThunk);
        for (; *names != 0; ++names, ++slots) {
            const auto* const entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + *names);
            if (name == reinterpret_cast<const char*>(entry->Name)) return slots;
        }
    }
    nBench::demand(false, "the program does not import " + std::string(name));
    return nullptr;
}

void store(void** slot, void* value) {
    DWORD before = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, before, &before);
}

/// A function's name as a template argument.
struct tName {
    template <std::size_t size>
    consteval tName(const char (&name)[size]) {
        std::copy_n(name, size, text);
    }
    char text[32]{};
};

template <tName name, class tFunction>
struct tCall;

template <tName name, class tResult, class... tArguments>
struct tCall<name, tResult(tArguments...)> {
    static inline tResult (*real)(tArguments...) = nullptr;

    static tResult timed(tArguments... arguments) {
        const tCallTimer timer;
        return real(arguments...);
    }

    static void setTimed(bool on) {
        void** const slot = importSlot(name.text);
        if (on) real = reinterpret_cast<tResult (*)(tArguments...)>(*slot);
        store(slot, reinterpret_cast<void*>(on ? &timed : real));
    }
};

/// Times every call of a life, or stops timing them. The calls with which Boost reads a directory are missing, because
/// Boost looks them up at run time.
void setTimed(bool on) {
    tCall<"CloseHandle", decltype(CloseHandle)>::setTimed(on);
    tCall<"CreateEventA", decltype(CreateEventA)>::setTimed(on);
    tCall<"CreateFileW", decltype(CreateFileW)>::setTimed(on);
    tCall<"FindClose", decltype(FindClose)>::setTimed(on);
    tCall<"FindFirstFileW", decltype(FindFirstFileW)>::setTimed(on);
    tCall<"FreeLibrary", decltype(FreeLibrary)>::setTimed(on);
    tCall<"GetFileAttributesW", decltype(GetFileAttributesW)>::setTimed(on);
    tCall<"GetModuleHandleA", decltype(GetModuleHandleA)>::setTimed(on);
    tCall<"GetProcAddress", decltype(GetProcAddress)>::setTimed(on);
    tCall<"GetSystemTimeAdjustment", decltype(GetSystemTimeAdjustment)>::setTimed(on);
    tCall<"GetTickCount64", decltype(GetTickCount64)>::setTimed(on);
    tCall<"LoadLibraryExA", decltype(LoadLibraryExA)>::setTimed(on);
    tCall<"LocalFree", decltype(LocalFree)>::setTimed(on);
    tCall<"OpenProcess", decltype(OpenProcess)>::setTimed(on);
    tCall<"RegCloseKey", decltype(RegCloseKey)>::setTimed(on);
    tCall<"RegOpenKeyExW", decltype(RegOpenKeyExW)>::setTimed(on);
    tCall<"RegQueryValueExW", decltype(RegQueryValueExW)>::setTimed(on);
    tCall<"SHGetFolderPathW", decltype(SHGetFolderPathW)>::setTimed(on);
    tCall<"SetEntriesInAclA", decltype(SetEntriesInAclA)>::setTimed(on);
    tCall<"SetEvent", decltype(SetEvent)>::setTimed(on);
    tCall<"SetSecurityInfo", decltype(SetSecurityInfo)>::setTimed(on);
    tCall<"WaitForSingleObject", decltype(WaitForSingleObject)>::setTimed(on);
    tCall<"_wfopen", decltype(_wfopen)>::setTimed(on);
    tCall<"_wfsopen", decltype(_wfsopen)>::setTimed(on);
    tCall<"_wremove", decltype(_wremove)>::setTimed(on);
    tCall<"_wrename", decltype(_wrename)>::setTimed(on);
    tCall<"fclose", decltype(fclose)>::setTimed(on);
    tCall<"fread", decltype(fread)>::setTimed(on);
    tCall<"fwrite", decltype(fwrite)>::setTimed(on);
}

/// Returns the ticks at which the calls began to be timed.
unsigned long long startTiming() {
    setTimed(true);
    ticksInside = 0;
    return __rdtsc();
}

}  // namespace

tWatch::tWatch() : startTicks_(startTiming()), start_(std::chrono::steady_clock::now()) {}

tWatch::~tWatch() { setTimed(false); }

double tWatch::seconds() const {
    const auto ticks = static_cast<double>(__rdtsc() - startTicks_);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    return elapsed.count() * static_cast<double>(ticksInside) / ticks;
}

}  // namespace nSystemTime
