#include "tests/sweep/importTable_win32.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace sweep {
namespace {

/// An executable as it lies on the disk.
class tImage {
public:
    explicit tImage(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
    }

    template <class T>
    [[nodiscard]] T at(std::size_t offset) const {
        T value{};
        if (sizeof(T) <= bytes_.size() && offset <= bytes_.size() - sizeof(T))
            std::memcpy(&value, bytes_.data() + offset, sizeof(T));
        return value;
    }

    [[nodiscard]] std::string textAt(std::size_t offset) const {
        return offset < bytes_.size() ? std::string(bytes_.c_str() + offset) : std::string();
    }

    /// Where in the file something lies that the loader puts at this address.
    [[nodiscard]] std::size_t offsetOf(std::uint64_t address) const {
        for (unsigned i = 0; i < headers().FileHeader.NumberOfSections; ++i) {
            const auto section =
                at<IMAGE_SECTION_HEADER>(header() + sizeof(IMAGE_NT_HEADERS64) + i * sizeof(IMAGE_SECTION_HEADER));
            const std::uint64_t offset = address - section.VirtualAddress;
            if (address >= section.VirtualAddress && offset < section.SizeOfRawData)
                return section.PointerToRawData + offset;
        }
        return bytes_.size();
    }

    [[nodiscard]] IMAGE_NT_HEADERS64 headers() const { return at<IMAGE_NT_HEADERS64>(header()); }

private:
    [[nodiscard]] std::size_t header() const { return static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(0).e_lfanew); }

    std::string bytes_;
};

void appendNames(const tImage& image, std::size_t table, std::vector<std::string>& names) {
    for (;; table += sizeof(std::uint64_t)) {
        const auto entry = image.at<std::uint64_t>(table);
        if (entry == 0) return;
        if ((entry & IMAGE_ORDINAL_FLAG64) != 0) {
            names.push_back(std::string("#").append(std::to_string(IMAGE_ORDINAL64(entry))));
            continue;
        }
        names.push_back(image.textAt(image.offsetOf(entry) + sizeof(WORD)));  // behind a hint
    }
}

/// What the language's own libraries bring along, by what it is for. None of it is called by the product's own code or
/// on its behalf in a way that it could be told of a failure.
constexpr std::string_view runtime[] = {
    // Program start and end.
    "GetStartupInfoA",
    "SetUnhandledExceptionFilter",
    "VirtualProtect",
    "VirtualQuery",
    "__getmainargs",
    "__initenv",
    "__iob_func",
    "__set_app_type",
    "__setusermatherr",
    "_acmdln",
    "_amsg_exit",
    "_cexit",
    "_commode",
    "_fmode",
    "_initterm",
    "_onexit",
    "abort",
    "exit",
    "signal",
    // Loading shell32.dll when it is first called. Should that fail, the process ends, as it otherwise would not begin.
    "LoadLibraryA",
    "LocalAlloc",
    // Exceptions.
    "AddVectoredExceptionHandler",
    "RemoveVectoredExceptionHandler",
    "RaiseException",
    "RtlCaptureContext",
    "RtlLookupFunctionEntry",
    "RtlUnwindEx",
    "RtlVirtualUnwind",
    "__C_specific_handler",
    "_setjmp",
    "longjmp",
    // Threads, which the product starts none of, and thread-local variables.
    "CreateSemaphoreA",
    "DeleteCriticalSection",
    "DuplicateHandle",
    "EnterCriticalSection",
    "GetCurrentProcess",
    "GetCurrentThread",
    "GetCurrentThreadId",
    "GetHandleInformation",
    "GetProcessAffinityMask",
    "GetThreadContext",
    "GetThreadPriority",
    "InitializeCriticalSection",
    "IsDebuggerPresent",
    "LeaveCriticalSection",
    "OutputDebugStringA",
    "ReleaseSemaphore",
    "ResetEvent",
    "ResumeThread",
    "SetProcessAffinityMask",
    "SetThreadContext",
    "SetThreadPriority",
    "SuspendThread",
    "TlsAlloc",
    "TlsGetValue",
    "TlsSetValue",
    "TryEnterCriticalSection",
    "WaitForMultipleObjects",
    "_beginthreadex",
    "_endthreadex",
    "_lock",
    "_unlock",
    "GetSystemTimeAsFileTime",
    "QueryPerformanceFrequency",
    // The parts of Boost.Filesystem that share an object file with those in use, or serve older systems.
    "AreFileApisANSI",
    "CopyFileExW",
    "CreateDirectoryExW",
    "CreateDirectoryW",
    "DeleteFileW",
    "FlushFileBuffers",
    "FormatMessageW",
    "GetCurrentDirectoryW",
    "GetDiskFreeSpaceExW",
    "DeviceIoControl",
    "GetFileAttributesExW",
    "GetFileAttributesW",
    "GetFileInformationByHandle",
    "GetEnvironmentVariableW",
    "GetFileTime",
    "GetFullPathNameW",
    "GetModuleHandleW",
    "GetWindowsDirectoryW",
    "LoadLibraryW",
    "MoveFileExW",
    "RemoveDirectoryW",
    "SetCurrentDirectoryW",
    "SetEndOfFile",
    "SetFileAttributesW",
    "SetFilePointerEx",
    "SetFileTime",
    // Locales and the conversion of characters and numbers.
    "IsDBCSLeadByteEx",
    "WideCharToMultiByte",
    "___lc_codepage_func",
    "___mb_cur_max_func",
    "_errno",
    "_ultoa",
    "islower",
    "isspace",
    "isupper",
    "iswctype",
    "isxdigit",
    "localeconv",
    "setlocale",
    "strcoll",
    "strerror",
    "strftime",
    "strtol",
    "strtoul",
    "strxfrm",
    "tolower",
    "towlower",
    "towupper",
    "wcscoll",
    "wcsftime",
    "wcsxfrm",
    // Plain memory and text.
    "memchr",
    "memcmp",
    "memcpy",
    "memmove",
    "memset",
    "strchr",
    "strcmp",
    "strlen",
    "strncmp",
    "strncpy",
    "wcslen",
    // Allocation, which the sweep of memory makes fail.
    "_strdup",
    "calloc",
    "free",
    "malloc",
    "realloc",
    // What the answers to arguments are written with, to a console that may be gone; nobody looks at the result.
    "fprintf",
    "fputc",
    "fputs",
    "printf",
    "vfprintf",
    // Streams, of which the product has those in memory alone.
    "_close",
    "_read",
    "getc",
    "ungetc",
    // It gives nothing back.
    "SetLastError",
};

}  // namespace

std::vector<std::string> importsOf(const std::string& path) {
    const tImage image(path);
    const IMAGE_DATA_DIRECTORY directory = image.headers().OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    std::vector<std::string> names;
    for (std::size_t at = image.offsetOf(directory.VirtualAddress);; at += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto library = image.at<IMAGE_IMPORT_DESCRIPTOR>(at);
        if (library.Name == 0) return names;
        appendNames(image, image.offsetOf(library.OriginalFirstThunk), names);
    }
}

std::vector<std::string> forgottenCalls(const std::vector<std::string>& imported,
                                        const std::set<std::string>& reached) {
    std::vector<std::string> forgotten;
    std::copy_if(imported.begin(), imported.end(), std::back_inserter(forgotten),
                 [&](const std::string& name) { return !reached.contains(name) && !isOfTheRuntime(name); });
    return forgotten;
}

bool isOfTheRuntime(std::string_view name) { return std::ranges::find(runtime, name) != std::end(runtime); }

}  // namespace sweep
