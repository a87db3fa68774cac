#pragma once

#include <exception>

#include "err/PlatformStatus.h"
#include "err/StatusRecord.h"

namespace zuerr {

/// Holds the status record that an exception carries.
class ExceptionBase {
public:
    ExceptionBase() = default;
    /// Takes the record over by Copy's rule: the other one is left without its report.
    ExceptionBase(const ExceptionBase& other) noexcept;
    ExceptionBase& operator=(const ExceptionBase&) = delete;
    virtual ~ExceptionBase() = default;

    /// The report text, owned by this object; null when there is none.
    [[nodiscard]] virtual const char* report() const noexcept { return record.json; }

    /// Mutable because a copy moves the report out of the object copied from, as the language's copy of a thrown
    /// object demands a const source.
    mutable StatusRecord record;
};

/// The exception of this program. Catching std::exception and asking what() gives the JSON report.
class Exception : public virtual ExceptionBase, public virtual std::exception {
public:
    /// The report text; "{}" when there is none, so that callers may print it unseen.
    [[nodiscard]] const char* what() const noexcept override;
};

/// Throws an Exception with this report, and with the code that belongs to it or the one given.
[[noreturn]] void Raise(const RaiseReport& report);
[[noreturn]] void Raise(const RaiseReport& report, std::int32_t code);

/// Throws what the record holds if it is an error and no other exception is propagating: clean-up never throws over
/// the failure that caused it. The record is cleared in every case.
void ThrowIfFailed(StatusRecord& record);
void ThrowIfFailed(PlatformStatus& record);

/// For a handler: the code of the exception being handled. std::bad_alloc gives -52000, the program's own exceptions
/// their code, any other std::exception -52003. An exception of another type is not caught and leaves this function.
[[nodiscard]] std::int32_t CurrentExceptionCode();

/// Whether an exception is unwinding this thread's stack.
[[nodiscard]] bool ExceptionIsPropagating() noexcept;

/// Stands around a call into foreign code, such as a plug-in, and the handler of what that throws. A library that
/// brings its own C++ runtime counts its throws in that runtime while the catch is counted in ours, which leaves our
/// std::uncaught_exceptions() one short for good. The guard's end, reached when the exception has been handled, books
/// the difference so that ExceptionIsPropagating stays right on this thread. Guards may be nested.
class ForeignCall {
public:
    ForeignCall() noexcept;
    ~ForeignCall();
    ForeignCall(const ForeignCall&) = delete;
    ForeignCall& operator=(const ForeignCall&) = delete;

private:
    int before_;
};

}  // namespace zuerr
