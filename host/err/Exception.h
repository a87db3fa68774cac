#pragma once

#include <exception>

#include "err/PlatformStatus.h"
#include "err/StatusRecord.h"

namespace zuerr {

/// Contains the status record that an exception carries.
class ExceptionBase {
public:
    ExceptionBase() = default;
    /// Takes the record by Copy's rule: the other object is left without its report.
    ExceptionBase(const ExceptionBase& other) noexcept;
    ExceptionBase& operator=(const ExceptionBase&) = delete;
    virtual ~ExceptionBase() = default;

    /// Returns the report text, owned by this object, or null if there is none.
    [[nodiscard]] virtual const char* report() const noexcept { return record.json; }

    /// Mutable because copying a thrown object takes a const source, and the copy moves the report out of it.
    mutable StatusRecord record;
};

/// The exception of this program. Code that catches std::exception gets the JSON report from what().
class Exception : public virtual ExceptionBase, public virtual std::exception {
public:
    /// Returns the report text; "{}" if there is none, so that callers need not check before they print it.
    [[nodiscard]] const char* what() const noexcept override;
};

/// Throws an Exception with this report and with the code passed or the report's own.
[[noreturn]] void Raise(const RaiseReport& report, std::int32_t code);
[[noreturn]] inline void Raise(const RaiseReport& report) { Raise(report, report.code); }

/// Throws an error that the record contains unless another exception is propagating: clean-up never throws over the
/// failure that caused it. Clears the record in every case.
void ThrowIfFailed(StatusRecord& record);
void ThrowIfFailed(PlatformStatus& record);

/// Requires: an exception is being handled.
/// Returns its code: -52000 for std::bad_alloc, the record's code for the program's own exceptions, -52003 for any
/// other std::exception. Throws an exception of any other type again.
[[nodiscard]] std::int32_t CurrentExceptionCode();

/// Returns whether an exception is unwinding this thread's stack.
[[nodiscard]] bool ExceptionIsPropagating() noexcept;

/// A guard around a call into foreign code, such as a plug-in, and the handler of what that throws. A library with a
/// C++ runtime of its own counts its throws in that runtime while our catch is counted in ours, which leaves our
/// std::uncaught_exceptions() one too low for good. The guard's destructor, which runs after the handler, records the
/// difference, so that ExceptionIsPropagating stays right on this thread. Guards may be nested.
class ForeignCallGuard {
public:
    ForeignCallGuard() noexcept;
    ~ForeignCallGuard();
    ForeignCallGuard(const ForeignCallGuard&) = delete;
    ForeignCallGuard& operator=(const ForeignCallGuard&) = delete;

private:
    int before_;
};

}  // namespace zuerr
