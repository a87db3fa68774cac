#include "tests/unit/sdk/systemCalls.h"

#include <atomic>
#include <mutex>
#include <set>

namespace {

std::mutex mutex;
std::set<HANDLE> open;
std::vector<std::string> texts;
std::atomic<DWORD> waitMs;

template <class Function>
Function* systemFunction(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

HANDLE opened(HANDLE handle) {
    const std::lock_guard lock(mutex);
    if (handle != nullptr) open.insert(handle);
    return handle;
}

HANDLE WINAPI createThread(SECURITY_ATTRIBUTES* security, SIZE_T stack, LPTHREAD_START_ROUTINE function, void* argument,
                           DWORD flags, DWORD* id) {
    static auto* const real = systemFunction<decltype(CreateThread)>("CreateThread");
    return systemCalls::refuseThreads ? nullptr : opened(real(security, stack, function, argument, flags, id));
}

HANDLE WINAPI createEvent(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL isSet, const wchar_t* name) {
    static auto* const real = systemFunction<decltype(CreateEventW)>("CreateEventW");
    return systemCalls::refuseEvents ? nullptr : opened(real(security, manualReset, isSet, name));
}

BOOL WINAPI closeHandle(HANDLE handle) {
    static auto* const real = systemFunction<decltype(CloseHandle)>("CloseHandle");
    const std::lock_guard lock(mutex);
    open.erase(handle);
    return real(handle);
}

DWORD WINAPI waitForSingleObject(HANDLE object, DWORD timeMs) {
    static auto* const real = systemFunction<decltype(WaitForSingleObject)>("WaitForSingleObject");
    waitMs = timeMs;
    return real(object, timeMs);
}

void WINAPI outputDebugString(const char* text) {
    const std::lock_guard lock(mutex);
    texts.emplace_back(text);
}

}  // namespace

// The linker binds calls of the imports to these.
extern "C" {
extern decltype(&CreateThread) const __imp_CreateThread;
extern decltype(&CreateEventW) const __imp_CreateEventW;
extern decltype(&CloseHandle) const __imp_CloseHandle;
extern decltype(&WaitForSingleObject) const __imp_WaitForSingleObject;
extern decltype(&OutputDebugStringA) const __imp_OutputDebugStringA;
decltype(&CreateThread) const __imp_CreateThread = &createThread;
decltype(&CreateEventW) const __imp_CreateEventW = &createEvent;
decltype(&CloseHandle) const __imp_CloseHandle = &closeHandle;
decltype(&WaitForSingleObject) const __imp_WaitForSingleObject = &waitForSingleObject;
decltype(&OutputDebugStringA) const __imp_OutputDebugStringA = &outputDebugString;
}

namespace systemCalls {

void resetAll() {
    const std::lock_guard lock(mutex);
    refuseThreads = refuseEvents = false;
    open.clear();
    texts.clear();
}

int openHandles() {
    const std::lock_guard lock(mutex);
    return static_cast<int>(open.size());
}

std::vector<std::string> debuggerTexts() {
    const std::lock_guard lock(mutex);
    return texts;
}

DWORD lastWaitMs() { return waitMs; }

}  // namespace systemCalls
