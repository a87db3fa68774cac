#include "tests/sweep/importTable_win32.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace sweep {
namespace {

/// The functions that the C and C++ runtime libraries import, grouped by purpose. The product's own code calls none of
/// them, and could not be told of a failure. Each name is followed by a blank.
constexpr std::string_view runtime =
    // Program start and end.
    "GetStartupInfoA SetUnhandledExceptionFilter VirtualProtect VirtualQuery __getmainargs __initenv "
    "__iob_func __set_app_type __setusermatherr _acmdln _amsg_exit _cexit _commode _fmode _initterm _onexit "
    "abort exit signal "
    // Exceptions.
    "AddVectoredExceptionHandler RemoveVectoredExceptionHandler RaiseException RtlCaptureContext "
    "RtlLookupFunctionEntry RtlUnwindEx RtlVirtualUnwind __C_specific_handler _setjmp longjmp "
    // Threads, of which the product starts none, and thread-local variables.
    "CreateSemaphoreA DeleteCriticalSection DuplicateHandle EnterCriticalSection GetCurrentProcess "
    "GetCurrentThread GetCurrentThreadId GetHandleInformation GetProcessAffinityMask GetThreadContext "
    "GetThreadPriority InitializeCriticalSection IsDebuggerPresent LeaveCriticalSection OutputDebugStringA "
    "ReleaseSemaphore ResetEvent ResumeThread SetProcessAffinityMask SetThreadContext SetThreadPriority "
    "SuspendThread TlsAlloc TlsGetValue TlsSetValue TryEnterCriticalSection WaitForMultipleObjects "
    "_beginthreadex _endthreadex _lock _unlock GetSystemTimeAsFileTime QueryPerformanceFrequency "
    // The parts of Boost.Filesystem that share an object file with those in use, or serve older systems.
    "AreFileApisANSI CopyFileExW CreateDirectoryExW CreateDirectoryW DeleteFileW FlushFileBuffers "
    "FormatMessageW GetCurrentDirectoryW GetDiskFreeSpaceExW DeviceIoControl GetFileAttributesExW "
    "GetFileAttributesW GetFileInformationByHandle GetEnvironmentVariableW GetFileTime GetFullPathNameW "
    "GetWindowsDirectoryW LoadLibraryW MoveFileExW RemoveDirectoryW SetCurrentDirectoryW "
    "SetEndOfFile SetFileAttributesW SetFilePointerEx SetFileTime "
    // Locales and the conversion of characters and numbers.
    "IsDBCSLeadByteEx WideCharToMultiByte ___lc_codepage_func ___mb_cur_max_func _errno _ultoa islower "
    "isspace isupper iswctype isxdigit localeconv setlocale strcoll strerror strftime strtol strtoul strxfrm "
    "tolower towlower towupper wcscoll wcsftime wcsxfrm "
    // Plain memory and text.
    "memchr memcmp memcpy memmove memset strchr strcmp strlen strncmp strncpy wcslen "
    // Allocation, which the sweep of memory makes fail.
    "_strdup calloc free malloc realloc "
    // For the answers to arguments, on a console that may be gone; the result is not looked at.
    "fprintf fputc fputs printf vfprintf "
    // Streams; the product uses only those in memory.
    "_close _read getc ungetc "
    // It has no result.
    "SetLastError ";

}  // namespace

std::vector<std::string> importsIn(const std::string& listing) {
    std::ifstream lines(listing);
    std::vector<std::string> names;
    bool inTable = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            inTable = false;
        } else if (inTable) {
            names.push_back(line.substr(line.find_last_of(" \t") + 1));
            std::erase(names.back(), '\r');
        } else {
            inTable = line.find("Member-Name") != std::string::npos;
        }
    }
    return names;
}

std::vector<std::string> forgottenCalls(const std::vector<std::string>& imported,
                                        const std::set<std::string>& reached) {
    std::vector<std::string> forgotten;
    std::copy_if(imported.begin(), imported.end(), std::back_inserter(forgotten),
                 [&](const std::string& name) { return !reached.contains(name) && !isOfTheRuntime(name); });
    return forgotten;
}

bool isOfTheRuntime(std::string_view name) {
    return (" " + std::string(runtime)).find(" " + std::string(name) + " ") != std::string::npos;
}

}  // namespace sweep
