#pragma once

#include <exception>

#include "err/PlatformStatus.h"
#include "err/StatusRecord.h"

namespace zuerr {

/// The base class of exceptions that carry a status record.
class ExceptionBase {
public:
    ExceptionBase() = default;
    /// Moves the record as zuerr::Copy does: `other` loses its report.
    ExceptionBase(const ExceptionBase& other) noexcept;
    ExceptionBase& operator=(const ExceptionBase&) = delete;
    virtual ~ExceptionBase() = default;

    /// Returns the report text, owned by this object, or null if there is none.
    [[nodiscard]] virtual const char* report() const noexcept { return record.json; }

    /// Mutable because the copy constructor moves the report out of a const source.
    mutable StatusRecord record;
};

/// The exception of this program. Code that catches std::exception obtains the JSON report from what().
class Exception : public virtual ExceptionBase, public virtual std::exception {
public:
    /// Returns the report text; "{}" if there is none, so that callers need not check before they print it.
    [[nodiscard]] const char* what() const noexcept override;
};

/// Throws an Exception with this report and the given code, or else the report's own.
[[noreturn]] void Raise(const RaiseReport& report, std::int32_t code);
[[noreturn]] inline void Raise(const RaiseReport& report) { Raise(report, report.code); }

/// Throws an Exception if the record contains an error, unless another exception is propagating: clean-up must not
/// throw while the stack unwinds. Always clears the record.
void ThrowIfFailed(StatusRecord& record);
void ThrowIfFailed(PlatformStatus& record);

/// Requires: an exception is being handled.
/// Returns its code: -52000 for std::bad_alloc, the record's code for the program's own exceptions, -52003 for any
/// other std::exception. Rethrows an exception of any other type.
[[nodiscard]] std::int32_t CurrentExceptionCode();

/// Returns whether an exception is unwinding this thread's stack.
[[nodiscard]] bool ExceptionIsPropagating() noexcept;

/// A guard around a call into foreign code, such as a plug-in, and the handler of its exceptions. A library with its
/// own C++ runtime counts its throws there, but our handler counts in our runtime, which leaves our
/// std::uncaught_exceptions() one too low permanently. The guard's destructor, which runs after the handler, records
/// the difference so that ExceptionIsPropagating stays correct on this thread. Guards may be nested.
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
