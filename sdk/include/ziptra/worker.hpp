#ifndef ZIPTRA_WORKER_HPP
#define ZIPTRA_WORKER_HPP

/// The threads of a plug-in, in C++17. Included by ziptra/plugin.hpp, which asks them to stop and waits for them.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

// The functions of Windows that this header calls, as <windows.h> declares them: that header would bring macros with
// names such as min and max into every plug-in.
#if defined(_WIN32)
#define ZIPTRA_DETAIL_SYSTEM extern "C" __declspec(dllimport)
#else
#define ZIPTRA_DETAIL_SYSTEM extern "C"  // for tools that analyse the source elsewhere
#endif
struct _SECURITY_ATTRIBUTES;
ZIPTRA_DETAIL_SYSTEM void* CreateEventW(_SECURITY_ATTRIBUTES*, int, int, const wchar_t*);
ZIPTRA_DETAIL_SYSTEM void* CreateThread(_SECURITY_ATTRIBUTES*, std::size_t, unsigned long (*)(void*), void*,
                                        unsigned long, unsigned long*);
ZIPTRA_DETAIL_SYSTEM int SetEvent(void*);
ZIPTRA_DETAIL_SYSTEM unsigned long WaitForSingleObject(void*, unsigned long);
ZIPTRA_DETAIL_SYSTEM int CloseHandle(void*);
ZIPTRA_DETAIL_SYSTEM void OutputDebugStringA(const char*);
ZIPTRA_DETAIL_SYSTEM void Sleep(unsigned long);
#undef ZIPTRA_DETAIL_SYSTEM

namespace ziptra {

/// Thrown by a constructor or by start(): Initialize fails with this code.
class Failure : public std::exception {
public:
    /// Requires: the code is negative and none of the host's. The text is a literal (it is not copied); it is sent to
    /// the debugger, because the host shows the code only; `ziptra run` shows the text.
    Failure(std::int32_t code, const char* why) noexcept : code_(code), why_(why) {}

    /// The code is the class's `unexpected`.
    explicit Failure(const char* why) noexcept : Failure(0, why) {}

    [[nodiscard]] std::int32_t code() const noexcept { return code_; }
    [[nodiscard]] const char* what() const noexcept override { return why_; }

private:
    std::int32_t code_;
    const char* why_;
};

/// Tells the function of a Worker when to return. Valid while that function runs. Thread: any.
class StopRequest {
public:
    explicit StopRequest(void* event) noexcept : event_(event) {}

    [[nodiscard]] bool requested() const noexcept { return waitMs(0); }

    /// Waits that long, but only until a stop is requested. Returns whether it is. More than 49 days are forever, and
    /// parts of a millisecond count as one.
    template <class Rep, class Period>
    [[nodiscard]] bool wait(std::chrono::duration<Rep, Period> time) const noexcept {
        // As a floating-point number, because the longest times overflow when they are converted to milliseconds.
        const double ms = std::chrono::duration<double, std::milli>(time).count();
        constexpr double forever = 0xFFFFFFFF;
        if (!(ms < forever)) return waitMs(0xFFFFFFFF);
        const auto whole = static_cast<unsigned long>(ms > 0 ? ms : 0);
        return waitMs(static_cast<double>(whole) < ms ? whole + 1 : whole);
    }

    /// Returns the event that the request sets, for functions that wait for several. It belongs to the Worker.
    [[nodiscard]] void* event() const noexcept { return event_; }

private:
    [[nodiscard]] bool waitMs(unsigned long time) const noexcept { return WaitForSingleObject(event_, time) == 0; }

    void* event_;
};

namespace detail {

/// Calls the function and returns its result, or the code of the exception that it throws.
template <class Function>
std::int32_t contain(std::int32_t unexpected, const Function& function) noexcept {
    try {
        return function();
    } catch (const Failure& failure) {
        OutputDebugStringA(failure.what());
        return failure.code() < 0 ? failure.code() : unexpected;
    } catch (const std::exception& exception) {
        OutputDebugStringA(exception.what());
    } catch (...) {
        OutputDebugStringA("exception of unknown type");
    }
    return unexpected;
}

/// Calls the function and drops its result, or the exception that it throws.
template <class Function>
void drop(const Function& function) noexcept {
    contain(0, [&function] { return static_cast<void>(function()), 0; });
}

/// A thread with its function and the event that asks it to stop. Owned by its Worker, and by a call of join while it
/// waits for the thread.
class Task {
public:
    Task() = default;
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    virtual ~Task() {
        if (thread != nullptr) CloseHandle(thread);
        if (event != nullptr) CloseHandle(event);
    }
    virtual void run(const StopRequest& stop) = 0;

    void requestStop() const noexcept { SetEvent(event); }
    void join() const noexcept { WaitForSingleObject(thread, 0xFFFFFFFF); }
    [[nodiscard]] bool hasEnded() const noexcept { return WaitForSingleObject(thread, 0) == 0; }

    void* thread = nullptr;
    void* event = nullptr;
    Task* next = nullptr;
    int owners = 1;
};

template <class Function>
class TaskOf final : public Task {
public:
    explicit TaskOf(Function function) : function_(std::move(function)) {}
    void run(const StopRequest& stop) override { static_cast<void>(function_(stop)); }

private:
    Function function_;
};

inline unsigned long runTask(void* argument) noexcept {
    Task& task = *static_cast<Task*>(argument);
    drop([&task] { task.run(StopRequest(task.event)); });
    return 0;
}

/// The calls that Stop and Cleanup make to end the threads of this library. Null until a Worker is started, so that a
/// plug-in without one does not contain the code for it.
struct ThreadCalls {
    void (*requestStop)() noexcept;
    void (*join)() noexcept;
};
inline std::atomic<const ThreadCalls*> threadCalls{nullptr};

/// The tasks that have an owner. Thread: any.
class Tasks {
public:
    void add(Task& task) noexcept {
        const Lock lock(lock_);
        task.next = first_;
        first_ = &task;
        if (isStopping_) task.requestStop();
    }

    /// Requires: the thread has ended. The last owner deletes the task.
    void release(Task& task) noexcept {
        if (remove(task)) delete &task;
    }

    /// Also asks those that are added later, until join.
    void requestStop() noexcept {
        const Lock lock(lock_);
        isStopping_ = true;
        for (const Task* task = first_; task != nullptr; task = task->next) task->requestStop();
    }

    /// Waits until all threads have ended, including those that others of them start meanwhile.
    void join() noexcept {
        while (Task* const task = shareRunning()) {
            task->join();
            release(*task);
        }
        const Lock lock(lock_);
        isStopping_ = false;
    }

private:
    /// It is held for a few instructions only, so it hardly ever has to wait.
    class Lock {
    public:
        explicit Lock(std::atomic_flag& flag) noexcept : flag_(flag) {
            while (flag_.test_and_set()) Sleep(1);
        }
        ~Lock() { flag_.clear(); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        std::atomic_flag& flag_;
    };

    Task* shareRunning() noexcept {
        const Lock lock(lock_);
        Task* task = first_;
        while (task != nullptr && task->hasEnded()) task = task->next;
        if (task != nullptr) ++task->owners;
        return task;
    }

    bool remove(Task& task) noexcept {
        const Lock lock(lock_);
        if (--task.owners > 0) return false;
        Task** link = &first_;
        while (*link != &task) link = &(*link)->next;
        *link = task.next;
        return true;
    }

    std::atomic_flag lock_ = ATOMIC_FLAG_INIT;
    Task* first_ = nullptr;
    bool isStopping_ = false;
};
inline Tasks tasks;
inline constexpr ThreadCalls callsOfTasks{[]() noexcept { tasks.requestStop(); }, []() noexcept { tasks.join(); }};

}  // namespace detail

/// A thread of the plug-in. Stop asks it to stop, and Cleanup waits for it before the object of the class is destroyed,
/// even if the Worker itself has been forgotten. The destructor asks it to stop and waits as well.
///
/// Declare a Worker after the members that its function uses: if the constructor of the class throws, members are
/// destroyed in reverse. An exception that leaves the function ends its thread and nothing else; its text is sent to
/// the debugger, and `ziptra run` shows it.
/// Thread: the function must not destroy its own Worker, which would wait for ever.
class Worker {
public:
    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        if (task_ == nullptr) return;
        task_->requestStop();
        task_->join();
        detail::tasks.release(*task_);
    }

    /// Calls `function(stop)` on a thread of its own, with a copy of the function; `stop` is a const StopRequest&.
    /// After Stop, the stop is requested from the beginning. Requires: not called before. Throws Failure if it was, or
    /// if Windows refuses the thread; std::bad_alloc.
    template <class Function>
    void start(Function&& function) {
        using Task = detail::TaskOf<std::decay_t<Function>>;
        static_assert(std::is_invocable_v<std::decay_t<Function>&, const StopRequest&>,
                      "Worker::start needs a function that can be called with a const ziptra::StopRequest&");
        if (task_ != nullptr) throw Failure("a Worker can be started only once");
        begin(std::make_unique<Task>(std::forward<Function>(function)));
    }

private:
    void begin(std::unique_ptr<detail::Task> task) {
        task->event = CreateEventW(nullptr, 1, 0, nullptr);
        if (task->event == nullptr) throw Failure("Windows refused the event of a Worker");
        task->thread = CreateThread(nullptr, 0, &detail::runTask, task.get(), 0, nullptr);
        if (task->thread == nullptr) throw Failure("Windows refused the thread of a Worker");
        task_ = task.release();
        detail::tasks.add(*task_);
        detail::threadCalls.store(&detail::callsOfTasks);
    }

    detail::Task* task_ = nullptr;
};

}  // namespace ziptra

#endif
