// A plug-in that reports its failures as the host does its own.

#include "err/Exception.h"

extern "C" {

__declspec(dllexport) std::int32_t InitRaisesOsFault() { zuerr::Raise(zuerr::osFault, {"raising.cpp", 1}); }
__declspec(dllexport) std::int32_t InitRaisesInsufficientPermissions() {
    zuerr::Raise(zuerr::insufficientPermissions, {"raising.cpp", 2});
}
}
