#include "tests/sweep/faults_win32.h"

#include "tests/support/imports_win32.h"

namespace sweep {

/// `failure` receives the function that would have been called, and the arguments.
template <class Import, class Failure>
void tFaults::row(Import& door, const char* name, unsigned mayCost, Failure failure) {
    const std::size_t call = calls_.size();
    calls_.push_back({name, mayCost, true});
    door.replace([this, call, failure, inner = door.current()](auto... arguments) {
        return strikes(call) ? failure(inner, arguments...) : inner(arguments...);
    });
}  // namespace sweep

/// The call does nothing and fails.
template <class Import, class Result>
void tFaults::refuses(Import& door, const char* name, unsigned mayCost, unsigned long error, Result result) {
    row(door, name, mayCost, [error, result](const auto& inner, auto... arguments) -> decltype(inner(arguments...)) {
        imports::SetLastError.real(error);
        return static_cast<decltype(inner(arguments...))>(result);
    });
}

/// The call does its work but reports a failure, about which the caller can do nothing.
template <class Import, class Result>
void tFaults::complains(Import& door, const char* name, unsigned mayCost, unsigned long error, Result result) {
    row(door, name, mayCost, [error, result](const auto& inner, auto... arguments) -> decltype(inner(arguments...)) {
        inner(arguments...);
        imports::SetLastError.real(error);
        return static_cast<decltype(inner(arguments...))>(result);
    });
}

template <class Import>
void tFaults::cannotFail(Import& door, const char* name) {
    const std::size_t call = calls_.size();
    calls_.push_back({name, cost::nothing, false});
    door.replace([this, call, inner = door.current()](auto... arguments) {
        ++calls_[call].occurrences;
        return inner(arguments...);
    });
}

bool tFaults::strikes(std::size_t call) {
    const int nth = ++calls_[call].occurrences;
    if (call != target_ || nth < nth_ || nth_ == 0) return false;
    if (nth > nth_ && !forEver_) return false;
    ++injected_;
    return true;
}

void tFaults::disarm() { arm(0, 0, false); }

void tFaults::arm(std::size_t call, int nth, bool forEver) {
    for (tCall& counted : calls_) counted.occurrences = 0;
    target_ = call;
    nth_ = nth;
    forEver_ = forEver;
    injected_ = 0;
    brokenStream_ = false;
}

#define CALL(name) imports::name, #name

void tFaults::addService() {
    refuses(CALL(StartServiceCtrlDispatcherA), cost::mode, ERROR_INVALID_DATA, FALSE);
    refuses(CALL(RegisterServiceCtrlHandlerA), cost::mode, ERROR_SERVICE_DOES_NOT_EXIST, nullptr);
    complains(CALL(SetServiceStatus), cost::nothing, ERROR_INVALID_HANDLE, FALSE);
    refuses(CALL(SetConsoleCtrlHandler), cost::run, ERROR_ACCESS_DENIED, FALSE);
    refuses(CALL(CreateEventA), cost::start, ERROR_NOT_ENOUGH_MEMORY, nullptr);
    refuses(CALL(SetEvent), cost::waiting, ERROR_INVALID_HANDLE, FALSE);
    refuses(CALL(WaitForSingleObject), cost::waiting, ERROR_INVALID_HANDLE, WAIT_FAILED);
}

void tFaults::addProcess() {
    refuses(CALL(OpenProcess), cost::nothing, ERROR_ACCESS_DENIED, nullptr);
    refuses(CALL(SetEntriesInAclA), cost::nothing, 0, ERROR_NOT_ENOUGH_MEMORY);
    refuses(CALL(SetSecurityInfo), cost::nothing, 0, ERROR_ACCESS_DENIED);
    row(CALL(LocalFree), cost::nothing, [](const auto& inner, HLOCAL block) {
        inner(block);
        imports::SetLastError.real(ERROR_INVALID_HANDLE);
        return block;
    });
    complains(CALL(CloseHandle), cost::nothing, ERROR_INVALID_HANDLE, FALSE);
}

void tFaults::addPlaces() {
    refuses(CALL(RegOpenKeyExW), cost::listing, 0, ERROR_FILE_NOT_FOUND);
    refuses(CALL(RegQueryValueExW), cost::listing, 0, ERROR_FILE_NOT_FOUND);
    complains(CALL(RegCloseKey), cost::nothing, 0, ERROR_INVALID_HANDLE);
    refuses(CALL(FormatMessageA), cost::nothing, ERROR_MR_MID_NOT_FOUND, 0);
    refuses(CALL(SHGetFolderPathW), cost::statusFile, 0, E_FAIL);
    refuses(CALL(GetSystemDirectoryW), cost::statusFile, ERROR_ACCESS_DENIED, 0);
    refuses(CALL(GetModuleFileNameW), cost::nothing, ERROR_ACCESS_DENIED, 0);
    refuses(CALL(GetModuleHandleW), cost::nothing, ERROR_MOD_NOT_FOUND, nullptr);
    refuses(CALL(LoadLibraryExW), cost::statusFile, ERROR_NOT_ENOUGH_MEMORY, nullptr);
}

void tFaults::addFiles() {
    refuses(CALL(CreateFileW), cost::listing, ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
    refuses(CALL(FindFirstFileW), cost::nothing, ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
    complains(CALL(FindClose), cost::nothing, ERROR_INVALID_HANDLE, FALSE);
    refuses(CALL(_wfopen), cost::descriptions, ERROR_ACCESS_DENIED, nullptr);
    row(CALL(fread), cost::descriptions, [this](const auto& /*inner*/, auto...) -> std::size_t {
        brokenStream_ = true;
        return 0;
    });
    row(CALL(ferror), cost::descriptions, [](const auto& /*inner*/, FILE*) { return 1; });
    imports::ferror.replace([this, inner = imports::ferror.current()](FILE* stream) {
        const int failed = inner(stream);
        return brokenStream_ ? std::exchange(brokenStream_, false), 1 : failed;
    });
    refuses(CALL(MultiByteToWideChar), cost::statusFile | cost::listing, ERROR_NO_UNICODE_TRANSLATION, 0);
    refuses(CALL(_wfsopen), cost::statusFile, ERROR_ACCESS_DENIED, nullptr);
    row(CALL(fwrite), cost::statusFile,
        [](const auto& inner, const void* text, std::size_t size, std::size_t count, FILE* file) {
            return inner(text, size, count / 2, file);
        });
    row(CALL(fclose), cost::statusFile, [](const auto& inner, FILE* file) {
        inner(file);
        return EOF;
    });
    refuses(CALL(_wremove), cost::statusFile, ERROR_ACCESS_DENIED, -1);
    refuses(CALL(_wrename), cost::statusFile, ERROR_ACCESS_DENIED, -1);
}

void tFaults::addLibraries(tLedger& ledger) {
    refuses(CALL(SetThreadErrorMode), cost::nothing, ERROR_INVALID_PARAMETER, FALSE);
    refuses(CALL(GetModuleHandleA), cost::nothing, ERROR_MOD_NOT_FOUND, nullptr);
    refuses(CALL(LoadLibraryExA), cost::plugins | cost::deployment, ERROR_NOT_ENOUGH_MEMORY, nullptr);
    refuses(CALL(GetProcAddress), cost::plugins | cost::deployment | cost::statusFile, ERROR_PROC_NOT_FOUND, nullptr);
    row(CALL(FreeLibrary), cost::unloading, [&ledger](const auto& /*inner*/, HMODULE module) {
        ledger.refusedToClose("module", module);
        imports::SetLastError.real(ERROR_INVALID_HANDLE);
        return FALSE;
    });
}

void tFaults::addNumbers() {
    refuses(CALL(GetSystemTimeAdjustment), cost::nothing, ERROR_ACCESS_DENIED, FALSE);
    refuses(CALL(_time64), cost::nothing, 0, -1);
    refuses(CALL(_ctime64), cost::nothing, 0, nullptr);
    cannotFail(CALL(GetACP));
    cannotFail(CALL(GetTickCount64));
    cannotFail(CALL(GetCurrentProcessId));
    cannotFail(CALL(GetLastError));
    cannotFail(CALL(Sleep));
}

#undef CALL

tFaults::tFaults(tLedger& ledger) {
    calls_.reserve(64);  // the stand-ins refer to its elements
    addService();
    addProcess();
    addPlaces();
    addFiles();
    addLibraries(ledger);
    addNumbers();
}

}  // namespace sweep
