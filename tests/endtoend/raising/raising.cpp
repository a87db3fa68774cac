// A plug-in that reports its failures as the host does its own, and one that fails by structured exceptions.

#include <windows.h>

#include "err/Exception.h"

namespace {

/// Replaces the system's crash report for an exception that nothing has handled.
LONG CALLBACK endWithTheExceptionsCode(EXCEPTION_POINTERS* exception) {
    TerminateProcess(GetCurrentProcess(), exception->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

void raiseStructured(DWORD code) {
    SetUnhandledExceptionFilter(endWithTheExceptionsCode);
    RaiseException(code, 0, 0, nullptr);
}

}  // namespace

extern "C" {

__declspec(dllexport) std::int32_t InitRaisesOsFault() { zuerr::Raise({zuerr::osFault, {"raising.cpp", 1}}); }
__declspec(dllexport) std::int32_t InitRaisesInsufficientPermissions() {
    zuerr::Raise({zuerr::insufficientPermissions, {"raising.cpp", 2}});
}

/// Reads an address that is not mapped. For any of the three entries, like those that follow.
__declspec(dllexport) void Faults() {
    SetUnhandledExceptionFilter(endWithTheExceptionsCode);
    volatile int* volatile nowhere = nullptr;
    *nowhere = 0;
}
__declspec(dllexport) void RaisesItsOwnCode() { raiseStructured(0xE0000001); }
/// The code of a C++ exception of another compiler.
__declspec(dllexport) void RaisesAnotherCompilersException() { raiseStructured(0xE06D7363); }
}
