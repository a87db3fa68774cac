#include "bench/systemTime_win32.h"

#include <windows.h>
// windows.h first: the others need its types.
#include <aclapi.h>
#include <shlobj.h>
#include <x86intrin.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string_view>

#include "bench/pairs.h"

namespace nSystemTime {
namespace {

unsigned long long ticksInside = 0;
unsigned long long ticksAtStart = 0;
std::chrono::steady_clock::time_point start;

class tInside {
public:
    tInside() : entered_(__rdtsc()) {}
    ~tInside() { ticksInside += __rdtsc() - entered_; }
    tInside(const tInside&) = delete;
    tInside& operator=(const tInside&) = delete;

private:
    unsigned long long entered_;
};

/// Where the loader has put the address of the function that this program calls by that name.
ULONG_PTR* importSlot(std::string_view name) {
    auto* const base = reinterpret_cast<char*>(GetModuleHandleA(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table); import->Name != 0;
         ++import) {
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + import->OriginalFirstThunk);
        auto* slots = reinterpret_cast<ULONG_PTR*>(base + import->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            const auto* const entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (name == reinterpret_cast<const char*>(entry->Name)) return slots;
        }
    }
    nBench::demand(false, "the program does not import " + std::string(name));
    return nullptr;
}

void store(ULONG_PTR* slot, ULONG_PTR value) {
    DWORD before = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, before, &before);
}

/// The name of a function as a template argument.
struct tName {
    template <std::size_t size>
    consteval tName(const char (&name)[size]) {  // NOLINT(google-explicit-constructor,hicpp-explicit-conversions)
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
        const tInside inside;
        return real(arguments...);
    }

    static void turn(bool on) {
        ULONG_PTR* const slot = importSlot(name.text);
        if (on) real = reinterpret_cast<tResult (*)(tArguments...)>(*slot);
        store(slot, reinterpret_cast<ULONG_PTR>(on ? &timed : real));
    }
};

/// All that a life calls, but for what Boost looks up by itself to read a directory.
void turnAll(bool on) {
    tCall<"CloseHandle", decltype(CloseHandle)>::turn(on);
    tCall<"CreateEventA", decltype(CreateEventA)>::turn(on);
    tCall<"CreateFileW", decltype(CreateFileW)>::turn(on);
    tCall<"FindClose", decltype(FindClose)>::turn(on);
    tCall<"FindFirstFileW", decltype(FindFirstFileW)>::turn(on);
    tCall<"FreeLibrary", decltype(FreeLibrary)>::turn(on);
    tCall<"GetFileAttributesW", decltype(GetFileAttributesW)>::turn(on);
    tCall<"GetModuleHandleA", decltype(GetModuleHandleA)>::turn(on);
    tCall<"GetProcAddress", decltype(GetProcAddress)>::turn(on);
    tCall<"GetSystemTimeAdjustment", decltype(GetSystemTimeAdjustment)>::turn(on);
    tCall<"GetTickCount64", decltype(GetTickCount64)>::turn(on);
    tCall<"LoadLibraryExA", decltype(LoadLibraryExA)>::turn(on);
    tCall<"LocalFree", decltype(LocalFree)>::turn(on);
    tCall<"OpenProcess", decltype(OpenProcess)>::turn(on);
    tCall<"RegCloseKey", decltype(RegCloseKey)>::turn(on);
    tCall<"RegOpenKeyExW", decltype(RegOpenKeyExW)>::turn(on);
    tCall<"RegQueryValueExW", decltype(RegQueryValueExW)>::turn(on);
    tCall<"SHGetFolderPathW", decltype(SHGetFolderPathW)>::turn(on);
    tCall<"SetEntriesInAclA", decltype(SetEntriesInAclA)>::turn(on);
    tCall<"SetEvent", decltype(SetEvent)>::turn(on);
    tCall<"SetSecurityInfo", decltype(SetSecurityInfo)>::turn(on);
    tCall<"WaitForSingleObject", decltype(WaitForSingleObject)>::turn(on);
    tCall<"_wfopen", decltype(_wfopen)>::turn(on);
    tCall<"_wfsopen", decltype(_wfsopen)>::turn(on);
    tCall<"_wremove", decltype(_wremove)>::turn(on);
    tCall<"_wrename", decltype(_wrename)>::turn(on);
    tCall<"fclose", decltype(fclose)>::turn(on);
    tCall<"fread", decltype(fread)>::turn(on);
    tCall<"fwrite", decltype(fwrite)>::turn(on);
}

}  // namespace

tWatch::tWatch() {
    turnAll(true);
    ticksInside = 0;
    ticksAtStart = __rdtsc();
    start = std::chrono::steady_clock::now();
}

tWatch::~tWatch() { turnAll(false); }

double tWatch::seconds() const {
    const auto ticks = static_cast<double>(__rdtsc() - ticksAtStart);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count() * static_cast<double>(ticksInside) / ticks;
}

}  // namespace nSystemTime
