// A plug-in that fails by structured exceptions.

#include <windows.h>

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

/// Reads an address that is not mapped. This and the others serve as any of the three entries.
__declspec(dllexport) void Faults() {
    SetUnhandledExceptionFilter(endWithTheExceptionsCode);
    volatile int* volatile nowhere = nullptr;
    *nowhere = 0;
}
__declspec(dllexport) void RaisesItsOwnCode() { raiseStructured(0xE0000001); }
/// The code of a C++ exception of another compiler.
__declspec(dllexport) void RaisesAnotherCompilersException() { raiseStructured(0xE06D7363); }
}
