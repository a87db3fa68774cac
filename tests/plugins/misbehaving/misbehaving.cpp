// One entry point for each way in which a plug-in can harm the service. Each can be used as any of the three entries.

#include <windows.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

DWORD WINAPI faultSoon(void* /*unused*/) {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 0;
    return 0;
}

DWORD WINAPI callNothing(void* /*unused*/) {
    DWORD (*volatile nothing)() = nullptr;
    return nothing();
}

DWORD WINAPI writeForever(void* pipe) {
    static char bytes[0x100000];
    DWORD written = 0;
    while (WriteFile(pipe, bytes, sizeof bytes, &written, nullptr) != FALSE) {
    }
    return 0;
}

constexpr DWORD oftenMs = 100;

DWORD WINAPI sayAgainAndAgain(void* /*unused*/) {
    for (;;) {
        OutputDebugStringA("I am still here");
        Sleep(oftenMs);
    }
}

DWORD WINAPI sleepForever(void* /*unused*/) {
    for (;;) Sleep(1);
}

DWORD WINAPI sayOnce(void* /*unused*/) {
    OutputDebugStringA("a thread gave up");
    return 0;
}

LONG WINAPI goOn(EXCEPTION_POINTERS* exception) {
    const bool own = exception->ExceptionRecord->ExceptionCode == DBG_PRINTEXCEPTION_C;
    return own ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

/// Raises what OutputDebugStringA raises, with a text of this size.
void raiseText(ULONG_PTR size, const void* text) {
    const ULONG_PTR parameters[]{size, reinterpret_cast<ULONG_PTR>(text)};
    RaiseException(DBG_PRINTEXCEPTION_C, 0, 2, parameters);
}

/// Uses all of the stack: the depth is never reached.
int descend(const volatile char* caller, int depth) {
    volatile char room[4096];
    room[0] = *caller;
    return depth == 0 ? 0 : descend(room, depth - 1) + room[0];
}

/// Runs the command line that this variable contains, and does not wait for it.
void startChild() {
    char line[1000];
    GetEnvironmentVariableA("TEST_CHILD", line, sizeof line);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child{};
    if (CreateProcessA(nullptr, line, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &child) == FALSE) return;
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
}

/// The library beside this one.
std::string neighbourPath() {
    char path[MAX_PATH];
    const std::string own(path, GetModuleFileNameA(GetModuleHandleA("misbehaving.dll"), path, MAX_PATH));
    return own.substr(0, own.find_last_of('\\') + 1) + "neighbour.dll";
}

}  // namespace

extern "C" {

int Behaves() { return 0; }
int Warns() { return 3; }
int Fails() { return -7; }
int Throws() { throw std::runtime_error("an exception of the standard library"); }
int ThrowsAnything() { throw 7; }
int CatchesException() {
    try {
        throw std::runtime_error("it is caught");
    } catch (const std::exception&) {
        return 0;
    }
}
int Faults() { return static_cast<int>(faultSoon(nullptr)); }
int OverflowsStack() {
    constexpr int tooDeep = 1 << 20;
    volatile char bottom = 0;
    return descend(&bottom, tooDeep);
}
int RunsIllegalInstruction() { __builtin_trap(); }
int Aborts() { std::abort(); }
int Exits() { std::exit(5); }
int ExitsAsAbort() { std::_Exit(3); }  // as abort of a C library that the host does not use
int EndsThread() { ExitThread(0); }
int Hangs() {
    Sleep(INFINITE);
    return 0;
}
int FloodsReports() {
    constexpr int threads = 4;
    for (std::uintptr_t value = 4; value < 0x400; value += 4) {
        const auto handle = reinterpret_cast<HANDLE>(value);  // NOLINT(performance-no-int-to-ptr): a handle is a number
        // Only that of the reports is so large.
        constexpr DWORD large = 0x100000;
        DWORD out = 0;
        DWORD in = 0;
        if (GetNamedPipeInfo(handle, nullptr, &out, &in, nullptr) == FALSE || (out < large && in < large)) continue;
        for (int i = 0; i < threads; ++i) CloseHandle(CreateThread(nullptr, 0, writeForever, handle, 0, nullptr));
    }
    return Hangs();
}
int OpensWindow() { return MessageBoxA(nullptr, "text", "A message box", MB_OK); }
int LeavesThread() {
    // It executes no code of this library, which is about to be unloaded.
    const auto sleep = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(Sleep));
    CloseHandle(CreateThread(nullptr, 0, sleep, INVALID_HANDLE_VALUE, 0, nullptr));  // its low half is INFINITE
    return 0;
}
int LeavesThreadInItsCode() {
    CloseHandle(CreateThread(nullptr, 0, sleepForever, nullptr, 0, nullptr));
    return 0;
}
int FaultsOnItsThread() {
    WaitForSingleObject(CreateThread(nullptr, 0, faultSoon, nullptr, 0, nullptr), INFINITE);
    return 0;
}
int CallsNothingOnItsThread() {
    WaitForSingleObject(CreateThread(nullptr, 0, callNothing, nullptr, 0, nullptr), INFINITE);
    return 0;
}
int LeavesHandle() { return CreateEventA(nullptr, TRUE, FALSE, nullptr) == nullptr ? -1 : 0; }
int LeavesLibrary() { return LoadLibraryA(neighbourPath().c_str()) == nullptr ? -1 : 0; }
int ChangesLocale() { return std::setlocale(LC_ALL, "German") == nullptr ? -1 : 0; }
int ChangesThreadLocale() { return SetThreadLocale(MAKELCID(LANG_FRENCH, SORT_DEFAULT)) == FALSE ? -1 : 0; }
int ChangesDirectory() { return SetCurrentDirectoryA("C:\\") == FALSE ? -1 : 0; }
int ChangesEnvironment() { return SetEnvironmentVariableA("MISBEHAVING", "1") == FALSE ? -1 : 0; }
int ChangesErrorMode() {
    SetErrorMode(SEM_NOOPENFILEERRORBOX);
    return 0;
}
int ChangesPriority() { return SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL) == FALSE ? -1 : 0; }
int ChangesCodePage() { return SetConsoleOutputCP(GetConsoleOutputCP() == 437 ? 850 : 437) == FALSE ? -1 : 0; }
int SaysWhyItFails() {
    OutputDebugStringA("no file Settings.txt\n");
    return -7;
}
int SaysMuch() {
    const std::string text(100'000, 'x');
    for (int i = 0; i < 20; ++i) {
        OutputDebugStringA("\n");
        OutputDebugStringA((std::to_string(i) + text).c_str());
    }
    return 0;
}
int SaysMuchAndFaults() { return SaysMuch() + Faults(); }
int SaysMuchAndAborts() {
    SaysMuch();
    return Aborts();
}
int SaysMuchAndHangs() { return SaysMuch() + Hangs(); }
int SaysWide() {
    OutputDebugStringW(L"wide");
    return 0;
}
int SaysSomethingOnItsThread() {
    const HANDLE thread = CreateThread(nullptr, 0, sayOnce, nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    return CloseHandle(thread) == FALSE ? -1 : 0;
}
int SaysWhatIsNowhere() {
    void* const handler = AddVectoredExceptionHandler(0, goOn);
    raiseText(100, nullptr);
    raiseText(static_cast<ULONG_PTR>(-1), reinterpret_cast<const void*>(1));
    void* const page = VirtualAlloc(nullptr, 1, MEM_COMMIT | MEM_RESERVE, PAGE_NOACCESS);
    raiseText(1, page);
    VirtualFree(page, 0, MEM_RELEASE);
    RaiseException(DBG_PRINTEXCEPTION_C, 0, 0, nullptr);
    raiseText(4, "four and more");
    return RemoveVectoredExceptionHandler(handler) == 0 ? -1 : 0;
}
int HangsButSaysSo() {
    CloseHandle(CreateThread(nullptr, 0, sayAgainAndAgain, nullptr, 0, nullptr));
    return Hangs();
}
int StartsChild() {
    startChild();
    return 0;
}
int Writes() {
    std::puts("written by a plug-in");
    return std::fflush(stdout);
}
}
