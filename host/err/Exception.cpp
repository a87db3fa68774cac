#include "err/Exception.h"

#include <algorithm>
#include <new>

#include "trace/trace.h"

namespace zuerr {
namespace {

/// How far foreign throws have shifted this thread's std::uncaught_exceptions(): 0 or negative.
thread_local int foreignShortfall = 0;

int propagatingExceptions() noexcept { return std::uncaught_exceptions() - foreignShortfall; }

/// Separate from Raise, which then has nothing to destroy, so that the stack unwinds faster.
Exception makeException(const RaiseReport& report, std::int32_t code) noexcept {
    Exception exception;
    RaiseInto(exception.record, code, report);
    return exception;
}

}  // namespace

ExceptionBase::ExceptionBase(const ExceptionBase& other) noexcept { Copy(record, other.record); }

const char* Exception::what() const noexcept {
    const char* const text = report();
    return text == nullptr ? "{}" : text;
}

void Raise(const RaiseReport& report, std::int32_t code) { throw makeException(report, code); }

void ThrowIfFailed(StatusRecord& record) {
    Exception exception;
    Copy(exception.record, record);
    Clear(record);
    if (exception.record.failed() && !ExceptionIsPropagating()) throw Exception(exception);
}

void ThrowIfFailed(PlatformStatus& record) {
    StatusRecord converted;
    ConvertPlatformStatus(record, converted);
    record = PlatformStatus{.size = record.size};
    ThrowIfFailed(converted);
}

std::int32_t CurrentExceptionCode() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return outOfMemory.code;
    } catch (const ExceptionBase& exception) {
        nTrace::trace(nTrace::errors, "Exception: %d\n", exception.record.code);
        return exception.record.code;
    } catch (const std::exception& exception) {
        nTrace::trace(nTrace::errors, "Unexpected exception: %s\n", exception.what());
        return softwareFault.code;
    }
}

bool ExceptionIsPropagating() noexcept { return propagatingExceptions() > 0; }

ForeignCallGuard::ForeignCallGuard() noexcept : before_(propagatingExceptions()) {}

ForeignCallGuard::~ForeignCallGuard() {
    // A higher count means that an exception of our own is propagating; its handler will lower the count.
    foreignShortfall += std::min(propagatingExceptions() - before_, 0);
}

}  // namespace zuerr
