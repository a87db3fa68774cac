#include <windows.h>

#include "tool/run/worker.h"
// windows.h first: psapi.h needs its types.
#include <io.h>
#include <psapi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "err/Exception.h"
#include "quarks/closer.h"
#include "quarks/library.h"
#include "source/nPluginStart.h"
#include "source/tPluginManager.h"
#include "tool/context.h"
#include "tool/format.h"
#include "tool/run/judgement.h"
#include "tool/run/leftovers.h"
#include "tool/run/order.h"
#include "tool/run/processState.h"
#include "tool/run/protocol.h"
#include "tool/run/saidLine.h"
#include "tool/run/selection.h"
#include "tool/systemReason.h"

namespace nRun {
namespace {

using nStatus::tPhase;

using tHandle = std::unique_ptr<void, tCloser<CloseHandle>>;

constexpr UINT abortCode = 3;  // of a process that calls abort

/// Where the reports go. Global, because the handlers of faults know nothing else.
HANDLE reports = nullptr;

/// Ends the process without any code of its libraries.
[[noreturn]] void endProcess(UINT code) {
    TerminateProcess(GetCurrentProcess(), code);
    std::_Exit(static_cast<int>(code));
}

void sendLine(const char* line, std::size_t size) {
    DWORD written = 0;
    // Without the process that started it there is nothing to do here.
    if (WriteFile(reports, line, static_cast<DWORD>(size), &written, nullptr) == FALSE) endProcess(lostReportsCode);
}

/// The call that was the last to begin, and what has been said since. Only the first texts are reported at once, lest
/// the reports fill the memory, but of each call also the last, which often is the reason for a failure. Any thread may
/// say something, with any lock: this takes none of the system's, and uses no heap.
class tSpeech {
public:
    void begin(std::size_t calledPlugin, tPhase calledPhase) noexcept {
        hostThread = GetCurrentThreadId();
        plugin = calledPlugin;
        phase = calledPhase;
        textsOfCall_ = 0;
    }
    void report(const tSaidLine& line) {
        constexpr std::uint64_t mostOfCall = 9;
        constexpr std::uint64_t most = 1000;
        if (line.isEmpty()) return;
        if (textsOfCall_++ < mostOfCall && texts_++ < most) {
            sendLine(line.view().data(), line.view().size());
        } else if (take()) {
            last_ = line;
            isNew_ = true;
            busy_.clear();
        }
    }
    /// Reports the last text, unless it has been reported. Until the call has returned, another text may follow: then
    /// this reports only one that was there the last time.
    void reportLast(bool isReturned = true) {
        if (!take()) return;
        const bool mayFollow = !isReturned && isNew_;
        isNew_ = false;
        if (last_ && !mayFollow) {
            sendLine(last_->view().data(), last_->view().size());
            last_.reset();
        }
        busy_.clear();
    }

    std::atomic<DWORD> hostThread;
    std::atomic<std::size_t> plugin;
    std::atomic<tPhase> phase;

private:
    /// Returns whether no other thread uses the last text. One that does may have been stopped, so this does not wait
    /// for long.
    [[nodiscard]] bool take() noexcept {
        constexpr int attempts = 100;
        for (int i = 0; i < attempts; ++i) {
            if (!busy_.test_and_set()) return true;
            Sleep(0);
        }
        return false;
    }

    std::atomic<std::uint64_t> textsOfCall_;
    std::atomic<std::uint64_t> texts_;
    std::atomic_flag busy_;  // the members below are in use
    std::optional<tSaidLine> last_;
    bool isNew_ = false;
};
tSpeech speech;

void send(const tEvent& event) {
    speech.reportLast();
    const std::string line = toLine(event);
    sendLine(line.data(), line.size());
}

/// Reports that the plug-ins cannot be run any further, and ends the process. Uses no memory, which may have run out.
[[noreturn]] void giveUp(std::string_view reason) {
    std::array<char, 1024> line;  // NOLINT(cppcoreguidelines-pro-type-member-init): snprintf fills it
    constexpr std::size_t longest = line.size() - 20;
    const int size = std::snprintf(line.data(), line.size(), "%c 0 0 0 0 %.*s\n", static_cast<char>(tEventKind::gaveUp),
                                   static_cast<int>(std::min(reason.size(), longest)), reason.data());
    sendLine(line.data(), static_cast<std::size_t>(size));
    endProcess(exitCouldNotLook);
}

/// Gives up with the system's reason.
[[noreturn]] void giveUpAfter(std::string_view failure) {
    giveUp(fmt::format("{}: {}", failure, nSystemReason::last()));
}

/// Returns the file name of the library at the address, or an empty text. Takes no lock: a thread that has one may be
/// stopped.
std::string_view libraryName(void* address) {
    static std::array<wchar_t, 1024> path;
    static std::array<char, 3 * path.size()> name;
    const DWORD size = K32GetMappedFileNameW(GetCurrentProcess(), address, path.data(), path.size());
    const std::wstring_view whole(path.data(), size);
    const std::wstring_view last = whole.substr(whole.find_last_of(L'\\') + 1);
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, last.data(), static_cast<int>(last.size()), name.data(),
                                          static_cast<int>(name.size()), nullptr, nullptr);
    return {name.data(), static_cast<std::size_t>(bytes)};
}

/// Reports an exception that nothing handles and ends the process, as the system would. Little of the stack may be left
/// and the heap may be damaged, so this uses neither.
LONG WINAPI reportFault(EXCEPTION_POINTERS* exception) {
    static volatile LONG faults = 0;
    if (InterlockedIncrement(&faults) > 1) Sleep(INFINITE);
    static std::array<char, 4096> line;
    speech.reportLast();
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    void* const address = exception->ExceptionRecord->ExceptionAddress;
    MEMORY_BASIC_INFORMATION memory{};
    const bool known = VirtualQuery(address, &memory, sizeof memory) != 0;
    const std::string_view name = known && memory.Type == MEM_IMAGE ? libraryName(address) : "";
    const void* const base = name.empty() ? nullptr : memory.AllocationBase;
    const auto offset = reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(base);
    // No library can be below: a null function was called.
    constexpr std::uintptr_t lowest = 0x10000;
    const bool outside = known && memory.Type != MEM_IMAGE && reinterpret_cast<std::uintptr_t>(address) >= lowest;
    const int size = std::snprintf(
        line.data(), line.size(), "%c 0 0 %d %ld %.*s%s0x%llx%s\n", static_cast<char>(tEventKind::faulted),
        outside && GetCurrentThreadId() != speech.hostThread ? 1 : 0, static_cast<long>(code),
        static_cast<int>(name.size()), name.data(), name.empty() ? "" : "+", static_cast<unsigned long long>(offset),
        outside ? ", outside all libraries" : "");
    sendLine(line.data(), static_cast<std::size_t>(size));
    endProcess(code);
}

void reportAbort(int /*signal*/) {
    static constexpr std::string_view line = "a 0 0 0 0 \n";  // made without the heap, which may be damaged
    speech.reportLast();
    sendLine(line.data(), line.size());
    endProcess(abortCode);
}

/// Reports a text of the debugger's, which may be anywhere and end anywhere.
void reportSaid(std::size_t size, ULONG_PTR address) {
    std::array<char, tSaidLine::longestText + 1> text;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled next
    SIZE_T read = 0;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): exceptions have numbers for parameters
    if (ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<const void*>(address), text.data(),
                          std::min(size, text.size()), &read) == FALSE) {
        return;
    }
    const bool byHostThread = GetCurrentThreadId() == speech.hostThread;
    speech.report(tSaidLine(speech.plugin, speech.phase, byHostThread, {text.data(), read}));
}

/// OutputDebugString raises an exception, for a debugger, and handles it itself. All others are left to the plug-in.
LONG WINAPI hear(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == DBG_PRINTEXCEPTION_C && record.NumberParameters == 2) {
        reportSaid(record.ExceptionInformation[0], record.ExceptionInformation[1]);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

/// Lets no fault open a window, and reports all. Without the handler, only what is said to the debugger is missing.
void watchFaults() {
    AddVectoredExceptionHandler(0, hear);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(reportFault);
    std::signal(SIGABRT, reportAbort);
}

/// Runs the lives as the host would. Each plug-in has a manager of its own, so that each call can be reported; which
/// plug-ins may start is the host's rule.
class tLives {
public:
    explicit tLives(const tOrder& order)
        : order_(order),
          descriptions_(describe(order.files, order.keepLoaded)),
          leftovers_(descriptions_.size(), readProcessState()) {
        send({tEventKind::ready, 0, {}, descriptions_.size()});
    }

    void run() {
        for (std::size_t life = 0; life < order_.times || leftovers_.undecided(); ++life) {
            runLife();
            for (tLeft& left : leftovers_.afterLife(settledState())) {
                const tEventKind kind = left.isHandles ? tEventKind::leftHandles : tEventKind::left;
                send({kind, left.plugin, {}, left.life, 0, std::move(left.text)});
            }
            send({tEventKind::lifeOver});
        }
        send({tEventKind::finished});
    }

private:
    static std::vector<tPluginDescription> describe(const std::vector<std::string>& files, bool load) {
        std::vector<tPluginDescription> descriptions;
        for (tPlugin& plugin : select(files)) {
            std::uint32_t ignored = 0;  // a library that cannot be loaded is not loaded in a life, either
            if (load) static_cast<void>(nLibrary::load(plugin.description.path.c_str(), ignored));
            descriptions.push_back(std::move(plugin.description));
        }
        return descriptions;
    }

    /// Threads that a plug-in has told to end may take a moment.
    [[nodiscard]] tProcessState settledState() const {
        constexpr int attempts = 10;
        constexpr DWORD pauseMs = 10;
        tProcessState state = readProcessState();
        for (int i = 0; i < attempts && leftovers_.hasNewThreads(state); ++i) {
            Sleep(pauseMs);
            state = readProcessState();
        }
        return state;
    }

    void runLife() {
        nPluginStart::tStarted names = nPluginStart::noneStarted(descriptions_);
        std::vector<tPluginManager> managers(descriptions_.size());
        std::vector<std::size_t> started;
        for (std::size_t plugin = 0; plugin < managers.size(); ++plugin) {
            if (start(plugin, managers[plugin], names)) started.insert(started.begin(), plugin);
        }
        for (const std::size_t plugin : started) {
            if (!descriptions_[plugin].stop.empty()) {
                call(plugin, tPhase::stop, managers[plugin], [](tPluginManager& manager) { manager.stopAll(); });
            }
        }
        for (const std::size_t plugin : started) {
            call(plugin, tPhase::cleanup, managers[plugin], [](tPluginManager& manager) { manager.cleanupAll(); });
        }
    }

    /// Returns whether the plug-in has started.
    bool start(std::size_t plugin, tPluginManager& manager, nPluginStart::tStarted& names) {
        tPluginDescription description = descriptions_[plugin];
        // Its manager knows no other plug-in: it is told of dependencies only if they have not started.
        if (nPluginStart::refusal(description, order_.allowedMask, names) == nullptr) description.dependencies.clear();
        call(plugin, tPhase::initialize, manager,
             [&](tPluginManager& own) { own.startAll({description}, order_.allowedMask); });
        const bool started = manager.entries().front().initCode >= 0;
        if (started) names.at(description.name) = true;
        return started;
    }

    template <class Call>
    void call(std::size_t plugin, tPhase phase, tPluginManager& manager, const Call& callEntry) {
        speech.begin(plugin, phase);
        send({tEventKind::called, plugin, phase});
        try {
            callEntry(manager);
        } catch (const zuerr::ExceptionBase&) {
            // The host's own, the only one that its manager lets pass; a plug-in's exceptions become codes.
            send({tEventKind::keptLibrary, plugin, phase});
            endProcess(exitCouldNotLook);
        } catch (const std::exception&) {
            throw;
        } catch (...) {
            send({tEventKind::threw, plugin, phase});
            endProcess(abortCode);
        }
        const tPluginEntry& entry = manager.entries().front();
        const std::array codes{entry.initCode, entry.stopCode, entry.cleanupCode};
        const std::array times{entry.initTimeMs, entry.stopTimeMs, entry.cleanupTimeMs};
        const auto index = static_cast<std::size_t>(phase);
        send({tEventKind::returned, plugin, phase, times[index], codes[index]});
        // To read the state takes longer than most calls. With a single plug-in it is clear who has changed it.
        if (descriptions_.size() > 1) leftovers_.afterCall(plugin, readProcessState());
    }

    const tOrder& order_;
    std::vector<tPluginDescription> descriptions_;
    tLeftovers leftovers_;
};

/// Returns all of standard input: a pipe, which breaks at its end.
std::string readInput() {
    std::string text;
    std::array<char, 4096> bytes;  // NOLINT(cppcoreguidelines-pro-type-member-init): ReadFile fills it
    DWORD size = 0;
    while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), bytes.data(), bytes.size(), &size, nullptr) != FALSE && size > 0) {
        text.append(bytes.data(), size);
    }
    if (size > 0 || GetLastError() != ERROR_BROKEN_PIPE) giveUpAfter("it cannot read what to do");
    return text;
}

/// Keeps standard output for the reports. What plug-ins write there goes to standard error.
void takeOutput() {
    const HANDLE process = GetCurrentProcess();
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    HANDLE own = nullptr;
    reports = output;
    if (DuplicateHandle(process, output, process, &own, 0, FALSE, DUPLICATE_SAME_ACCESS) == FALSE) {
        giveUpAfter("it cannot keep its output for itself");
    }
    reports = own;
    if (_dup2(2, 1) != 0 || SetStdHandle(STD_OUTPUT_HANDLE, GetStdHandle(STD_ERROR_HANDLE)) == FALSE) {
        giveUpAfter("it cannot redirect what plug-ins write");
    }
}

/// The thread of the plug-ins. Like the service's, it is not the process's first.
DWORD WINAPI runLives(void* order) {
    ULONG stackForFaults = 0x10000;
    SetThreadStackGuarantee(&stackForFaults);
    // MinGW's runtime opens handles at a thread's first such query, which the host makes with each call.
    static_cast<void>(zuerr::ExceptionIsPropagating());
    try {
        tLives(*static_cast<tOrder*>(order)).run();
        return exitNothingFound;
    } catch (const std::bad_alloc&) {
        giveUp("it ran out of memory");
    } catch (const std::exception& failure) {
        giveUp(failure.what());
    }
}

}  // namespace

int runWorker() {
    takeOutput();
    std::optional<tOrder> order = readOrder(readInput());
    if (!order) giveUp("it was not told what to do");
    watchFaults();
    const tHandle thread(CreateThread(nullptr, 0, runLives, &*order, 0, nullptr));
    if (thread == nullptr) giveUpAfter("no thread starts for the plug-ins");
    // A call that hangs may have said why.
    constexpr DWORD pauseMs = 500;
    DWORD wait = WAIT_TIMEOUT;
    for (; wait == WAIT_TIMEOUT; wait = WaitForSingleObject(thread.get(), pauseMs)) speech.reportLast(false);
    if (wait != WAIT_OBJECT_0) giveUpAfter("it cannot wait for their thread");
    // Only if a plug-in ends the thread does this report come before that of the end, which is then missing.
    send({tEventKind::endedThread});
    return exitNothingFound;
}

}  // namespace nRun
