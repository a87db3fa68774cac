// Throws what the host knows how to catch, made by a C++ runtime and a copy of the error model that are not the host's.
#include <cstdint>
#include <new>
#include <stdexcept>

#include "err/Exception.h"

extern "C" {

void ThrowRuntimeError() { throw std::runtime_error("an exception of the standard library"); }

void ThrowBadAlloc() { throw std::bad_alloc(); }

void ThrowOsFault() { zuerr::Raise(zuerr::osFault, {"throwing", 7}); }

/// Nothing leaves the library; gives the code that it finds itself.
std::int32_t CatchOwnOsFault() {
    try {
        ThrowOsFault();
    } catch (...) {
        return zuerr::CurrentExceptionCode();
    }
    return 0;
}
}
