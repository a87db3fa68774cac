#include "tests/endtoend/harness/process.h"

#include "tests/endtoend/harness/starts.h"

namespace endtoend {
namespace {

/// Opens a file, or a device, that a child may inherit.
tHandle openForChild(const tPath& file, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE handle = CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      &inherited, disposition, 0, nullptr);
    require(handle != INVALID_HANDLE_VALUE, "CreateFileW");
    return tHandle(handle);
}

PROCESS_INFORMATION create(const tPath& executable, std::wstring commandLine, DWORD flags, STARTUPINFOW& startup) {
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information{};
    requireStart("CreateProcessW", [&] {
        return CreateProcessW(executable.c_str(), commandLine.data(), nullptr, nullptr,
                              startup.hStdOutput != nullptr ? TRUE : FALSE, flags, nullptr, nullptr, &startup,
                              &information);
    });
    CloseHandle(information.hThread);
    return information;
}

/// An exit code that is no system error.
constexpr int noConsole = 0x10000;

std::wstring quoted(const tPath& path) { return L'"' + path.native() + L'"'; }

}  // namespace

tProcess::tProcess(const tPath& executable, std::wstring commandLine, DWORD creationFlags) {
    const tHandle input = openForChild(L"NUL", GENERIC_READ, OPEN_EXISTING);
    const tHandle output = openForChild(output_, GENERIC_WRITE, CREATE_ALWAYS);
    const tHandle errors = openForChild(errors_, GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOW startup{};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = errors.get();
    if (commandLine.empty()) commandLine = quoted(executable);
    const PROCESS_INFORMATION information =
        create(executable, std::move(commandLine), CREATE_NO_WINDOW | creationFlags, startup);
    process_.reset(information.hProcess);
    id_ = information.dwProcessId;
}

tProcess::~tProcess() {
    if (!running()) return;
    TerminateProcess(handle(), 1);
    WaitForSingleObject(handle(), INFINITE);
}

bool tProcess::running() const { return WaitForSingleObject(handle(), 0) == WAIT_TIMEOUT; }

DWORD tProcess::exitCode(std::chrono::milliseconds timeout) const {
    waitFor(
        "the end of the process", [&] { return !running(); }, timeout);
    DWORD code = 0;
    require(GetExitCodeProcess(handle(), &code) != FALSE, "GetExitCodeProcess");
    return code;
}

DWORD tProcess::sendConsoleEvent(DWORD event) const {
    const tPath self = ownExecutable();
    const std::wstring commandLine =
        quoted(self) + L" " + wide(consoleEventArgument) + L" " + std::to_wstring(id_) + L" " + std::to_wstring(event);
    STARTUPINFOW startup{};
    const PROCESS_INFORMATION information = create(self, commandLine, DETACHED_PROCESS, startup);
    const tHandle helper(information.hProcess);
    WaitForSingleObject(helper.get(), INFINITE);
    DWORD code = 0;
    require(GetExitCodeProcess(helper.get(), &code) != FALSE, "GetExitCodeProcess");
    if (code == noConsole) throw std::runtime_error("the console of the process cannot be reached");
    return code;
}

void tProcess::interrupt() const {
    if (const DWORD error = sendConsoleEvent(CTRL_C_EVENT); error != 0) failed("Ctrl+C", error);
}

int generateConsoleEvent(DWORD processId, DWORD event) {
    FreeConsole();
    if (AttachConsole(processId) == FALSE) return noConsole;
    // The event reaches every process of the console, this one included. It must not end before that.
    static const tHandle reached(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    SetConsoleCtrlHandler([](DWORD) -> BOOL { return SetEvent(reached.get()); }, TRUE);
    if (GenerateConsoleCtrlEvent(event, 0) == FALSE) return static_cast<int>(GetLastError());
    WaitForSingleObject(reached.get(), static_cast<DWORD>(patience.count()));
    return 0;
}

}  // namespace endtoend
