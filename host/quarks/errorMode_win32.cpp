#include <windows.h>

#include "quarks/errorMode.h"

tErrorMode::tErrorMode() noexcept {
    DWORD previous = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous);
    previous_ = previous;
}

tErrorMode::~tErrorMode() { SetThreadErrorMode(previous_, nullptr); }
