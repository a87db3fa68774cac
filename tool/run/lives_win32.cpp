#include <windows.h>

#include <algorithm>
#include <array>
#include <memory>
#include <type_traits>
#include <utility>

#include "quarks/closer.h"
#include "stdpath/utf.h"
#include "tool/context.h"
#include "tool/format.h"
#include "tool/run/history.h"
#include "tool/run/lives.h"
#include "tool/run/worker.h"
#include "tool/systemReason.h"

namespace nRun {
namespace {

using tHandle = std::unique_ptr<void, tCloser<CloseHandle>>;

constexpr DWORD pollMs = 5;
constexpr std::uint64_t patienceMs = 30'000;  // with the process itself, while no call is running

void require(bool succeeded, std::string_view what) {
    if (!succeeded) throw tCannotRun(fmt::format("The plug-ins cannot be run: {}: {}", what, nSystemReason::last()));
}

/// A job whose processes end with the last handle to it, however this process ends.
class tJob {
public:
    tJob() : job_(CreateJobObjectW(nullptr, nullptr)) {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags =
            JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
        require(job_ != nullptr && SetInformationJobObject(job_.get(), JobObjectExtendedLimitInformation, &limits,
                                                           sizeof limits) != FALSE,
                "there is no job object for them");
    }
    ~tJob() {
        // If this fails, the system ends them when the handle is closed.
        if (TerminateJobObject(job_.get(), 1) == FALSE) return;
        constexpr int attempts = 1000;
        for (int i = 0; i < attempts && !isEmpty(); ++i) Sleep(pollMs);
    }
    tJob(const tJob&) = delete;
    tJob& operator=(const tJob&) = delete;

    void add(HANDLE process) {
        require(AssignProcessToJobObject(job_.get(), process) != FALSE, "their process does not enter a job object");
    }

private:
    [[nodiscard]] bool isEmpty() const {
        JOBOBJECT_BASIC_ACCOUNTING_INFORMATION accounting{};
        return QueryInformationJobObject(job_.get(), JobObjectBasicAccountingInformation, &accounting,
                                         sizeof accounting, nullptr) == FALSE ||
               accounting.ActiveProcesses == 0;
    }

    tHandle job_;
};

/// Restores the code pages of the console, which plug-ins share with this process, on destruction.
class tConsoleCodePages {
public:
    tConsoleCodePages() = default;
    ~tConsoleCodePages() {
        if (input_ != 0) SetConsoleCP(input_);
        if (output_ != 0) SetConsoleOutputCP(output_);
    }
    tConsoleCodePages(const tConsoleCodePages&) = delete;
    tConsoleCodePages& operator=(const tConsoleCodePages&) = delete;

private:
    UINT input_ = GetConsoleCP();
    UINT output_ = GetConsoleOutputCP();
};

struct tPipe {
    /// The child inherits one of the ends.
    explicit tPipe(std::size_t size, bool childReads) {
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        HANDLE reader = nullptr;
        HANDLE writer = nullptr;
        require(CreatePipe(&reader, &writer, &inheritable, static_cast<DWORD>(size)) != FALSE, "there is no pipe");
        ours.reset(childReads ? writer : reader);
        childs.reset(childReads ? reader : writer);
        require(SetHandleInformation(ours.get(), HANDLE_FLAG_INHERIT, 0) != FALSE, "there is no pipe of their own");
    }

    tHandle ours{};
    tHandle childs{};
};

/// Ctrl+C and the like: an exit code that no script mistakes for success. The job's processes end with this one.
BOOL WINAPI endInterrupted(DWORD /*event*/) { return TerminateProcess(GetCurrentProcess(), exitCouldNotLook); }

std::wstring ownPath() {
    std::wstring path(0x8000, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    require(!path.empty(), "the path of this program is unknown");
    return path;
}

/// Returns a handle for a child's output and errors: that of this process, or of nothing if it has none.
tHandle inheritableError() {
    const HANDLE process = GetCurrentProcess();
    const HANDLE own = GetStdHandle(STD_ERROR_HANDLE);  // if it is invalid, it is also that of this process
    HANDLE error = nullptr;
    if (own != INVALID_HANDLE_VALUE &&
        DuplicateHandle(process, own, process, &error, 0, TRUE, DUPLICATE_SAME_ACCESS) != FALSE) {
        return tHandle(error);
    }
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    error = CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inheritable, OPEN_EXISTING, 0, nullptr);
    require(error != INVALID_HANDLE_VALUE, "there is nothing for what they write");
    return tHandle(error);
}

/// The functions of user32.dll that are needed here. To load it takes longer than to start this program, so it is
/// loaded when a plug-in hangs.
struct tUser32 {
    template <class Function>
    [[nodiscard]] Function find(const char* name) const {
        if (library == nullptr) return nullptr;
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.get(), name)));
    }
    [[nodiscard]] bool complete() const {
        return enumerate != nullptr && processOf != nullptr && isVisible != nullptr && titleOf != nullptr;
    }

    std::unique_ptr<std::remove_pointer_t<HMODULE>, tCloser<FreeLibrary>> library{LoadLibraryW(L"user32.dll")};
    decltype(&EnumWindows) enumerate = find<decltype(enumerate)>("EnumWindows");
    decltype(&GetWindowThreadProcessId) processOf = find<decltype(processOf)>("GetWindowThreadProcessId");
    decltype(&IsWindowVisible) isVisible = find<decltype(isVisible)>("IsWindowVisible");
    decltype(&InternalGetWindowText) titleOf = find<decltype(titleOf)>("InternalGetWindowText");
};

/// The titles of the visible windows of a process.
struct tWindows {
    const tUser32& user32;
    DWORD process;
    std::vector<std::string> titles{};

    static BOOL CALLBACK add(HWND window, LPARAM self) {
        auto& windows = *reinterpret_cast<tWindows*>(self);  // NOLINT(performance-no-int-to-ptr): it was one before
        DWORD process = 0;
        windows.user32.processOf(window, &process);
        if (process != windows.process || windows.user32.isVisible(window) == FALSE) return TRUE;
        std::array<wchar_t, 256> title{};
        const int size = windows.user32.titleOf(window, title.data(), title.size());
        windows.titles.push_back(nStdPath::fileNameToUtf8(std::u16string(title.data(), title.data() + size)));
        return TRUE;
    }
};

/// The process that runs the plug-ins.
class tWorker {
public:
    explicit tWorker(const std::string& order) : orders_(order.size(), true), reports_(reportsSize, false) {
        start();
        job_.add(process_.get());
        // The process begins when it has read this to its end: then it is in the job for certain.
        DWORD written = 0;
        require(
            WriteFile(orders_.ours.get(), order.data(), static_cast<DWORD>(order.size()), &written, nullptr) != FALSE,
            "their process does not read its order");
        orders_.ours.reset();
    }

    /// Reads until the process finishes, ends, or reports nothing for too long.
    [[nodiscard]] tEnding watch(std::uint64_t limitMs, tReader& reader, const std::function<void()>& onLife) const {
        std::uint64_t heardMs = GetTickCount64();
        bool calling = false;
        for (;;) {
            const DWORD wait = WaitForSingleObject(process_.get(), pollMs);
            require(wait != WAIT_FAILED, "their process cannot be watched");
            const std::vector<tEvent>& events = reader.events();
            const std::size_t before = events.size();
            read(reader);
            for (std::size_t i = before; i < events.size(); ++i) {
                if (events[i].kind == tEventKind::said) continue;  // a call that hangs can say much
                heardMs = GetTickCount64();
                calling = events[i].kind == tEventKind::called;
                if (events[i].kind == tEventKind::lifeOver) onLife();
                if (events[i].kind == tEventKind::finished) return {0, limitMs};
            }
            if (wait == WAIT_OBJECT_0) return {exitCode(), limitMs};
            const std::uint64_t silenceMs = calling ? limitMs : std::max(limitMs, patienceMs);
            if (GetTickCount64() - heardMs > silenceMs) return {std::nullopt, limitMs, windowTitles()};
        }
    }

private:
    void start() {
        const tHandle error = inheritableError();
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = orders_.childs.get();
        startup.hStdOutput = reports_.childs.get();
        startup.hStdError = error.get();
        const std::wstring program = ownPath();
        std::wstring line = L"ziptra " + std::wstring(workerArgument);
        PROCESS_INFORMATION information{};
        // In a group of its own, Ctrl+C does not end it before this process, which would then report a failure.
        require(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr,
                               nullptr, &startup, &information) != FALSE,
                "no process starts for them");
        CloseHandle(information.hThread);
        process_.reset(information.hProcess);
        id_ = information.dwProcessId;
        orders_.childs.reset();
        reports_.childs.reset();
    }

    /// Reads what has arrived, but no more than the pipe can contain: a plug-in that writes there all the time would
    /// otherwise never reach its limit. The pipe breaks when the process ends.
    void read(tReader& reader) const {
        std::array<char, 0x10000> bytes;  // NOLINT(cppcoreguidelines-pro-type-member-init): ReadFile fills it
        const HANDLE pipe = reports_.ours.get();
        DWORD size = 0;
        std::size_t total = 0;
        while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &size, nullptr) != FALSE) {
            if (size == 0 || total > reportsSize) return;
            if (ReadFile(pipe, bytes.data(), bytes.size(), &size, nullptr) == FALSE) break;
            reader.add({bytes.data(), size});
            total += size;
        }
        require(GetLastError() == ERROR_BROKEN_PIPE, "what their process reports cannot be read");
    }

    [[nodiscard]] std::uint32_t exitCode() const {
        DWORD code = 0;
        require(GetExitCodeProcess(process_.get(), &code) != FALSE, "the exit code of their process is unknown");
        return code;
    }

    [[nodiscard]] std::vector<std::string> windowTitles() const {
        const tUser32 user32;
        tWindows windows{user32, id_};
        if (user32.complete()) user32.enumerate(tWindows::add, reinterpret_cast<LPARAM>(&windows));
        return std::move(windows.titles);
    }

    static constexpr std::size_t reportsSize = 0x100000;

    tJob job_;  // ended last
    tPipe orders_;
    tPipe reports_;
    tHandle process_;
    DWORD id_ = 0;
};

/// Runs the lives once more with libraries that stay loaded. A C++ runtime within a library may open handles once and
/// never close them; GCC's for POSIX threads does at the first exception. In the service, which loads each library
/// once, these do not add up, and the plug-in's author can do nothing about them.
std::vector<tEvent> eventsOfLoaded(tOrder order, std::uint64_t limitMs) {
    order.keepLoaded = true;
    tReader reader;
    static_cast<void>(tWorker(toText(order)).watch(limitMs, reader, [] {}));
    return reader.events();
}

}  // namespace

tResult run(const tOrder& order, std::uint64_t limitMs, const std::function<void()>& onLife) {
    std::vector<tPlugin> plugins = select(order.files);
    require(SetConsoleCtrlHandler(endInterrupted, TRUE) != FALSE, "Ctrl+C cannot be handled");
    const tConsoleCodePages restored;
    tReader reader;
    const tEnding ending = tWorker(toText(order)).watch(limitMs, reader, onLife);
    std::vector<tEvent> events = reader.events();
    if (leftHandles(events)) events = withHandlesOf(std::move(events), eventsOfLoaded(order, limitMs));
    return judge(std::move(plugins), order.times, events, ending);
}

}  // namespace nRun
