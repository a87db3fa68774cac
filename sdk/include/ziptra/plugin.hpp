#ifndef ZIPTRA_PLUGIN_HPP
#define ZIPTRA_PLUGIN_HPP

/// A plug-in from a class, in C++17. The rules for plug-ins are in ziptra/plugin.h; this header keeps those about
/// exceptions and threads.
///
///     #include <ziptra/plugin.hpp>
///
///     class Scheduler {
///     public:
///         Scheduler() { worker_.start([this](const ziptra::StopRequest& stop) { work(stop); }); }
///
///     private:
///         void work(const ziptra::StopRequest& stop) {
///             while (!stop.wait(std::chrono::seconds(1))) { /* ... */ }
///         }
///         ziptra::Worker worker_;
///     };
///     ZIPTRA_PLUGIN(Scheduler)
///
/// The class may have, besides a default constructor:
///
///     void start();              called after the constructor, for what may fail. It may return std::int32_t instead:
///                                a negative result is the failure's code, a positive one is a warning.
///     void stop();               called in Stop, after every Worker has been asked to stop. Needs no waiting.
///     static constexpr std::int32_t unexpected = -2;
///                                the code of exceptions other than Failure; otherwise -1.
/// The text of an exception that leaves any of these, the constructor or the destructor is sent to the debugger;
/// `ziptra run` shows it. All of them must be public; a start or stop that cannot be called does not compile.

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "plugin.h"
#include "worker.hpp"

/// Exports CLASSInitialize, CLASSStop and CLASSCleanup, which create, stop and destroy one object of the class. Use it
/// once for a class, in one source file, in the namespace of the class, without a semicolon.
#define ZIPTRA_PLUGIN(CLASS)                                                                                        \
    ZIPTRA_EXPORT std::int32_t CLASS##Initialize() noexcept { return ::ziptra::detail::Life<CLASS>::initialize(); } \
    ZIPTRA_EXPORT void CLASS##Stop() noexcept { ::ziptra::detail::Life<CLASS>::stop(); }                            \
    ZIPTRA_EXPORT void CLASS##Cleanup() noexcept { ::ziptra::detail::Life<CLASS>::cleanup(); }

namespace ziptra {

namespace detail {

/// Whether the class has a member of the name, public or not: it is then ambiguous in a class that inherits another
/// one. A final class cannot be inherited, and is not examined.
struct Names {
    int start, stop;
};
struct Other {};
template <class Class>
struct Both : std::conditional_t<std::is_final_v<Class>, Other, Class>, Names {};
template <class Class, class = void>
struct NamesStart : std::true_type {};
template <class Class>
struct NamesStart<Class, std::void_t<decltype(&Both<Class>::start)>> : std::false_type {};
template <class Class, class = void>
struct NamesStop : std::true_type {};
template <class Class>
struct NamesStop<Class, std::void_t<decltype(&Both<Class>::stop)>> : std::false_type {};

/// Whether the member can be called.
template <class Class, class = void>
struct HasStart : std::false_type {};
template <class Class>
struct HasStart<Class, std::void_t<decltype(std::declval<Class&>().start())>> : std::true_type {};
template <class Class, class = void>
struct HasStop : std::false_type {};
template <class Class>
struct HasStop<Class, std::void_t<decltype(std::declval<Class&>().stop())>> : std::true_type {};

template <class Class, class = void>
struct Unexpected : std::integral_constant<std::int32_t, -1> {};
template <class Class>
struct Unexpected<Class, std::void_t<decltype(Class::unexpected)>>
    : std::integral_constant<std::int32_t, Class::unexpected> {};

/// The one object of the class. Thread: the host's.
template <class Class>
class Life {
public:
    static std::int32_t initialize() noexcept {
        const std::int32_t result = contain(Unexpected<Class>::value, [] {
            object_ = ::new (static_cast<void*>(storage_)) Class();
            return start();
        });
        if (result < 0) cleanup();
        return result;
    }

    static void stop() noexcept {
        if (const ThreadCalls* const threads = threadCalls.load()) threads->requestStop();
        if constexpr (HasStop<Class>::value) {
            if (object_ != nullptr) drop([] { return object_->stop(); });
        }
    }

    /// The threads end before the object that they use is destroyed; its destructor may have started others.
    static void cleanup() noexcept {
        endThreads();
        if (object_ == nullptr) return;
        drop([] { std::exchange(object_, nullptr)->~Class(); });
        endThreads();
    }

    static Class* object() noexcept { return object_; }

private:
    static std::int32_t start() {
        if constexpr (HasStart<Class>::value) {
            using Result = decltype(object_->start());
            static_assert(std::is_void_v<Result> || std::is_same_v<Result, std::int32_t>,
                          "start() of a plug-in's class returns void or std::int32_t");
            if constexpr (std::is_void_v<Result>) {
                object_->start();
            } else {
                return object_->start();
            }
        }
        return 0;
    }

    static void endThreads() noexcept {
        const ThreadCalls* const threads = threadCalls.load();
        if (threads == nullptr) return;
        threads->requestStop();
        threads->join();
    }

    static_assert(std::is_default_constructible_v<Class>,
                  "a plug-in's class needs a public constructor without parameters, and a public destructor");
    static_assert(HasStart<Class>::value || !NamesStart<Class>::value,
                  "start() of a plug-in's class must be public and callable without arguments");
    static_assert(HasStop<Class>::value || !NamesStop<Class>::value,
                  "stop() of a plug-in's class must be public and callable without arguments");
    static_assert(Unexpected<Class>::value < 0, "`unexpected` of a plug-in's class must be negative");

    alignas(Class) static inline unsigned char storage_[sizeof(Class)];
    static inline Class* object_ = nullptr;
};

}  // namespace detail

/// Returns the object of a plug-in's class: null until its constructor has returned, and from Cleanup on. For functions
/// that the plug-in exports to the plug-ins that depend on it, all of whose calls come in between.
template <class Class>
[[nodiscard]] Class* plugin() noexcept {
    return detail::Life<Class>::object();
}

}  // namespace ziptra

#endif
