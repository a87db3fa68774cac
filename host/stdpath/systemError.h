#pragma once

#include <cstdint>

#include "err/StatusRecord.h"

namespace nStdPath {

/// A failed system call, for a report.
struct tSystemError {
    enum class tKind { win32, hresult };

    tKind kind = tKind::win32;
    std::uint32_t code = 0;         ///< shown unsigned; an HRESULT signed
    const char* message = nullptr;  ///< the system's text for a Win32 error; null if there is none
};

/// Raises -52006 with the source line, the system's error and what was being done. Does nothing if the record already
/// contains an error.
void raiseSystemError(zuerr::StatusRecord& status, std::int32_t line, const tSystemError& error,
                      const char* description) noexcept;

}  // namespace nStdPath
