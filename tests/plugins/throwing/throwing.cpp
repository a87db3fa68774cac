// Throws every kind of exception, from a C++ runtime and a copy of the error model that are not the host's.
//
// Each function can be any of the three entry points: its result type never matters, because it never returns.
#include <array>
#include <cstdint>
#include <exception>
#include <ios>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>

#include "err/Exception.h"

namespace {

struct tEmptyText : std::exception {
    [[nodiscard]] const char* what() const noexcept override { return ""; }
};

struct tNoText : std::exception {
    [[nodiscard]] const char* what() const noexcept override { return nullptr; }
};

struct tOwnBadAlloc : std::bad_alloc {};

/// Out of memory and out of range at once.
struct tBadAllocAndMore : std::bad_alloc, private std::out_of_range {
    using std::out_of_range::out_of_range;
};

struct tLarge : std::exception {
    std::array<char, 1'000'000> bytes{};
};

/// An ambiguous std::exception: it has two of them as bases.
struct tTwoExceptions : std::runtime_error, std::logic_error {
    tTwoExceptions() : std::runtime_error("one"), std::logic_error("two") {}
};

struct tNoException {
    std::string text = "a text that is too long for a string's small buffer, so that it is released in its library";
};

/// Throws and catches while a propagating exception destroys it.
struct tBusy {
    tBusy() = default;
    tBusy(const tBusy&) = delete;
    tBusy& operator=(const tBusy&) = delete;
    ~tBusy() {
        try {
            throw tNoException();
        } catch (const tNoException&) {
            // Expected.
        }
    }
};

void throwFromBelow(int levels) {
    const tBusy busy;
    if (levels == 0) throw std::runtime_error("from below");
    throwFromBelow(levels - 1);
}

void throwWithCode(std::int32_t code) {
    zuerr::ExceptionBase exception;
    zuerr::RaiseInto(exception.record, code, {"plugin", {"throwing", 8}, nullptr});
    throw zuerr::ExceptionBase(exception);
}

}  // namespace

extern "C" {

// Standard exceptions.
void ThrowException() { throw std::exception(); }
void ThrowRuntimeError() { throw std::runtime_error("an exception of the standard library"); }
void ThrowLongText() { throw std::runtime_error(std::string(1'000'000, 'x')); }
void ThrowOddText() { throw std::logic_error("%s%n\xFF\x01\"\n"); }
void ThrowEmptyText() { throw tEmptyText(); }
void ThrowNoText() { throw tNoText(); }
void ThrowSystemError() { throw std::system_error(std::make_error_code(std::errc::io_error)); }
void ThrowIosFailure() { throw std::ios_base::failure("stream"); }
void ThrowBadCast() { throw std::bad_cast(); }
void ThrowBadException() { throw std::bad_exception(); }
void ThrowLarge() { throw tLarge(); }
void ThrowFromBelow() { throwFromBelow(50); }

/// Thrown while another one is being handled, which is nested in it.
void ThrowNested() {
    try {
        throw tNoException();
    } catch (...) {
        std::throw_with_nested(std::runtime_error("nested"));
    }
}

/// The same object each time.
void ThrowStored() {
    static const std::exception_ptr stored = std::make_exception_ptr(std::runtime_error("stored"));
    std::rethrow_exception(stored);
}

void ThrowAgain() {
    try {
        ThrowStored();
    } catch (...) {
        throw;
    }
}

// Out of memory.
void ThrowBadAlloc() { throw std::bad_alloc(); }
void ThrowBadArrayNewLength() { throw std::bad_array_new_length(); }
void ThrowOwnBadAlloc() { throw tOwnBadAlloc(); }
void ThrowBadAllocAndMore() { throw tBadAllocAndMore("private"); }

// The program's own exceptions.
void ThrowOsFault() { zuerr::Raise({zuerr::osFault, {"throwing", 7}}); }
void ThrowBaseAlone() { throwWithCode(-7); }
void ThrowSmallestCode() { throwWithCode(INT32_MIN); }
void ThrowWarning() { throwWithCode(5); }
void ThrowNoCode() { throw zuerr::Exception(); }

// Other types than std::exception.
void ThrowInt() { throw 7; }
void ThrowText() { throw "text"; }
void ThrowString() { throw std::string(1000, 'x'); }
void ThrowNull() { throw nullptr; }
void ThrowFunction() { throw &ThrowInt; }  // NOLINT(misc-throw-by-value-catch-by-reference): a pointer is meant
void ThrowObject() { throw tNoException(); }
void ThrowTwoExceptions() { throw tTwoExceptions(); }

/// No exception leaves the library; returns the code that the library itself determines.
std::int32_t CatchOwnOsFault() {
    try {
        ThrowOsFault();
    } catch (...) {
        return zuerr::CurrentExceptionCode();
    }
    return 0;
}
}
